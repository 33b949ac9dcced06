// Copies of whole trees, and of a tree into another; comparing them.

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPathText.h"
#include "blockmodel/HABMSchema.h"

namespace {

using Access = HABMObjectAccess;

/// Copies the content of an object to a fresh one; names and paths stay as they are. The tree of
/// the copy has no connection index meanwhile: it isn't told of the paths of connections.
template <class Object>
void copyContent(const Object& from, Object& to) {
    Access::fieldsOf(to) = Access::fieldsOf(from);
    const auto copyEach = [&](const auto& owned, const auto& children) {
        children.forEach([&](const auto& child) {
            if constexpr (habm::HasFields<std::remove_cvref_t<decltype(child)>>)
                copyContent(child, *owned.create(to, habm::nameOf(child)));
            else
                owned.create(to, habm::nameOf(child), habm::valueOf(child));
        });
    };
    habm::forEachStore(copyEach, from);
}

template <class Object>
bool isSame(const Object& a, const Object& b);

/// True for equal objects of equal names in the same order.
template <class Store>
bool areSame(const Store& a, const Store& b) {
    const auto ofA = a.all();
    const auto ofB = b.all();
    return std::equal(ofA.begin(), ofA.end(), ofB.begin(), ofB.end(),
                      [](const auto* x, const auto* y) {
                          return habm::nameOf(*x) == habm::nameOf(*y) && isSame(*x, *y);
                      });
}

template <class Object>
bool isSame(const Object& a, const Object& b) {
    if constexpr (habm::HasFields<Object>) {
        bool areEqual = true;
        habm::forEachField<Object>([&](const auto& field) {
            areEqual =
                areEqual && Access::fieldsOf(a).*field.place == Access::fieldsOf(b).*field.place;
        });
        habm::forEachStore([&](const auto&, const auto& ofA,
                               const auto& ofB) { areEqual = areEqual && areSame(ofA, ofB); },
                           a, b);
        return areEqual;
    } else {
        return habm::valueOf(a) == habm::valueOf(b);
    }
}

} // namespace

bool HABMBlock::hasSameContent(const HABMBlock& other) const {
    return isSame(*this, other);
}

/// Updates the paths of all connections and assigns at and below this block after it has moved from
/// `before` to `after`. Allocates only if `after` is longer.
void HABMBlock::movePaths(const std::string& before, const std::string& after) {
    if (before == after)
        return;
    const auto move = [&](auto& mover) { mover.moveEnds(before, after); };
    m_parts->portConnections.forEach(move);
    m_parts->interfaceConnections.forEach(move);
    m_parts->addrAssigns.forEach(move);
    m_parts->subBlocks.forEach([&](HABMBlock& block) { block.movePaths(before, after); });
}

std::unique_ptr<HABMBlock> HABMBlock::cloneTopBlock(const HABMBlock& block) {
    std::unique_ptr<HABMBlock> clone = createTopBlock("");
    copyContent(block, *clone);
    clone->movePaths(block.getInstancePath(), "");
    return clone;
}

bool HABMBlock::mergeTopBlock(HABMBlock& top, const std::string& path, const HABMBlock& child,
                              const bool& flag) {
    HABMBlock& root = *top.getTopBlock();
    HABMBlock* const place =
        path.empty() ? nullptr : const_cast<HABMBlock*>(habm::blockAt(&root, path));
    if (place == nullptr || (!flag && !place->isBlockStub()) || child.getTopBlock() == &root ||
        place->level() + child.levelsBelow() > kMostLevels)
        return false;

    // The index is out of its place while the connections change. If that fails, it is lost, and
    // built again at the next query.
    std::unique_ptr<HABMConnectionIndex> index = std::move(root.m_parts->connectionIndex);
    if (index != nullptr)
        index->removeBelow(*place);
    Parts before = std::exchange(*place->m_parts, Parts{});
    try {
        copyContent(child, *place);
        place->movePaths(child.getInstancePath(), place->getInstancePath());
        place->setBlockStub(false);
    } catch (...) {
        *place->m_parts = std::move(before);
        throw;
    }
    root.m_parts->connectionIndex = std::move(index);
    HABMConnectionIndex::update(root, [&](HABMConnectionIndex& i) { i.addBelow(*place); });
    return true;
}
