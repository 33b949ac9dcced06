// Walks over a block and what lies below it, and looks up registers.

#include <cstddef>
#include <new>
#include <string_view>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPath.h"
#include "blockmodel/HABMPathText.h"

namespace {

/// Shell-like patterns: "*" for any characters, "?" for one. Goes back to the last star alone,
/// which is enough, and takes at most the product of the lengths.
bool isMatch(std::string_view text, std::string_view pattern) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            afterStar = t;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

template <class Object>
std::string pathOf(const Object& object) {
    if constexpr (requires { object.getPath(); })
        return object.getPath();
    else
        return object.getParent()->getInstancePath() + "/" + object.getName();
}

/// A pattern, and whether it matches every object below the start of the search, so that their
/// paths needn't be built.
class Filter {
public:
    Filter(const HABMBlock& start, const std::string& pattern)
        : m_pattern(pattern), m_matchesAll(pattern.empty() || pattern == "*" ||
                                           pattern == start.getInstancePath() + "*") {}

    template <class Object>
    [[nodiscard]] bool matches(const Object& object) const {
        return m_matchesAll || isMatch(pathOf(object), m_pattern);
    }

private:
    const std::string& m_pattern;
    bool m_matchesAll;
};

/// Calls `visit` for the block and, if `isDeep`, for all below it.
template <class Visit>
void walk(const HABMBlock& block, bool isDeep, const Visit& visit) {
    visit(block);
    if (isDeep)
        for (const HABMBlock* const subBlock : block.getSubBlocks())
            walk(*subBlock, true, visit);
}

/// The objects that `objectsOf` lists in the block and below it and that match the pattern.
template <class Object, class ObjectsOf>
std::vector<Object*> find(const HABMBlock& start, const std::string& pattern, bool isDeep,
                          ObjectsOf objectsOf) {
    const Filter filter(start, pattern);
    std::vector<Object*> kept;
    walk(start, isDeep, [&](const HABMBlock& block) {
        for (Object* const object : (block.*objectsOf)())
            if (filter.matches(*object))
                kept.push_back(object);
    });
    return kept;
}

} // namespace

std::vector<const HABMBlock*> HABMBlock::findStubs() const {
    std::vector<const HABMBlock*> stubs;
    walk(*this, true, [&](const HABMBlock& block) {
        if (block.isBlockStub())
            stubs.push_back(&block);
    });
    return stubs;
}

std::vector<HABMMemoryMap*> HABMBlock::findMemoryMaps(const std::string& pattern,
                                                      const bool& flag) const {
    return find<HABMMemoryMap>(*this, pattern, flag, &HABMBlock::getMemoryMaps);
}

std::vector<HABMAddrSpace*> HABMBlock::findAddrSpaces(const std::string& pattern,
                                                      const bool& flag) const {
    return find<HABMAddrSpace>(*this, pattern, flag, &HABMBlock::getAddrSpaces);
}

std::vector<HABMAddrAssign*> HABMBlock::findAddrAssigns(const std::string& pattern,
                                                        const bool& flag) const {
    return find<HABMAddrAssign>(*this, pattern, flag, &HABMBlock::getAddrAssigns);
}

std::vector<HABMInterfaceConnection*>
HABMBlock::findInterfaceConnections(const std::string& pattern, const bool& flag) const {
    return find<HABMInterfaceConnection>(*this, pattern, flag, &HABMBlock::getInterfaceConnections);
}

std::vector<HABMPortConnection*> HABMBlock::findPortConnections(const std::string& pattern,
                                                                const bool& flag) const {
    return find<HABMPortConnection>(*this, pattern, flag, &HABMBlock::getPortConnections);
}

std::vector<HABMRegister*> HABMBlock::findRegisters(const std::string& pattern,
                                                    const bool& flag) const {
    const Filter filter(*this, pattern);
    std::vector<HABMRegister*> kept;
    for (const HABMMemoryMap* const map : findMemoryMaps("", flag))
        for (const HABMAddrBlock* const block : map->getAddrBlocks())
            for (HABMRegister* const candidate : block->getRegisters())
                if (filter.matches(*candidate))
                    kept.push_back(candidate);
    return kept;
}

HABMRegister* HABMBlock::findRegister(const std::string& path, const bool& flag) const {
    // A path has three names at least, so that a single one can only be a register's.
    if (habm::isName(path))
        return flag ? registerByName(path) : nullptr;
    const std::string relative =
        path.starts_with('/') ? HABMPath::get_relative_path(*this, path) : path;
    const std::string fromHere = "/" + relative;
    const habm::SplitPath split = habm::splitOff(fromHere, 3);
    const HABMBlock* const owner = habm::blockAt(this, split.block);
    const HABMMemoryMap* const map =
        owner == nullptr ? nullptr : owner->getMemoryMap(std::string(split.names[0]));
    const HABMAddrBlock* const block =
        map == nullptr ? nullptr : map->getAddrBlock(std::string(split.names[1]));
    return block == nullptr ? nullptr : block->getRegister(std::string(split.names[2]));
}

HABMRegister* HABMBlock::registerByName(const std::string& name) const {
    if (m_parts->registersByName == nullptr) {
        // Built at the first question, as most blocks of a design are never asked.
        auto byName = std::make_unique<Parts::RegistersByName>();
        for (HABMRegister* const candidate : findRegisters("", false))
            byName->emplace(candidate->getName(), candidate);
        m_parts->registersByName = std::move(byName);
    }
    const auto found = m_parts->registersByName->find(name);
    return found == m_parts->registersByName->end() ? nullptr : found->second;
}

/// Where an address block comes among those of its block.
std::pair<std::size_t, std::size_t> HABMBlock::rankOf(const HABMAddrBlock& block) const {
    const HABMMemoryMap& map = *block.getParent();
    return {m_parts->memoryMaps.positionOf(map.getName()), map.positionOf(block)};
}

void HABMBlock::noteRegister(HABMRegister& fresh) noexcept {
    if (m_parts->registersByName == nullptr)
        return;
    try {
        HABMRegister*& first =
            m_parts->registersByName->try_emplace(fresh.getName(), &fresh).first->second;
        if (rankOf(*fresh.getParent()) < rankOf(*first->getParent()))
            first = &fresh;
    } catch (const std::bad_alloc&) {
        m_parts->registersByName.reset(); // built again at the next query
    }
}
