// All hard blocks of the tool's installation, read from JSON metadata files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "hardblock/HardBlockData.h"
#include "tq_export.h"

/// The one holder of hard block data. Its first use reads every file, hidden files and backup
/// copies too, in the folder "sce/hardblocks" of the tool's data area; a bad file doesn't stop the
/// others.
///
///     auto* manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
///     if (hardblock::HardBlockData* ps = manager->getHardBlockByName("sorrel_ps"))
///         ps->getInterfaceByName("M_AXI")->getPortMapByName("A[6]");
///
/// A file holds any number of hard blocks:
///
///     {"NAME": {"interfaces": {"NAME": {"access_point": {"module": "TEXT",
///                                                        "parameters": {"NAME": 1},
///                                                        "port_maps": {"MAPPED[3:0]":
///                                                        "A[7:4]"}}}},
///               "pins": {"NAME": {"type": "wire|vector", "direction": "in|out|inout",
///                                 "default_val": "TEXT", "size_left": 7, "size_right": 0}}}}
///
/// Every key may be left out, unknown keys are ignored. A value of an unsuitable type is skipped
/// with the message "@90-8@%s%s" (the type and the key), at any level, and the reading goes
/// on: its key counts as left out, a hard block, interface or pin whose body isn't an object stays
/// empty, and a root that isn't an object holds nothing. Values nested
/// deeper than 1000 levels are malformed.
///
/// Hard blocks are never removed; they and the manager exist until the process ends. Not
/// guarded by locks: the first call must come from one thread alone, and so must changes.
class TQ_EXPORT HBSHardBlockDataMgr {
public:
    /// The instance; the first call makes it and reads the data area.
    static HBSHardBlockDataMgr* getHardBlockDataMgr();

    HBSHardBlockDataMgr(const HBSHardBlockDataMgr&) = delete;
    HBSHardBlockDataMgr& operator=(const HBSHardBlockDataMgr&) = delete;

    /// Appends the hard blocks of one metadata file; a file read twice gives them twice. False for
    /// a missing file (one line on the standard output), one that can't be read ("@90-4@%s" with
    /// the full path) and malformed JSON ("@90-2@%s" with the reason, then "@90-4@%s"); nothing is
    /// added then, save what an exception such as exhausted memory interrupts.
    bool createHardBlocks(const std::string& file);

    /// The same with findings, in the order of the file: values that are passed over
    /// ("wrong-type"), unknown and repeated names, texts that count as a default ("unknown-text"),
    /// numbers that can't be read or are too large, ranges of port maps that don't fit or overlap.
    /// They are warnings; a file that can't be read is an error ("malformed-json" with its place,
    /// "unreadable-file"). The messages are sent as well. What the sink throws ends the reading as
    /// a failure.
    bool createHardBlocks(const std::string& file, const tq::DiagnosticSink& sink);

    /// The first hard block of that name; a null pointer and one line on the standard output if
    /// there is none. Takes the same time for any number of hard blocks, but for the first call
    /// after one was added or renamed.
    [[nodiscard]] hardblock::HardBlockData* getHardBlockByName(const std::string& name);

    /// All hard blocks, in order of reading.
    [[nodiscard]] std::vector<hardblock::HardBlockData*> getHardBlocksData();

private:
    HBSHardBlockDataMgr();
    ~HBSHardBlockDataMgr();

    void scanMetadataDirectory();
    void updateIndex();

    std::string m_metadataFile; ///< given to the last createHardBlocks that found its file
    std::vector<std::unique_ptr<hardblock::HardBlockData>> m_hardBlocks;
    /// The first hard block of each name; the names are the hard blocks' own.
    std::unordered_map<std::string_view, hardblock::HardBlockData*> m_byName;
    std::size_t m_indexed = 0;   ///< hard blocks that the index knows
    std::uint64_t m_renames = 0; ///< of any hard block when the index was made
};
