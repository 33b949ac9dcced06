// Enablement expressions and names: what is let into a script must be, to Tcl's own parser, one
// command with the words that were meant. Nothing is run, as an expression may call any command.

#include <tcl.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "addressing/RegisterReferences.h"
#include "addressing/TclWords.h"

namespace {

/// A script that Tcl can't parse runs nothing.
void expectOneCommand(const std::string& script, int words) {
    Tcl_Parse parse;
    if (Tcl_ParseCommand(nullptr, script.c_str(), -1, 0, &parse) != TCL_OK)
        return;
    const char* const end = parse.commandStart + parse.commandSize;
    if (parse.numWords != words || end != script.c_str() + script.size())
        std::abort();
    Tcl_FreeParse(&parse);
}

std::string withReferencesReplaced(const std::string& text) {
    hbs_addressing::RegisterReferences references(text);
    while (references.next())
        references.replace(references.name().size() % 2 == 0 ? "0x1" : "0x123456789abcdef012345");
    return references.text();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string expression = withReferencesReplaced(text);
    if (hbs_addressing::findExpressionFault(expression).empty())
        expectOneCommand("expr {" + expression + "}", 2);
    if (hbs_addressing::isPlainWord(text))
        expectOneCommand("variable " + text + " 0x1", 3);
    if (hbs_addressing::isPlainBracketedWord(text))
        expectOneCommand("variable x [dict create " + text + " 0x1 ]", 3);
    return 0;
}
