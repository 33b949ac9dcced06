// The index from objects to sets of objects: order, duplicates and the switch to hashing.

#include <gtest/gtest.h>

#include <vector>

#include "addressing/HBSPointerIndex.h"

namespace {

using Index = HBSPointerIndex<int, char>;

TEST(PointerIndex, KeepsTheOrderOfInsertionAndDropsDuplicates) {
    int keys[2];
    char elements[2];
    Index index;
    for (const int element : {1, 0, 1})
        index.insert(&keys[1], &elements[element]);
    EXPECT_EQ(1U, index.size());
    EXPECT_EQ((std::vector<char*>{&elements[1], &elements[0]}), *index.find(&keys[1]));
    EXPECT_EQ(nullptr, index.find(&keys[0]));
}

TEST(PointerIndex, AnswersTheSameWhenItStartsHashing) {
    std::vector<int> keys(Index::kHashThreshold + 100);
    std::vector<char> elements(keys.size());
    Index index;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(nullptr, index.find(&keys[i]));
        EXPECT_EQ(i >= Index::kHashThreshold, index.isHashed());
        index.insert(&keys[i], &elements[i]);
        index.insert(&keys[i / 2], &elements[0]);
    }
    ASSERT_EQ(keys.size(), index.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(&keys[i], index.keyAt(i));
        EXPECT_EQ(&elements[i], index.find(&keys[i])->front());
    }
}

} // namespace
