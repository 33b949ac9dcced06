// Register values in Tcl, and the expressions that are decided from them. Private to HBSAddressing.
#pragma once

#include <tcl.h>

#include <optional>
#include <string>

#include "blockmodel/HABMBlock.h"

namespace hbs_addressing {

/// Runs one script, whose result text lands in `result`. An empty script is no run. On a Tcl error
/// sends "Caught unexpected Tcl error: %s\n" with the error's trace and returns false; `result` is
/// then empty.
bool evalTcl(Tcl_Interp* interp, const std::string& script, std::string& result);

/// Gives the interpreter the registers of `block` and of all below it, children first, and runs the
/// script of each block's hard block, if it has one.
///
/// The namespace of a block is its instance path with "::" for "/". It holds the variable
/// `registers`, a dict from register name to value, and one variable per register. A top block has
/// neither an instance name nor a namespace of its own: its registers stand in the global one.
///
/// Absent if the block's VLNV can't be split: then nothing at all is loaded, below it neither. Else
/// the result of the last script that ran, if any did. After a failure nothing more is done for the
/// block and what lies below it; a failing child stops neither its siblings nor its parent.
///
/// The scripts have no quoting. A name (of an instance, a register, a path) that can't stand in
/// them as one word is reported as a Tcl error, as if its script had failed, and the script isn't
/// run.
std::optional<std::string> loadBlockNamespace(Tcl_Interp* interp, HABMBlock* block,
                                              const std::string& parentNamespace);

/// Runs "[source PATH]" and drops the result. The brackets make a command name of what the file
/// returns, so that a file which doesn't return one ends in the message of a Tcl error.
void evalHelper(Tcl_Interp* interp, const std::string& path);

/// Decides an enablement expression under the sub-block of that name, in which references like
/// "register_value(NAME)" find their registers. True only if its result is exactly "1"; but an
/// empty expression, one for a sub-block that doesn't exist, one that begins with "get_" and one
/// that Tcl fails on are true as well: what can't be decided stays.
///
/// An expression that would end before its last character and be followed by commands, or one that
/// Tcl's parser couldn't survive (`faultOfExpression`), isn't run and fails like any other.
bool evalEnablement(Tcl_Interp* interp, HABMBlock* top, const std::string& subBlockName,
                    const std::string& expression);

} // namespace hbs_addressing
