#include "workbench/addressing/MapQuestions.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/FileReading.h"
#include "diagnostics/NearestName.h"
#include "workbench/addressing/DefinitionPlaces.h"

namespace tq {

namespace {

constexpr HABMAddrValue kZero{std::uint64_t{0}};

std::string nearestOf(const std::string& name, const std::vector<std::string>& known) {
    std::string text = "expected one of: ";
    for (const std::string& entry : known)
        text += (&entry == known.data() ? "" : ", ") + entry;
    const std::string_view nearest =
        nearestName(name, std::vector<std::string_view>(known.begin(), known.end()));
    return nearest.empty() ? text : text + "; did you mean \"" + std::string(nearest) + "\"?";
}

void expectInitiator(const ConfiguredMap& map, const std::string& from) {
    std::vector<std::string> known;
    for (const AddressViews::View& view : map.views().views()) {
        if (AddressViews::isNamed(view, from))
            return;
        if (std::find(known.begin(), known.end(), view.from) == known.end())
            known.push_back(view.from);
    }
    if (!from.empty())
        throw InputError("there is no initiator \"" + from + "\", " + nearestOf(from, known));
}

/// Finds blocks and registers by name, and who sees them.
class NameSearch {
public:
    NameSearch(const ConfiguredMap& map, const std::string& pattern, const std::string& from)
        : m_pattern(pattern) {
        for (const AddressViews::View& view : map.views().views())
            if (AddressViews::isNamed(view, from))
                for (const auto& region : view.regions.all())
                    m_seen[region.value.block].push_back({&view, &region});
        for (const AddressMap::Block& block : map.map().blocks())
            if (from.empty() || m_seen.contains(&block))
                search(block);
    }

    std::vector<MapMatch> take() { return std::move(m_matches); }

private:
    struct Seen {
        const AddressViews::View* view;
        const AddressViews::Regions::Interval* region;
    };

    [[nodiscard]] bool matches(const std::string& name) const {
        return fnmatch(m_pattern.c_str(), name.c_str(), 0) == 0;
    }

    void search(const AddressMap::Block& block) {
        if (matches(block.path))
            add(block, nullptr, kZero);
        const std::string owner = block.definition->getParent()->getParent()->getInstancePath();
        const std::string instance = owner.empty() ? "" : owner.substr(1) + "/";
        for (const HABMRegister* const reg : AddressMap::registersOf(block)) {
            const std::string& name = reg->getName();
            if (matches(name) || matches(instance + name) || matches(block.path + "/" + name))
                add(block, reg, reg->getOffset());
        }
    }

    void add(const AddressMap::Block& block, const HABMRegister* reg, const HABMAddrValue& offset) {
        const std::size_t count = m_matches.size();
        if (const auto seen = m_seen.find(&block); seen != m_seen.end())
            for (const auto& [view, region] : seen->second) {
                const HABMAddrValue address = region->value.origin.plus(offset);
                // A block begins for an initiator where its window does.
                if (reg == nullptr || (!(address < region->first) && !(region->last < address)))
                    m_matches.push_back(
                        {view, &region->value, &block, reg,
                         reg == nullptr ? region->first : address,
                         reg == nullptr ? region->first.minus(region->value.origin) : kZero});
            }
        if (m_matches.size() == count)
            m_matches.push_back({nullptr, nullptr, &block, reg, block.base.plus(offset), kZero});
    }

    const std::string& m_pattern;
    std::unordered_map<const AddressMap::Block*, std::vector<Seen>> m_seen;
    std::vector<MapMatch> m_matches;
};

} // namespace

/// What explanations of one map have in common.
struct MapReasons::Lookup {
    explicit Lookup(const ConfiguredMap& configured)
        : map(configured), places(configured.hardblocks()) {
        for (const HBSDecision& decision : configured.decisions())
            decisions.emplace(decision.path, &decision);
    }

    const ConfiguredMap& map;
    DefinitionPlaces places;
    std::unordered_map<std::string_view, const HBSDecision*> decisions; ///< by path
    std::map<std::string, std::unordered_set<std::string>> words;       ///< of scripts, by file
};

/// Explains one block or interface.
class MapReasons::Explanation {
public:
    Explanation(Lookup& lookup, const std::string& path)
        : m_map(lookup.map), m_lookup(lookup), m_places(lookup.places) {
        m_reason.path = path.substr(path.starts_with("/") ? 1 : 0);
        const std::string full = "/" + m_reason.path;
        const HABMBlock* const block = HABMPath::findBlock(m_map.definition(), full);
        const HABMInterface* const interface = HABMPath::findInterface(m_map.definition(), full);
        if (block == nullptr && interface == nullptr)
            throw InputError("the definition has no sub-block or interface \"" + m_reason.path +
                             "\", " + nearestOf(m_reason.path, names()));
        m_reason.isOn = isThere(full, interface != nullptr);
        if (explainAround(interface != nullptr ? interface->getParent() : block->getParent()))
            return;
        explain(full, interface != nullptr ? interface->getEnablement() : block->getEnablement());
        if (!m_reason.isOn && interface != nullptr &&
            interface->getParent()->getParent() == nullptr)
            m_reason.text = "no connection uses this interface of the subsystem";
    }

    MapReason take() { return std::move(m_reason); }

private:
    [[nodiscard]] bool isThere(const std::string& path, bool isInterface) const {
        return isInterface ? HABMPath::findInterface(m_map.instance(), path) != nullptr
                           : HABMPath::findBlock(m_map.instance(), path) != nullptr;
    }

    /// True if a block around it is off, which is the reason then: the outermost one.
    bool explainAround(const HABMBlock* around) {
        const HABMBlock* off = nullptr;
        for (; around != nullptr && around->getParent() != nullptr; around = around->getParent())
            if (!isThere(around->getInstancePath(), false))
                off = around;
        if (off == nullptr)
            return false;
        explain(off->getInstancePath(), off->getEnablement());
        m_reason.text = "\"" + off->getInstancePath().substr(1) + "\" is off: " + m_reason.text;
        return true;
    }

    void explain(const std::string& path, const std::string& expression) {
        m_reason.expression = expression;
        const auto found = m_lookup.decisions.find(path);
        if (expression.empty())
            m_reason.text = "it has no condition";
        else if (found == m_lookup.decisions.end())
            m_reason.text = "conditions are decided on the first two levels of sub-blocks alone";
        else
            explain(*found->second);
    }

    void explain(const HBSDecision& decision) {
        if (decision.result.empty())
            m_reason.text = decision.evaluated + " can't be computed, which counts as true";
        else
            m_reason.text = decision.evaluated + (decision.isEnabled ? " is true" : " is false");
        if (decision.result != "0" && decision.result != "1" && !decision.result.empty())
            m_reason.text += ": the result is \"" + decision.result + "\"";
        addRegisters(decision);
    }

    /// The registers that an expression names, as `register_value(NAME)` or as a variable of a
    /// block, `$::block::NAME`, and those that the scripts name which make its other variables and
    /// commands.
    void addRegisters(const HBSDecision& decision) {
        const std::string_view text = decision.expression;
        constexpr std::string_view kCall = "register_value(";
        for (std::size_t at = text.find(kCall); at != std::string_view::npos;
             at = text.find(kCall, at + 1)) {
            std::size_t start = at + kCall.size();
            start = std::min(text.find_first_not_of(" \t", start), text.size());
            addRegister(HABMPath::findBlock(m_map.definition(),
                                            decision.path.substr(0, decision.path.find('/', 1))),
                        std::string(text.substr(start, text.find(')', start) - start)));
        }
        for (std::size_t at = text.find("::"), end = 0; at != std::string_view::npos;
             at = text.find("::", end)) {
            for (end = at; end < text.size() && (isWord(text[end]) || text[end] == ':');)
                ++end;
            addNamed(std::string(text.substr(at, end - at)));
        }
    }

    /// A name such as "::block::NAME".
    void addNamed(std::string name) {
        for (std::size_t colons = name.find("::"); colons != std::string::npos;
             colons = name.find("::"))
            name.replace(colons, 2, "/");
        const std::size_t last = name.rfind('/');
        const HABMBlock* const block =
            last == std::string::npos
                ? nullptr
                : HABMPath::findBlock(m_map.definition(), name.substr(0, last));
        if (block != nullptr && !addRegister(block, name.substr(last + 1)))
            addScript(*block);
    }

    void addScript(const HABMBlock& block) {
        const std::string name = definitionNameOf(block);
        const std::string file = m_map.hardblocks() + "/" + name + "/" + name + ".tcl";
        const std::unordered_set<std::string>& words = wordsOf(file);
        if (words.empty())
            return;
        if (std::find(m_reason.scripts.begin(), m_reason.scripts.end(), file) ==
            m_reason.scripts.end())
            m_reason.scripts.push_back(file);
        for (const HABMRegister* const reg :
             block.findRegisters(block.getInstancePath() + "*", false))
            if (words.contains(reg->getName()))
                addRegister(&block, reg->getName());
    }

    /// Empty for a file that can't be read.
    const std::unordered_set<std::string>& wordsOf(const std::string& file) {
        constexpr std::size_t kMostBytes = std::size_t{1} << 20;
        const auto [entry, isNew] = m_lookup.words.try_emplace(file);
        if (!isNew)
            return entry->second;
        const std::string text = base::readFile(file, kMostBytes).text;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t start = at;
            while (at < text.size() && isWord(text[at]))
                ++at;
            entry->second.insert(text.substr(start, at - start));
            at += at == start ? 1 : 0;
        }
        return entry->second;
    }

    static bool isWord(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    }

    /// False if the block has no such register.
    bool addRegister(const HABMBlock* block, const std::string& name) {
        const HABMRegister* const reg =
            block == nullptr ? nullptr : block->findRegister(name, true);
        if (reg == nullptr)
            return false;
        const std::string path = reg->getPath();
        if (!m_named.insert(path).second)
            return true;
        const Place given = m_map.config().placeOfRegister(path);
        if (!given.file.empty())
            m_reason.registers.push_back({path.substr(1), configValue(path), textOf(given)});
        else if (reg->getGivenValue().isValid())
            m_reason.registers.push_back({path.substr(1), reg->getValue(), "the definition"});
        else
            m_reason.registers.push_back({path.substr(1), reg->getValue(),
                                          "its reset, " + textOf(m_places.of(*reg, "reset"))});
        return true;
    }

    [[nodiscard]] HABMAddrValue configValue(const std::string& path) const {
        const std::size_t slash = path.find('/', 1);
        const HABMBlock* const all = m_map.config().block().getSubBlock("inst");
        const HABMBlock* const settings =
            all == nullptr ? nullptr : all->getSubBlock(path.substr(1, slash - 1));
        const HABMRegister* const reg =
            settings == nullptr ? nullptr : settings->findRegister(path.substr(slash + 1), true);
        return reg == nullptr ? HABMAddrValue() : reg->getValue();
    }

    static std::string textOf(const Place& place) {
        return place.line == 0 ? place.file
                               : place.file + ":" + std::to_string(place.line) + ":" +
                                     std::to_string(place.column);
    }

    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> known;
        for (const HABMBlock* const block : m_map.definition().getSubBlocks())
            known.push_back(block->getInstanceName());
        for (const HABMInterface* const interface : m_map.definition().getInterfaces())
            known.push_back(interface->getInterfaceName());
        return known;
    }

    const ConfiguredMap& m_map;
    Lookup& m_lookup;
    DefinitionPlaces& m_places;
    std::unordered_set<std::string> m_named; ///< registers that the reason has
    MapReason m_reason;
};

std::vector<MapMatch> findAt(const ConfiguredMap& map, const HABMAddrValue& address,
                             const std::string& from) {
    expectInitiator(map, from);
    std::vector<MapMatch> matches;
    for (const AddressViews::Match& match : map.views().at(address, from)) {
        const AddressViews::Region& region = match.region->value;
        matches.push_back(
            {match.view, &region, region.block, match.reg, address,
             match.reg == nullptr ? match.offset : match.offset.minus(match.reg->getOffset())});
    }
    return matches;
}

std::vector<MapMatch> findNamed(const ConfiguredMap& map, const std::string& pattern,
                                const std::string& from) {
    expectInitiator(map, from);
    return NameSearch(map, pattern, from).take();
}

MapReasons::MapReasons(const ConfiguredMap& map) : m_lookup(std::make_unique<Lookup>(map)) {}

MapReasons::~MapReasons() = default;

MapReason MapReasons::of(const std::string& path) {
    return Explanation(*m_lookup, path).take();
}

MapReason findReason(const ConfiguredMap& map, const std::string& path) {
    return MapReasons(map).of(path);
}

} // namespace tq
