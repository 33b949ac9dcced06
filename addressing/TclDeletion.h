// Deleting a Tcl interpreter in time linear in its variables.
#pragma once

#include <tcl.h>

namespace hbs_addressing {

/// The commands by which interpreters are inspected, taken from one in which no script has run yet,
/// as scripts can rename them.
struct TclInspection {
    explicit TclInspection(Tcl_Interp* interp);

    Tcl_CmdInfo interp;   ///< "interp": the children of an interpreter
    Tcl_CmdInfo children; ///< "namespace children"
    Tcl_CmdInfo vars;     ///< "info vars"
};

/// Deletes an interpreter and those below it. Tcl itself takes time quadratic in the variables of a
/// namespace, so that each is unset first, after the interpreter was marked as deleted: traces of
/// scripts don't run any more.
void deleteInterpreter(Tcl_Interp* interp, const TclInspection& inspection);

} // namespace hbs_addressing
