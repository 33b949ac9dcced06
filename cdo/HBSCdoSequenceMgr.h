// The process-wide table of named configuration sequences.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "cdo/HBSCdoSequenceWrapper.h"
#include "tq_export.h"

/// Makes, finds and deletes sequences by name. Every failure is an `HTCErrors::command_failed` with
/// the text "sequence 'NAME' does not exist" and leaves the table as it was. Not guarded: one
/// thread at a time.
///
/// The end of the process destroys the table but not the wrappers in it.
class TQ_EXPORT HBSCdoSequenceMgr {
public:
    /// The one of the process.
    static HBSCdoSequenceMgr& getGlobal();

    HBSCdoSequenceMgr(const HBSCdoSequenceMgr&) = delete;
    HBSCdoSequenceMgr& operator=(const HBSCdoSequenceMgr&) = delete;

    /// Makes a wrapper and enters it under its name; it is valid until it is deleted below. An
    /// earlier wrapper of that name stays valid but can't be found by name any more; whoever holds
    /// its pointer owns it from then on.
    HBSCdoSequenceWrapper* createCdoSequenceWrapper(const std::string& name, CdoSequence* sequence);
    /// Destroys the wrapper of that name and forgets it. Fails for an unknown name.
    void deleteCdoSequenceWrapper(const std::string& name);

    /// The wrapper of that name. Fails for an unknown name.
    [[nodiscard]] HBSCdoSequenceWrapper* getCdoSequenceWrapper(const std::string& name);
    /// The sequence of that name, or null for an unknown name.
    [[nodiscard]] CdoSequence* getCdoSequence(const std::string& name);
    /// The name of a sequence (of one of them, if it has several), or the empty text. Walks the
    /// table.
    [[nodiscard]] std::string getCdoSequenceName(CdoSequence* sequence);
    /// Appends every wrapper to `out`, in no particular order.
    void getCdoSeqWrapperColl(std::vector<HBSCdoSequenceWrapper*>& out);

private:
    using Wrappers = std::unordered_map<std::string, HBSCdoSequenceWrapper*>;

    HBSCdoSequenceMgr() = default;
    ~HBSCdoSequenceMgr() = default;

    Wrappers::iterator findExisting(const std::string& name);

    Wrappers m_wrappers;
};
