// Register values in Tcl, and the expressions that are decided from them. Private to HBSAddressing.
#pragma once

#include <tcl.h>

#include <optional>
#include <string>

#include "addressing/HBSAddressing.h"
#include "blockmodel/HABMBlock.h"

namespace hbs_addressing {

/// Runs one script and stores its result text in `result`. An empty script isn't run. A Tcl error
/// sends "Caught unexpected Tcl error: %s\n" with the error's trace, leaves `result` empty and
/// returns false.
bool evalTcl(Tcl_Interp* interp, const std::string& script, std::string& result);

/// Gives the interpreter the registers of `block` and of all below it, children first, and runs the
/// script of each block's hard block, if it has one.
///
/// The namespace of a block is its instance path with "::" for "/". It holds the variable
/// `registers`, a dict from register name to value, and one variable per register. A top block has
/// neither an instance name nor a namespace of its own: its registers are in the global one.
///
/// Absent if the block's VLNV can't be split: then nothing is loaded for it and all below it.
/// Otherwise the result of the last script that ran, if any did. After a failure no more is done
/// for the block and those below it; a failing child stops neither its siblings nor its parent.
///
/// The scripts that set registers have no quoting. A name of an instance or a register that isn't
/// one plain word is reported as a Tcl error, as if its script had failed, and the script isn't
/// run.
std::optional<std::string> loadBlockNamespace(Tcl_Interp* interp, HABMBlock* block,
                                              const std::string& parentNamespace);

/// Runs "[source PATH]" and drops the result. The brackets run the file's result as a command, so
/// that a file whose result isn't a command ends in a Tcl error.
void evalHelper(Tcl_Interp* interp, const std::string& path);

/// Decides an enablement expression; references like "register_value(NAME)" are looked up in the
/// sub-block of that name. True if the result is exactly "1". Also true, so that blocks whose
/// condition can't be computed stay: an empty expression, one for a sub-block that doesn't exist,
/// one that begins with "get_", and one that Tcl fails on.
///
/// An expression that `findExpressionFault` refuses isn't run, and fails like any other.
///
/// `decision`, which may be null, gets the expression with the values put in, the result and the
/// answer.
bool evalEnablement(Tcl_Interp* interp, HABMBlock* top, const std::string& subBlockName,
                    const std::string& expression, HBSDecision* decision = nullptr);

} // namespace hbs_addressing
