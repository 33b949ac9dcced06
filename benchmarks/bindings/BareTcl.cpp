// A Tcl extension with nothing in it: what a call costs at least.

#include <tcl.h>

namespace {

int constant(ClientData /*data*/, Tcl_Interp* interp, int /*objc*/, Tcl_Obj* const /*objv*/[]) {
    Tcl_SetObjResult(interp, Tcl_NewWideIntObj(78));
    return TCL_OK;
}

} // namespace

extern "C" DLLEXPORT int Bare_Init(Tcl_Interp* interp) {
    if (Tcl_InitStubs(interp, "8.6", 0) == nullptr)
        return TCL_ERROR;
    Tcl_CreateObjCommand(interp, "::bare::pll::constant", constant, nullptr, nullptr);
    return Tcl_EvalEx(interp,
                      "namespace eval ::bare::pll {namespace export *; namespace ensemble create};"
                      "namespace eval ::bare {namespace export *; namespace ensemble create}",
                      -1, TCL_EVAL_GLOBAL);
}
