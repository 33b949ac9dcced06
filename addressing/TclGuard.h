// Keeps what scripts do from ending, hanging or crashing the process.
#pragma once

#include <tcl.h>

#include <chrono>
#include <optional>

namespace hbs_addressing {

/// Guards an interpreter and those that its scripts create. Everything refused is a Tcl error,
/// which a script may catch; only the end of the time can't be caught.
///
/// - `exit` is an error.
/// - `source` refuses a file that is neither a regular file nor a folder (a FIFO could block for
///   ever), one above 64 MiB, and one whose substitutions are nested so deep that Tcl's parser
///   would overrun the stack.
/// - All scripts together have a time limit. A script that starts when little or nothing of it is
///   left gets 0.1 s, so that plain expressions are still decided after one script ran away.
/// - The recursion limit can't be raised above Tcl's default of 1,000 nested evaluations.
///
/// Not stopped: one long command in C (a `string match` with a dozen stars, a `regexp` with nested
/// quantifiers, a big `lsort`), a command that waits in the system (`exec`, `gets stdin`, a command
/// pipeline that is left open), what is nested by the ten thousand and overruns the stack in Tcl's
/// C code (text with "[" that a script makes up itself and evaluates, the groups of a regular
/// expression, a list or dict in another), values that use up memory or Tcl's 2 GiB for one of them
/// (Tcl ends the process), signals that a script sends, and libraries that it loads. Tcl takes time
/// quadratic in them to delete what a script leaves of links between variables (`upvar`), objects
/// and pending `after` scripts: half a minute for 200,000.
///
/// Lives longer than the interpreter.
class TclGuard {
public:
    /// Without a time there is no limit. The time starts now.
    explicit TclGuard(std::optional<std::chrono::milliseconds> time);

    void guard(Tcl_Interp* interp);

    /// To be called before a script is run in a guarded interpreter; others are left alone.
    static void beginScript(Tcl_Interp* interp);

    /// Restores the limits that a script may have changed in an interpreter of its own.
    void restoreLimits(Tcl_Interp* interp) const;

private:
    void setDeadline(Tcl_Interp* interp) const;

    std::optional<Tcl_Time> m_deadline;
};

} // namespace hbs_addressing
