// A named configuration sequence, and the check that the markers set while it is written nest as
// brackets do.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "tq_export.h"

/// A sequence of the tool's configuration layer, known here by its address alone.
struct CdoSequence;

/// Names a sequence and keeps its open markers.
///
///     wrapper->addMarker("power", HBSCdoSequenceWrapper::kMarkerOpens);
///     wrapper->addMarker("power", HBSCdoSequenceWrapper::kMarkerCloses);
///     wrapper->markerCheck(); // none is open: fine
///
/// Every failure is an `HTCErrors::command_failed` and leaves the wrapper as it was, so the caller
/// may go on. The destructor notifies scripts that hold the wrapper; exceptions of that are
/// ignored. Normally made and deleted by `HBSCdoSequenceMgr`. Not guarded: one thread at a time.
class TQ_EXPORT HBSCdoSequenceWrapper {
public:
    // The kinds of markers.
    static constexpr unsigned int kMarkerOpens = 100;
    static constexpr unsigned int kMarkerCloses = 101;

    /// The sequence is borrowed, never read and never freed. It may be null.
    HBSCdoSequenceWrapper(const std::string& name, CdoSequence* sequence);
    ~HBSCdoSequenceWrapper();

    HBSCdoSequenceWrapper(const HBSCdoSequenceWrapper&) = delete;
    HBSCdoSequenceWrapper& operator=(const HBSCdoSequenceWrapper&) = delete;

    /// As given to the constructor.
    [[nodiscard]] std::string getName() const;
    /// The native object as given to the constructor, may be null. Not owned.
    [[nodiscard]] CdoSequence* getSequence() const;

    /// Opens or closes a marker, as the kind says; any other kind is ignored. Fails on opening
    /// a marker that is open at any depth, and on closing any but the one opened last. A closed
    /// marker may be opened again.
    void addMarker(const std::string& name, unsigned int kind);

    /// Fails while any marker is open, naming all of them, the innermost first. Changes nothing.
    void markerCheck();

private:
    void openMarker(const std::string& name);
    void closeMarker(const std::string& name);

    std::string m_name;
    CdoSequence* m_sequence;
    std::vector<std::string> m_openMarkers;          // the innermost last
    std::unordered_set<std::string> m_openMarkerSet; // the same names
};
