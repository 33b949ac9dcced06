// The index from objects to sets of objects: order, duplicates and the switch to hashing.

#include <gtest/gtest.h>

#include <vector>

#include "addressing/HBSPointerIndex.h"

namespace {

using Index = HBSPointerIndex<int, char>;

TEST(PointerIndex, KeepsTheOrderOfInsertionAndDropsDuplicates) {
    std::vector<int> keys(3);
    std::vector<char> elements(3);
    Index index;
    index.insert(&keys[2], &elements[1]);
    index.insert(&keys[0], &elements[2]);
    index.insert(&keys[2], &elements[0]);
    index.insert(&keys[2], &elements[1]);
    ASSERT_EQ(2U, index.size());
    EXPECT_EQ(&keys[2], index.keyAt(0));
    EXPECT_EQ(&keys[0], index.keyAt(1));
    EXPECT_EQ((std::vector<char*>{&elements[1], &elements[0]}), *index.find(&keys[2]));
    EXPECT_EQ(nullptr, index.find(&keys[1]));
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
