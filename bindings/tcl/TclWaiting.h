// A Tcl thread that waits for a search.
#pragma once

#include <tcl.h>

#include "bindings/core/Search.h"

namespace tq::bindings::tcl {

/// Ends the search for Ctrl-C, `interp cancel`, a time limit of the interpreter and handlers of
/// signals that an extension has set up. For Ctrl-C a handler stands while somebody waits, unless
/// the process has one of its own: by itself the shell has none and would end.
class TclWaiting : public Waiting {
public:
    explicit TclWaiting(Tcl_Interp* interp) : m_interp(interp) {}

    void letOthersRun() override;
    void stopOthers() override;
    [[nodiscard]] bool isInterrupted() override;

private:
    Tcl_Interp* m_interp;
};

} // namespace tq::bindings::tcl
