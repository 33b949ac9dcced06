#include "workbench/files/OutputFile.h"

#include <filesystem>
#include <iostream>
#include <system_error>

#include "base/FileReplacement.h"
#include "workbench/files/InputError.h"

namespace tq {

void refuseInput(const std::string& output, const std::vector<std::string>& inputs) {
    if (output.empty() || output == kStandardOutput)
        return;
    for (const std::string& input : inputs) {
        std::error_code error;
        if (std::filesystem::equivalent(output, input, error))
            throw fileError(output, "can't be written, as it is also an input (" + input + ")");
    }
}

void writeOutput(const std::string& path, std::string_view text) {
    if (path == kStandardOutput)
        std::cout << text;
    if (path.empty() || path == kStandardOutput)
        return;
    std::cout.flush(); // the path may lead to the same place
    if (const std::string reason = base::writeOutputFile(path, text); !reason.empty())
        throw outputError(path, "can't be written: " + reason);
}

} // namespace tq
