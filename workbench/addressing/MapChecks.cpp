#include "workbench/addressing/MapChecks.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "HUTFile.h"
#include "workbench/addressing/DefinitionPlaces.h"
#include "workbench/addressing/StubFindings.h"

namespace tq {

namespace {

constexpr HABMAddrValue kZero{std::uint64_t{0}};

using Interval = AddressViews::Regions::Interval;

std::string hex(const HABMAddrValue& value) {
    return value.isValid() ? value.getPrettyHexStringValue(0) : "?";
}

std::string rangeText(const HABMAddrValue& first, const HABMAddrValue& last) {
    return hex(first) + " to " + hex(last);
}

/// The two paths in sorted order, cut to the parts at which they differ if those are the first.
std::string pairName(std::string a, std::string b) {
    const std::string firstOfA = a.substr(0, a.find('/'));
    const std::string firstOfB = b.substr(0, b.find('/'));
    if (firstOfA != firstOfB)
        return std::min(firstOfA, firstOfB) + "/" + std::max(firstOfA, firstOfB);
    std::replace(a.begin(), a.end(), '/', '.');
    std::replace(b.begin(), b.end(), '/', '.');
    return std::min(a, b) + "/" + std::max(a, b);
}

bool isPowerOfTwo(const HABMAddrValue& value) {
    return value.isValid() && value.roundUpPow2() == value;
}

/// `size` is a power of two.
bool isAligned(const HABMAddrValue& address, const HABMAddrValue& size) {
    const unsigned bits = size.log2();
    const std::uint64_t mask = bits >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
    return (address.getLowBits() & mask) == 0 && (bits <= 64 || address == kZero);
}

std::uint64_t bytesOf(const HABMRegister& reg) {
    return (std::uint64_t{reg.getWidth()} + 7) / 8;
}

class Checks {
public:
    Checks(const CheckedMap& checked, const DiagnosticSink& sink)
        : m_checked(checked), m_sink(sink), m_places(checked.hardblocks) {}

    void run() {
        checkStubs();
        checkVersions();
        forEachKept([this](const AddressMap::Block& block) { checkAddress(block); });
        for (const HABMAddrAssign* const assign : m_checked.instance.findAddrAssigns("", true))
            checkAssign(*assign);
        for (const AddressMap::Space& space : m_checked.map.spaces())
            checkSegments(space);
        for (const AddressViews::View& view : m_checked.views.views())
            checkOverlaps(view);
        // What there may be most of comes last, the hints after all else: lists of findings end.
        forEachKept([this](const AddressMap::Block& block) { checkRegisters(block); });
        forEachKept([this](const AddressMap::Block& block) { hintAtAperture(block); });
    }

private:
    template <class Check>
    void forEachKept(const Check& check) const {
        for (const AddressMap::Block& block : m_checked.map.blocks())
            if (block.instance != nullptr)
                check(block);
    }

    void tell(Severity severity, const std::string& kind, const std::string& subject, Place place,
              std::string text, std::string expected = {}) const {
        m_sink(makeDiagnostic(severity, kind + ":" + subject, std::move(place), std::move(text),
                              std::move(expected)));
    }

    // --- definitions ---

    void checkStubs() {
        for (const HABMBlock* const stub : m_checked.instance.findStubs()) {
            Diagnostic finding = findingOfStub(*stub);
            finding.id += ":" + stub->getInstancePath().substr(1);
            finding.place = m_places.of(*stub, "vlnv");
            m_sink(std::move(finding));
        }
    }

    /// What replaces a stub takes its VLNV along, so that what was asked for is to be read again.
    void checkVersions() {
        const std::string& found = m_checked.definition.getModuleVlnv();
        if (!m_checked.askedVlnv.empty() && m_checked.askedVlnv != found)
            tell(Severity::Error, "other-version", m_checked.definition.getModuleName(),
                 m_places.ofFile(m_checked.definition),
                 "the definition is \"" + found + "\", asked for was \"" + m_checked.askedVlnv +
                     "\"");
        if (!m_checked.hardblocks.empty())
            checkVersionsBelow(m_checked.definition);
    }

    void checkVersionsBelow(const HABMBlock& block) {
        const std::vector<HABMBlock*> children = block.getSubBlocks();
        const HABMBlock* const asRead = children.empty() ? nullptr : definitionAsRead(block);
        for (const HABMBlock* const child : children) {
            const HABMBlock* const stub =
                asRead == nullptr ? nullptr : asRead->getSubBlock(child->getInstanceName());
            if (stub != nullptr && stub->isBlockStub() && !child->isBlockStub() &&
                stub->getModuleVlnv() != child->getModuleVlnv())
                tell(Severity::Error, "other-version", child->getInstancePath().substr(1),
                     m_places.of(*child, "vlnv"),
                     "the definition of \"" + child->getInstancePath().substr(1) + "\" is \"" +
                         child->getModuleVlnv() + "\", asked for was \"" + stub->getModuleVlnv() +
                         "\"");
            checkVersionsBelow(*child);
        }
    }

    const HABMBlock* definitionAsRead(const HABMBlock& block) {
        const std::string name = definitionNameOf(block);
        const auto [entry, isNew] = m_read.try_emplace(name);
        if (isNew && !name.empty())
            entry->second = HABMBlock::readTopBlock(HUTFile(m_places.ofFile(block).file));
        return entry->second.get();
    }

    // --- blocks and registers ---

    static bool isPlaced(const AddressMap::Block& block) {
        return block.base.isValid() && block.end.isValid();
    }

    void checkAddress(const AddressMap::Block& block) {
        if (block.size == kZero)
            tell(Severity::Warning, "no-size", block.path, m_places.of(*block.instance, "size"),
                 "the block \"" + block.path + "\" has no size");
        else if (!isPlaced(block))
            tell(Severity::Error, "no-address", block.path,
                 m_places.of(*block.instance, block.base.isValid() ? "size" : "offset"),
                 "the address of the block \"" + block.path + "\" can't be computed",
                 "an address of at most 127 bits");
    }

    void hintAtAperture(const AddressMap::Block& block) {
        if (block.size == kZero || !isPlaced(block))
            return;
        if (!isPowerOfTwo(block.size))
            tell(Severity::Remark, "aperture-size", block.path,
                 m_places.of(*block.instance, "size"),
                 "the size of \"" + block.path +
                     "\" isn't a power of two: " + block.size.getAbrvStringValue());
        else if (!isAligned(block.base, block.size))
            tell(Severity::Remark, "aperture-alignment", block.path,
                 m_places.of(*block.instance, "offset"),
                 "\"" + block.path + "\" of " + block.size.getAbrvStringValue() +
                     " isn't aligned to its size: " + hex(block.base));
    }

    /// Instances of one definition have the same registers: they are checked once.
    void checkRegisters(const AddressMap::Block& block) {
        const HABMMemoryMap& map = *block.instance->getParent();
        const std::string name = definitionNameOf(*map.getParent());
        if (!name.empty() &&
            !m_checkedBlocks.insert(name + "/" + map.getName() + "/" + block.instance->getName())
                 .second)
            return;
        const HABMRegister* read = nullptr;
        const HABMRegister* written = nullptr;
        HABMAddrValue readEnd;
        HABMAddrValue writtenEnd;
        for (const auto& interval : m_checked.views.registersOf(block).all()) {
            const HABMRegister& reg = *interval.value;
            if (block.size.isValid() && !(interval.last < block.size) && block.size != kZero)
                tellOutside(block, reg);
            if (!isAligned(reg.getOffset(), HABMAddrValue(bytesOf(reg)).roundUpPow2()))
                tell(Severity::Warning, "misaligned", nameOf(block, reg),
                     m_places.of(reg, "offset"),
                     "the register \"" + nameOf(block, reg) + "\" of " +
                         std::to_string(reg.getWidth()) + " bits isn't aligned to its size");
            const bool isRead = reg.getAccess() != HABMRegister::RegisterAccess::WriteOnly;
            const bool isWritten = reg.getAccess() != HABMRegister::RegisterAccess::ReadOnly;
            if (isRead && read != nullptr && !(readEnd < interval.first))
                tellOverlap(block, reg, *read);
            else if (isWritten && written != nullptr && !(writtenEnd < interval.first))
                tellOverlap(block, reg, *written);
            if (isRead && (read == nullptr || readEnd < interval.last))
                read = &reg, readEnd = interval.last;
            if (isWritten && (written == nullptr || writtenEnd < interval.last))
                written = &reg, writtenEnd = interval.last;
        }
    }

    static std::string nameOf(const AddressMap::Block& block, const HABMRegister& reg) {
        return block.path + "/" + reg.getName();
    }

    void tellOutside(const AddressMap::Block& block, const HABMRegister& reg) {
        tell(Severity::Error, "outside-block", nameOf(block, reg), m_places.of(reg, "offset"),
             "the register \"" + nameOf(block, reg) + "\" at " + hex(reg.getOffset()) +
                 " reaches beyond its block",
             "an end within " + block.size.getAbrvStringValue());
    }

    void tellOverlap(const AddressMap::Block& block, const HABMRegister& reg,
                     const HABMRegister& before) {
        Diagnostic finding = makeDiagnostic(
            Severity::Error, "register-overlap:" + nameOf(block, reg), m_places.of(reg, "offset"),
            "the register \"" + nameOf(block, reg) + "\" at " + hex(reg.getOffset()) +
                " overlaps \"" + before.getName() + "\" at " + hex(before.getOffset()));
        finding.notes.push_back({m_places.of(before, "offset"), "the other one"});
        m_sink(std::move(finding));
    }

    // --- address spaces ---

    [[nodiscard]] Place placeOf(const HABMAddrAssign& assign) {
        Place place = m_checked.config.placeOfAssign(assign.getName());
        return place.file.empty() ? m_places.ofFile(*assign.getParent()) : place;
    }

    void checkAssign(const HABMAddrAssign& assign) {
        const HABMAddrSegment* const segment = assign.getTargetAddrSegment();
        if (segment == nullptr || assign.getSourceAddrBlock() == nullptr)
            return tellLostEnd(assign, segment == nullptr);
        if (assign.getAssignType() == HABMAddrAssign::Excluded || assign.getRange() == kZero)
            return;
        const HABMAddrValue first = assign.getOffset();
        const HABMAddrValue last = AddressMap::endOf(first, assign.getRange());
        const HABMAddrValue segmentLast = segment->getAperture().getHighAddress();
        const HABMAddrValue range = segment->getParent()->getRange();
        const std::string text = "the assign \"" + assign.getName() + "\" of \"" +
                                 assign.getSourcePath().substr(1) + "\" (" +
                                 rangeText(first, last) + ") reaches beyond its ";
        if (!last.isValid() || (kZero < range && !(last < range)))
            tell(Severity::Error, "outside-space", assign.getName(), placeOf(assign),
                 text + "address space", "an end within " + range.getAbrvStringValue());
        else if (first < segment->getOffset() || segmentLast < last)
            tell(Severity::Error, "outside-segment", assign.getName(), placeOf(assign),
                 text + "segment",
                 "an extent within " + rangeText(segment->getOffset(), segmentLast));
    }

    void tellLostEnd(const HABMAddrAssign& assign, bool isSegment) {
        const std::string& path = isSegment ? assign.getTargetPath() : assign.getSourcePath();
        const bool isOff = isSegment
                               ? HABMPath::findAddrSegment(m_checked.definition, path) != nullptr
                               : HABMPath::findAddrBlock(m_checked.definition, path) != nullptr;
        const std::string text = "the assign \"" + assign.getName() + "\" is " +
                                 (isSegment ? "to" : "of") + " \"" + path + "\", which ";
        if (isOff)
            tell(Severity::Warning, "assign-off", assign.getName(), placeOf(assign),
                 text + "is switched off");
        else
            tell(Severity::Error, "assign-nowhere", assign.getName(), placeOf(assign),
                 text + "doesn't exist");
    }

    void checkSegments(const AddressMap::Space& space) {
        const HABMAddrValue& range = space.space->getRange();
        for (const AddressMap::SpaceEntry& entry : space.windows)
            if (kZero < range && kZero < entry.size &&
                !(AddressMap::endOf(entry.start, entry.size) < range))
                tell(Severity::Error, "outside-space", space.path + "/" + entry.name,
                     m_places.of(*entry.segment, "offset"),
                     "the segment \"" + space.path + "/" + entry.name +
                         "\" reaches beyond its address space",
                     "an end within " + range.getAbrvStringValue());
    }

    // --- overlaps ---

    /// Each region with all before it that reach into it. Beyond the bound only with the one that
    /// reaches furthest, so that no region that overlaps goes untold.
    void checkOverlaps(const AddressViews::View& view) {
        std::vector<const Interval*> open;
        const Interval* furthest = nullptr;
        for (const Interval& region : view.regions.all()) {
            if (furthest != nullptr && !(furthest->last < region.first))
                tellOverlap(view, *furthest, region);
            std::erase_if(open,
                          [&](const Interval* before) { return before->last < region.first; });
            for (const Interval* const before : open)
                if (before != furthest && m_pairsLeft != 0) {
                    --m_pairsLeft;
                    tellOverlap(view, *before, region);
                }
            if (m_pairsLeft != 0)
                open.push_back(&region);
            else
                tellCut(open);
            if (furthest == nullptr || furthest->last < region.last)
                furthest = &region;
        }
    }

    void tellCut(std::vector<const Interval*>& open) {
        open.clear();
        if (!std::exchange(m_isCutTold, true))
            tell(Severity::Error, "more-overlaps", m_checked.instance.getModuleName(), {},
                 "there are so many overlaps that not every pair is listed");
    }

    void tellOverlap(const AddressViews::View& view, const Interval& a, const Interval& b) {
        const AddressMap::Block* const blockA = a.value.block;
        const AddressMap::Block* const blockB = b.value.block;
        if (!m_toldPairs.insert(std::minmax(blockA, blockB)).second)
            return;
        Place placeA = placeOf(a, *blockB);
        Place placeB = placeOf(b, *blockA);
        // The one that comes later in the file is the one to change.
        const bool isFirstLater = placeA.file == placeB.file && placeB.line < placeA.line;
        const bool isBoth = blockA == blockB;
        Diagnostic finding =
            makeDiagnostic(Severity::Error,
                           isBoth ? "assigned-twice:" + blockA->path
                                  : "overlap:" + pairName(blockA->path, blockB->path),
                           isFirstLater ? placeA : placeB,
                           "\"" + view.path + "\" sees " + textOf(isFirstLater ? a : b) + " over " +
                               textOf(isFirstLater ? b : a));
        finding.notes.push_back({isFirstLater ? placeB : placeA, "the other one"});
        m_sink(std::move(finding));
    }

    static std::string textOf(const Interval& region) {
        return "\"" + region.value.block->path + "\" (" + rangeText(region.first, region.last) +
               (region.value.assign == nullptr
                    ? ")"
                    : ", assign \"" + region.value.assign->getName() + "\")");
    }

    /// What puts a block where it is: its assign, or the base address by which it differs from the
    /// other block, or its offset in their memory map.
    Place placeOf(const Interval& region, const AddressMap::Block& other) {
        if (region.value.assign != nullptr)
            return placeOf(*region.value.assign);
        const HABMAddrBlock& block = *region.value.block->instance;
        const HABMBlock* own = block.getParent()->getParent();
        const HABMBlock& theirs = *other.instance->getParent()->getParent();
        if (isWithin(theirs, *own))
            return m_places.of(block, "offset");
        while (own->getParent() != nullptr && !isWithin(theirs, *own->getParent()))
            own = own->getParent();
        return m_places.of(*own, "base_address");
    }

    static bool isWithin(const HABMBlock& block, const HABMBlock& around) {
        const HABMBlock* at = &block;
        while (at != nullptr && at != &around)
            at = at->getParent();
        return at != nullptr;
    }

    const CheckedMap& m_checked;
    const DiagnosticSink& m_sink;
    DefinitionPlaces m_places;
    std::map<std::string, std::unique_ptr<HABMBlock>> m_read; ///< definitions, by name
    std::unordered_set<std::string> m_checkedBlocks;
    std::set<std::pair<const AddressMap::Block*, const AddressMap::Block*>> m_toldPairs;
    /// Overlaps of all views that are still told beside those with the furthest region.
    std::size_t m_pairsLeft = 100000;
    bool m_isCutTold = false;
};

} // namespace

void checkMap(const CheckedMap& checked, const DiagnosticSink& sink) {
    if (sink)
        Checks(checked, sink).run();
}

} // namespace tq
