// Runs the program as a person does.
#pragma once

#include <gmock/gmock.h>

#include "support/support.h"

inline support::RunResult hbs(const std::string& arguments) {
    return support::run(HBS_PROGRAM " " + arguments);
}

/// Runs a word on a file of its own, from the file's folder, so that messages show the bare name.
inline support::RunResult hbsOn(const std::string& word, const std::string& name,
                                const std::string& content, const std::string& options = "") {
    const support::TempDir folder;
    folder.write(name, content);
    return support::run("cd " + folder.path().string() + " && " HBS_PROGRAM " " + word + " " +
                        name + " " + options);
}
