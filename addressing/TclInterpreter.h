// A Tcl interpreter that is deleted with its owner and leaves the process's locale alone.
#pragma once

#include <tcl.h>

namespace hbs_addressing {

/// A plain interpreter (no init.tcl, no command of this library's). Used by one thread.
///
/// Creating an interpreter changes the process's locale (Tcl wants "C" numbers), which would change
/// how the whole tool reads numbers: the locale that stood before is put back.
class TclInterpreter {
public:
    TclInterpreter();
    ~TclInterpreter();
    TclInterpreter(const TclInterpreter&) = delete;
    TclInterpreter& operator=(const TclInterpreter&) = delete;

    /// The interpreter, or null if Tcl gave none.
    [[nodiscard]] Tcl_Interp* get() const { return m_interp; }

private:
    Tcl_Interp* m_interp;
};

} // namespace hbs_addressing
