// hbs: a thin host to try every part of the library by hand.

#include <exception>
#include <iostream>

#include "host/Command.h"

namespace {

/// The status to exit with: output that got lost is no result.
int finished(int status) {
    if (std::cout.flush())
        return status;
    std::cerr << "hbs: the output can't be written\n";
    return host::kNoResult;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Knows the hard blocks of a programmable device.", "hbs");
    app.require_subcommand(1);
    app.set_version_flag("--version", TQ_HBS_VERSION);
    int status = host::kSuccess;
    host::declareClocks(app, status);
    host::declareDefine(app, status);
    host::declareCdo(app, status);
    host::declareHardblock(app, status);
    host::declareHandoff(app, status);
    host::declareAddressing(app, status);
    host::declareRegisters(app, status);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? finished(host::kSuccess) : host::kBadInput;
    } catch (const host::BadInput& error) {
        std::cerr << "hbs: " << error.what() << '\n';
        return host::kBadInput;
    } catch (const std::exception& error) {
        std::cerr << "hbs: " << host::printable(error.what()) << '\n';
        return host::kNoResult;
    }
    return finished(status);
}
