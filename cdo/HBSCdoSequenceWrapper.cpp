#include "cdo/HBSCdoSequenceWrapper.h"

#include "HTCErrors.h"
#include "scripting/Invalidation.h"

HBSCdoSequenceWrapper::HBSCdoSequenceWrapper(const std::string& name, CdoSequence* sequence)
    : m_name(name), m_sequence(sequence) {}

HBSCdoSequenceWrapper::~HBSCdoSequenceWrapper() {
    try {
        hdi::tcltasks::invalidate(this);
        try {
            hdi::pyinfra::invalidate(this);
        } catch (...) { // a destructor can't report
        }
    } catch (...) { // a broken Tcl side leaves the Python side alone, too
    }
}

std::string HBSCdoSequenceWrapper::getName() const {
    return m_name;
}

CdoSequence* HBSCdoSequenceWrapper::getSequence() const {
    return m_sequence;
}

void HBSCdoSequenceWrapper::addMarker(const std::string& name, unsigned int kind) {
    if (kind == kMarkerOpens)
        openMarker(name);
    else if (kind == kMarkerCloses)
        closeMarker(name);
}

void HBSCdoSequenceWrapper::openMarker(const std::string& name) {
    if (m_openMarkerSet.contains(name))
        throw HTCErrors::command_failed("Marker '" + name + "' is already opened");
    m_openMarkers.push_back(name);
    try {
        m_openMarkerSet.insert(name);
    } catch (...) { // out of memory: both stay alike
        m_openMarkers.pop_back();
        throw;
    }
}

void HBSCdoSequenceWrapper::closeMarker(const std::string& name) {
    if (m_openMarkers.empty())
        throw HTCErrors::command_failed("Marker '" + name + "' is not opened");
    if (m_openMarkers.back() != name)
        throw HTCErrors::command_failed("Marker '" + name +
                                        "' not matched with last opened marker '" +
                                        m_openMarkers.back() + "'");
    m_openMarkerSet.erase(name);
    m_openMarkers.pop_back();
}

void HBSCdoSequenceWrapper::markerCheck() {
    if (m_openMarkers.empty())
        return;
    std::string names = m_openMarkers.back();
    for (auto marker = m_openMarkers.rbegin() + 1; marker != m_openMarkers.rend(); ++marker)
        names += ", " + *marker;
    throw HTCErrors::command_failed("Marker '" + names + "' not closed");
}
