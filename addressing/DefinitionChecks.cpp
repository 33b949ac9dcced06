#include "addressing/DefinitionChecks.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "blockmodel/HABM.h"

namespace hbs_tables {

namespace {

using tq::Severity;

/// What a row takes of an address range.
struct Extent {
    const HBSTableRow* row;
    std::string_view name;
    HABMAddrValue first;
    HABMAddrValue last;
};

/// Calls `visit` with each extent that overlaps one that starts before it, and that one. Sorted, an
/// extent overlaps an earlier one exactly if it starts before the furthest end so far.
template <class Visit>
void forEachOverlap(std::vector<Extent>& extents, Visit visit) {
    std::stable_sort(extents.begin(), extents.end(),
                     [](const Extent& a, const Extent& b) { return a.first < b.first; });
    const Extent* furthest = nullptr;
    for (const Extent& extent : extents) {
        if (furthest != nullptr && !(furthest->last < extent.first))
            visit(*furthest, extent);
        if (furthest == nullptr || furthest->last < extent.last)
            furthest = &extent;
    }
}

/// Reports an overlap at the row that comes later in the table.
void tellOverlap(const HBSTableFindings& findings, const char* what, const Extent& a,
                 const Extent& b) {
    const bool isInOrder = a.row->rowStart < b.row->rowStart;
    const Extent& earlier = isInOrder ? a : b;
    const Extent& later = isInOrder ? b : a;
    findings.tell(*later.row, "offset", Severity::Warning, "overlap",
                  std::string(what) + " " + quoted(later.name) + " overlaps " +
                      quoted(earlier.name),
                  {}, earlier.row, "the other one");
}

/// The registers of one address block name, each name once, as the block takes them.
using Registers = std::vector<const HBSRegisterRow*>;

std::unordered_map<std::string_view, Registers>
registersByBlock(const std::vector<HBSRegisterRow>& rows) {
    std::unordered_map<std::string_view, Registers> byBlock;
    std::set<std::pair<std::string_view, std::string_view>> seen;
    for (const HBSRegisterRow& row : rows)
        if (seen.emplace(row.addrblock, row.registerName).second)
            byBlock[row.addrblock].push_back(&row);
    return byBlock;
}

std::uint64_t bytesOf(const HBSRegisterRow& row) {
    return (std::uint64_t{decimal(row.width)} + 7) / 8;
}

/// Invalid for a register without a width or with an offset that can't be read.
HABMAddrValue lastByte(const HBSRegisterRow& row) {
    const std::uint64_t bytes = bytesOf(row);
    return bytes == 0 ? HABMAddrValue() : row.offset.plus(HABMAddrValue(bytes - 1));
}

/// Whether the offset is a multiple of the size, rounded up to a power of two.
bool isAligned(const HBSRegisterRow& row) {
    const HABMAddrValue size = HABMAddrValue(bytesOf(row)).roundUpPow2();
    const std::string offset = row.offset.getHexStringValue(64);
    const std::uint64_t low = std::strtoull(offset.substr(offset.size() - 16).c_str(), nullptr, 16);
    return (low & ((std::uint64_t{1} << size.log2()) - 1)) == 0;
}

void checkAlignment(const Registers& registers, const HBSTableFindings& findings) {
    for (const HBSRegisterRow* const row : registers)
        if (lastByte(*row).isValid() && !isAligned(*row))
            findings.tell(*row, "offset", Severity::Remark, "misaligned",
                          "register " + quoted(row->registerName) + " of " +
                              std::to_string(decimal(row->width)) +
                              " bits isn't aligned to its size");
}

/// A read-only and a write-only register may share an address, so readable and writable registers
/// are checked apart. A pair that overlaps in both is reported among the readable ones.
void checkRegisterOverlaps(const Registers& registers, const HBSTableFindings& findings) {
    std::vector<Extent> readable;
    std::vector<Extent> writable;
    std::unordered_set<const HBSTableRow*> writeOnly;
    for (const HBSRegisterRow* const row : registers) {
        const HABMAddrValue last = lastByte(*row);
        if (!last.isValid())
            continue;
        const Extent extent{row, row->registerName, row->offset, last};
        if (row->access == "write_only")
            writeOnly.insert(row);
        else
            readable.push_back(extent);
        if (row->access != "read_only")
            writable.push_back(extent);
    }
    forEachOverlap(readable, [&](const Extent& a, const Extent& b) {
        tellOverlap(findings, "register", a, b);
    });
    forEachOverlap(writable, [&](const Extent& a, const Extent& b) {
        if (writeOnly.contains(a.row) || writeOnly.contains(b.row))
            tellOverlap(findings, "register", a, b);
    });
}

void checkExtent(const HBSAddrBlockRow& addrBlock, const Registers& registers,
                 const HBSTableFindings& findings) {
    const HABMAddrValue size = addrBlock.aperture.getSize();
    if (size == HABMAddrValue(std::uint64_t{0}))
        findings.tell(addrBlock, "size", Severity::Warning, "no-size",
                      "address block " + quoted(addrBlock.addrblock) + " has no size");
    if (!size.isValid() || size == HABMAddrValue(std::uint64_t{0}))
        return;
    for (const HBSRegisterRow* const row : registers)
        if (!(lastByte(*row) < size))
            findings.tell(*row, "offset", Severity::Warning, "outside-addrblock",
                          "register " + quoted(row->registerName) +
                              " reaches beyond its address block " + quoted(addrBlock.addrblock),
                          "an end within " + size.getAbrvStringValue(), &addrBlock,
                          "the address block");
}

/// The names of a list for which `isMeant` holds, as a text.
template <class IsMeant>
std::string namesWhere(const std::set<std::string>& names, IsMeant isMeant) {
    std::string text;
    for (const std::string& name : names)
        if (isMeant(name))
            text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

/// One finding for each kind of fault in a row, as a list may be long.
template <class ListRow>
void checkList(const HABMBlock& block, const ListRow& row, bool areSources,
               const HBSTableFindings& findings) {
    const std::string missing = namesWhere(row.interfaces, [&](const std::string& name) {
        return block.getInterface(name) == nullptr;
    });
    if (!missing.empty())
        findings.tell(row, "interfaces", Severity::Warning, "unknown-interface",
                      "there is no interface " + quoted(missing), "names of interfaces.txt");
    const std::string others = namesWhere(row.interfaces, [&](const std::string& name) {
        const HABMInterface* const interface = block.getInterface(name);
        return interface != nullptr && interface->isSourceInterface() != areSources;
    });
    if (!others.empty())
        findings.tell(row, "interfaces", Severity::Warning, "unused-interface",
                      quoted(others) + " doesn't use this table: its mode is another",
                      areSources ? "interfaces of mode master"
                                 : "interfaces of other modes than master");
}

} // namespace

void checkPorts(const std::vector<HBSPortRow>& ports, const HBSTableFindings& findings) {
    for (const HBSPortRow& row : ports)
        if (row.type != "vector" && (decimal(row.left) != 0 || decimal(row.right) != 0))
            findings.tell(
                row, decimal(row.left) != 0 ? "left" : "right", Severity::Warning, "unused-bounds",
                "the bounds of " + quoted(row.port) + " aren't used: it is a wire", "type=vector");
}

void checkAddresses(const std::string& module, const std::vector<HBSAddrBlockRow>& addrBlocks,
                    const std::vector<HBSRegisterRow>& registers,
                    const HBSTableFindings& findings) {
    const auto byBlock = registersByBlock(registers);
    const Registers none;
    std::map<std::string_view, std::vector<Extent>> extentsOfMaps;
    std::set<std::pair<std::string_view, std::string_view>> seen;
    std::unordered_set<std::string_view> checked;
    for (const HBSAddrBlockRow& row : addrBlocks) {
        const std::string_view map = row.memorymap.empty() ? module : row.memorymap;
        if (!seen.emplace(map, row.addrblock).second)
            continue;
        const auto found = byBlock.find(row.addrblock);
        const Registers& members = found == byBlock.end() ? none : found->second;
        checkExtent(row, members, findings);
        if (checked.insert(row.addrblock).second) {
            checkAlignment(members, findings);
            checkRegisterOverlaps(members, findings);
        }
        const HABMAddrValue last = row.aperture.getHighAddress();
        if (last.isValid() && !(row.aperture.getSize() == HABMAddrValue(std::uint64_t{0})))
            extentsOfMaps[map].push_back({&row, row.addrblock, row.aperture.getStart(), last});
    }
    for (auto& [map, extents] : extentsOfMaps)
        forEachOverlap(extents, [&](const Extent& a, const Extent& b) {
            tellOverlap(findings, "address block", a, b);
        });
}

void checkInterfaceLists(const HABMBlock& block, const std::vector<HBSAddrBlockRow>& addrBlocks,
                         const std::vector<HBSAddrSegmentRow>& addrSegments,
                         const HBSTableFindings& findings) {
    for (const HBSAddrBlockRow& row : addrBlocks)
        checkList(block, row, false, findings);
    for (const HBSAddrSegmentRow& row : addrSegments)
        checkList(block, row, true, findings);
}

} // namespace hbs_tables
