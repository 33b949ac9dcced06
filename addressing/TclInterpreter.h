// A Tcl interpreter for scripts of hard blocks, which leaves the process as it was.
#pragma once

#include <tcl.h>

#include <memory>

namespace hbs_addressing {

/// A plain interpreter (no init.tcl, no command of this library's), guarded by a `TclGuard` with
/// the time limit of `findScriptTimeLimit`. Used by one thread.
///
/// Its destructor restores all that Tcl or its scripts changed of the process or the thread:
/// locale (Tcl wants "C" numbers, which would change how the whole tool reads numbers), SIGPIPE,
/// working directory, environment, standard channels, system encoding.
class TclInterpreter {
public:
    TclInterpreter();
    ~TclInterpreter();
    TclInterpreter(const TclInterpreter&) = delete;
    TclInterpreter& operator=(const TclInterpreter&) = delete;

    /// The interpreter, or null if Tcl gave none.
    [[nodiscard]] Tcl_Interp* get() const;

private:
    class Run;
    std::unique_ptr<Run> m_run;
};

} // namespace hbs_addressing
