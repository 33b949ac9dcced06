// hbs cdo SCRIPT: runs a script of sequence commands and reports what came of each.

#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/cdo/SequenceScript.h"

namespace host {

namespace {

struct Options {
    std::string script;
    bool json = false;
};

Outcome run(const Options& options) {
    tq::SequenceScript script = tq::SequenceScript::read(options.script);
    script.run();
    std::cout << (options.json ? script.json() : script.table());
    return script.failures() == 0 ? Outcome::Found : Outcome::Nothing;
}

} // namespace

void declareCdo(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<Options>();
    CLI::App* word = app.add_subcommand("cdo", "Runs a script of sequence commands");
    word->add_option("SCRIPT", options->script,
                     "Lines of: create S, open S M, close S M, check S, address TEXT, value TEXT, "
                     "delete S, for a sequence S and a marker M")
        ->required();
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &outcome] { outcome = run(*options); });
}

} // namespace host
