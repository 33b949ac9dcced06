#include "host/Manual.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnostics/NearestName.h"
#include "tq_version.h"
#include "workbench/files/InputError.h"

namespace host {

namespace {

using Words = std::vector<const CLI::App*>;

[[nodiscard]] Words wordsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

/// "--json", "-o": the names that begin with a dash, the long ones first.
[[nodiscard]] std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    return names;
}

[[nodiscard]] std::vector<std::string> namesOf(const CLI::App& word) {
    std::vector<std::string> names;
    for (const CLI::Option* option : word.get_options())
        for (std::string& name : namesOf(*option))
            names.push_back(std::move(name));
    return names;
}

[[nodiscard]] std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (const std::string& part : parts)
        text.append(text.empty() ? "" : separator).append(part);
    return text;
}

/// A text in the macros of man: no line of it is taken for a macro, no dash for a hyphen.
[[nodiscard]] std::string roff(const std::string& text) {
    std::string safe;
    for (const char c : text) {
        if (c == '\\')
            safe += "\\e";
        else if (c == '-')
            safe += "\\-";
        else
            safe += c;
    }
    return safe.empty() || (safe[0] != '.' && safe[0] != '\'') ? safe : "\\&" + safe;
}

void writeOptions(std::string& page, const CLI::App& word) {
    for (const CLI::Option* option : word.get_options()) {
        const std::vector<std::string> names = namesOf(*option);
        page += ".TP\n.B " + roff(names.empty() ? option->get_name() : joined(names, ", "));
        if (!names.empty() && option->get_expected_max() != 0)
            page += " \\fI" + roff(option->get_type_name()) + "\\fR";
        page += "\n" + roff(option->get_description()) + "\n";
    }
}

void writeWord(std::string& page, const CLI::App& word, const std::string& name) {
    page += ".SS " + roff(name) + "\n" + roff(word.get_description()) + ".\n";
    writeOptions(page, word);
    for (const CLI::App* inner : wordsOf(word))
        writeWord(page, *inner, name + " " + inner->get_name());
}

/// Quoted for a shell.
[[nodiscard]] std::string quoted(const std::string& text) {
    std::string safe = "'";
    for (const char c : text)
        safe += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return safe + "'";
}

[[nodiscard]] std::string namesOfWords(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* word : wordsOf(app))
        names.push_back(word->get_name());
    return joined(names, " ");
}

/// The options of a word and of those below it.
[[nodiscard]] std::vector<std::string> allNamesOf(const CLI::App& word) {
    std::vector<std::string> names = namesOf(word);
    for (const CLI::App* inner : wordsOf(word))
        for (std::string& name : allNamesOf(*inner))
            names.push_back(std::move(name));
    return names;
}

/// Words and options are completed to themselves, all else to files.
[[nodiscard]] std::string bashCompletion(const CLI::App& app) {
    std::string cases;
    for (const CLI::App* word : wordsOf(app)) {
        const std::string inner =
            word->get_name() == "help" ? namesOfWords(app) : namesOfWords(*word);
        cases += "        " + word->get_name() + ") options='" + joined(allNamesOf(*word), " ") +
                 "' words='" + inner + "' ;;\n";
    }
    return "_hbs() {\n"
           "    local now=${COMP_WORDS[COMP_CWORD]} options='" +
           joined(namesOf(app), " ") + "' words='" + namesOfWords(app) +
           "'\n"
           "    if [ \"$COMP_CWORD\" -gt 1 ]; then\n"
           "        case ${COMP_WORDS[1]} in\n" +
           cases +
           "        esac\n"
           "    fi\n"
           "    if [[ $now == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$options\" -- \"$now\"))\n"
           "    elif [[ $COMP_CWORD -le 2 && -n $words ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$words\" -- \"$now\"))\n"
           "    else\n"
           "        COMPREPLY=($(compgen -f -- \"$now\"))\n"
           "        compopt -o filenames\n"
           "    fi\n"
           "}\n"
           "complete -F _hbs hbs\n";
}

[[nodiscard]] std::string zshCompletion(const CLI::App& app) {
    return "#compdef hbs\nautoload -U +X bashcompinit && bashcompinit\n" + bashCompletion(app);
}

[[nodiscard]] std::string fishCompletion(const CLI::App& app) {
    std::string script;
    for (const CLI::App* word : wordsOf(app)) {
        script += "complete -c hbs -n __fish_use_subcommand -f -a " + word->get_name() + " -d " +
                  quoted(word->get_description()) + "\n";
        for (const CLI::Option* option : word->get_options())
            for (const std::string& name : option->get_lnames())
                script += "complete -c hbs -n '__fish_seen_subcommand_from " + word->get_name() +
                          "' -l " + name + (option->get_expected_max() == 0 ? "" : " -r") + " -d " +
                          quoted(option->get_description()) + "\n";
    }
    return script;
}

[[noreturn]] void refuse(const std::string& kind, const std::string& name,
                         const std::vector<std::string>& known) {
    const std::vector<std::string_view> views(known.begin(), known.end());
    throw tq::InputError("there is no " + kind + " \"" + name + "\", expected " +
                         tq::oneOfNames(name, views));
}

} // namespace

std::string manualPage(const CLI::App& app) {
    std::string page = ".TH HBS 1 \"\" \"tq_hbs " TQ_VERSION_STRING "\"\n.SH NAME\nhbs \\- " +
                       roff(app.get_description()) +
                       "\n.SH SYNOPSIS\n.B hbs\n.I WORD\n[\\fIOPTION\\fR]...\n.SH WORDS\n";
    for (const CLI::App* word : wordsOf(app))
        writeWord(page, *word, word->get_name());
    return page + ".SH OPTIONS\n.SS Of all words\n" +
           [&app] {
               std::string options;
               writeOptions(options, app);
               return options;
           }() +
           ".SH EXIT STATUS\n"
           ".TP\n0\nA result was found and printed.\n"
           ".TP\n1\nThe input is good, but there is no result, or a check found something.\n"
           ".TP\n2\nThe command line or a file can't be used.\n"
           ".TP\n3\nThe output can't be written.\n";
}

std::string completionScript(const CLI::App& app, const std::string& shell) {
    if (shell == "bash")
        return bashCompletion(app);
    if (shell == "zsh")
        return zshCompletion(app);
    if (shell == "fish")
        return fishCompletion(app);
    refuse("completion for", shell, {"bash", "zsh", "fish"});
}

std::string overview(const CLI::App& app) {
    std::string text = "hbs " TQ_VERSION_STRING ": " + app.get_description() + "\n\n";
    std::size_t width = 0;
    for (const CLI::App* word : wordsOf(app))
        width = std::max(width, word->get_name().size());
    for (const CLI::App* word : wordsOf(app)) {
        std::string name = word->get_name();
        name.resize(width, ' ');
        text.append("  hbs ")
            .append(name)
            .append("  ")
            .append(word->get_description())
            .append("\n");
    }
    return text + "\nTry hbs help clocks, or hbs clocks TREE.json.\n";
}

void refuseUnknownNames(const CLI::App& app, int argc, const char* const* argv) {
    const CLI::App* word = &app;
    std::vector<std::string> known = namesOf(app);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const Words inner = wordsOf(*word);
        if (argument == "--")
            return;
        if (argument.size() > 2 && argument.compare(0, 2, "--") == 0) {
            const std::string name = argument.substr(0, argument.find('='));
            if (std::find(known.begin(), known.end(), name) == known.end())
                refuse("option", name, known);
        } else if (!inner.empty() && argument[0] != '-') {
            const auto found =
                std::find_if(inner.begin(), inner.end(), [&](const CLI::App* candidate) {
                    return candidate->get_name() == argument;
                });
            if (found == inner.end()) {
                std::vector<std::string> words;
                for (const CLI::App* candidate : inner)
                    words.push_back(candidate->get_name());
                refuse("word", argument, words);
            }
            word = *found;
            for (std::string& name : namesOf(*word))
                known.push_back(std::move(name));
        }
    }
}

} // namespace host
