// hbs registers: the registers of a description file.

#include "host/Command.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/requests/RegisterRequest.h"

namespace host {

void declareRegisters(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<tq::RegisterRequest>();
    CLI::App* word =
        app.add_subcommand("registers", "Lists the registers of an IP-XACT or CMSIS-SVD file");
    word->add_option("FILE", options->file, "Register description file")->required();
    word->add_option("--match", options->match, "Lists only names that match this pattern")
        ->type_name("GLOB");
    word->add_flag("--fields", options->fields, "Shows the fields of each register");
    word->add_option("--library", options->libraries, "Folder to look for definitions in");
    word->add_option("--export", options->exports,
                     "Writes a file for other tools, by its ending: .xml (IP-XACT 2014), "
                     ".2022.xml, " +
                         tq::mapFormatEndings());
    word->add_option("--schema", options->schemas,
                     "Folder of schemas to hold the file against; ends with 1 for a violation");
    word->add_flag("--strict", options->strict,
                   "Shows what the narrow reader sees, and where it stops");
    word->add_flag("--json", options->json, "Prints JSON for programs");
    bindRequest(*word, options, outcome);
}

} // namespace host
