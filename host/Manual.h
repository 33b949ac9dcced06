// What the program tells of its words: the manual page, the completions of shells and the nearest
// known word. All of it comes of the declared words and options.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace host {

/// The page hbs(1) in the macros of man.
[[nodiscard]] std::string manualPage(const CLI::App& app);

/// The completion for "bash", "zsh" or "fish". Raises `InputError` for another shell.
[[nodiscard]] std::string completionScript(const CLI::App& app, const std::string& shell);

/// What a person sees who gives no word: what each word does, and where to begin.
[[nodiscard]] std::string overview(const CLI::App& app);

/// Raises `InputError` with the nearest known name where the command line has a word or an option
/// that isn't there.
void refuseUnknownNames(const CLI::App& app, int argc, const char* const* argv);

} // namespace host
