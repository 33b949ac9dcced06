#include "workbench/cdo/SequenceScript.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iomanip>
#include <new>
#include <utility>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "diagnostics/NearestName.h"
#include "diagnostics/SourceText.h"
#include "input/InputFile.h"
#include "workbench/files/InputError.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using Words = std::vector<std::string>;

/// Runs one command; gives the number that it reads, if any, and raises where it fails.
using Action = std::optional<std::uint64_t> (*)(const Words& words);

struct Verb {
    std::string_view name;
    std::string_view arguments;
    std::size_t words;
    Action action;
};

/// Scripts have only the names of sequences, no native objects.
CdoSequence* const kNoSequence = nullptr;

HBSCdoSequenceMgr& manager() {
    return HBSCdoSequenceMgr::getGlobal();
}

bool exists(const std::string& name) {
    try {
        return manager().getCdoSequenceWrapper(name) != nullptr;
    } catch (const HTCErrors::command_failed&) {
        return false;
    }
}

std::optional<std::uint64_t> create(const Words& words) {
    // The manager would replace the old one and lose it.
    if (exists(words[1]))
        throw HTCErrors::command_failed("sequence '" + words[1] +
                                        "' exists already: delete it first");
    manager().createCdoSequenceWrapper(words[1], kNoSequence);
    return std::nullopt;
}

template <unsigned Kind>
std::optional<std::uint64_t> mark(const Words& words) {
    manager().getCdoSequenceWrapper(words[1])->addMarker(words[2], Kind);
    return std::nullopt;
}

std::optional<std::uint64_t> check(const Words& words) {
    manager().getCdoSequenceWrapper(words[1])->markerCheck();
    return std::nullopt;
}

std::optional<std::uint64_t> remove(const Words& words) {
    manager().deleteCdoSequenceWrapper(words[1]);
    return std::nullopt;
}

/// A range error that an earlier line left in errno would count against this one.
template <auto Parse>
std::optional<std::uint64_t> number(const Words& words) {
    errno = 0;
    return Parse(words[1]);
}

constexpr std::array<Verb, 7> kVerbs{{
    {"create", "SEQUENCE", 2, create},
    {"open", "SEQUENCE MARKER", 3, mark<HBSCdoSequenceWrapper::kMarkerOpens>},
    {"close", "SEQUENCE MARKER", 3, mark<HBSCdoSequenceWrapper::kMarkerCloses>},
    {"check", "SEQUENCE", 2, check},
    {"address", "TEXT", 2, number<HBSCdoCommandParse::parseAddress>},
    {"value", "TEXT", 2, number<HBSCdoCommandParse::parseValue>},
    {"delete", "SEQUENCE", 2, remove},
}};

/// One line of a script, for errors about it.
struct Line {
    const std::string& file;
    std::size_t number;
    std::string text;

    [[noreturn]] void fail(std::size_t offset, std::string what, std::string expected) const {
        throw InputError(makeDiagnostic(Severity::Error, "",
                                        placeInLine(file, number, offset + 1, text),
                                        std::move(what), std::move(expected)));
    }
};

/// Control characters but tabs, and the carriage return of a foreign line end.
void expectPlainText(const Line& line) {
    const std::string& text = line.text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20U && byte != '\t' && byte != '\r')
            line.fail(i, "a control character", "UTF-8 text");
    }
    if (const std::string valid = validUtf8(text); valid != text) {
        const auto different = std::mismatch(text.begin(), text.end(), valid.begin(), valid.end());
        line.fail(static_cast<std::size_t>(different.first - text.begin()),
                  "bytes that aren't UTF-8", "UTF-8 text");
    }
}

struct Command {
    Words words;
    std::vector<std::size_t> offsets; ///< of the words in the line
    std::size_t end = 0;              ///< where the comment starts
};

Command split(const Line& line) {
    Command command;
    command.end = line.text.size();
    InputTextStream stream(line.text);
    while (stream >> std::ws && !stream.eof()) {
        const auto offset = static_cast<std::size_t>(stream.tellg());
        if (stream.peek() == '#') {
            command.end = offset;
            break;
        }
        std::string word;
        if (!(stream >> std::quoted(word)))
            line.fail(offset, "a quoted text has no end", "\"");
        command.words.push_back(std::move(word));
        command.offsets.push_back(offset);
    }
    return command;
}

std::size_t findVerb(const Line& line, const Command& command) {
    const std::string& name = command.words.front();
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < kVerbs.size(); ++i) {
        if (kVerbs[i].name == name)
            return i;
        names.push_back(kVerbs[i].name);
    }
    line.fail(command.offsets.front(), "unknown command \"" + name + "\"", oneOfNames(name, names));
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string resultText(const SequenceScript::Step& step) {
    if (step.failure)
        return "failed: " + *step.failure;
    if (!step.number)
        return "ok";
    TextStream text;
    text.imbue(std::locale::classic());
    text << *step.number << " (0x" << std::hex << *step.number << ')';
    return text.str();
}

/// Deletes what a script leaves behind, however it ends.
struct SequenceSweeper {
    SequenceSweeper() = default;
    SequenceSweeper(const SequenceSweeper&) = delete;
    SequenceSweeper& operator=(const SequenceSweeper&) = delete;
    ~SequenceSweeper() {
        try {
            std::vector<HBSCdoSequenceWrapper*> left;
            manager().getCdoSeqWrapperColl(left);
            for (const auto* wrapper : left)
                manager().deleteCdoSequenceWrapper(wrapper->getName());
        } catch (const std::bad_alloc&) { // they stay, and the script's exception goes on
        }
    }
};

} // namespace

SequenceScript SequenceScript::read(const std::string& path) {
    const base::FileContent content = input::readPlainFile(path);
    if (!content.isWhole())
        throw fileError(path, "can't be read: " + content.reason);
    return parse(path, content.text);
}

SequenceScript SequenceScript::parse(const std::string& name, std::string_view content) {
    SequenceScript script;
    std::size_t lineNumber = 0;
    while (!content.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        script.addLine(name, ++lineNumber, std::string(content.substr(0, end)));
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return script;
}

void SequenceScript::addLine(const std::string& file, std::size_t lineNumber, std::string text) {
    const Line line{file, lineNumber, std::move(text)};
    expectPlainText(line);
    Command command = split(line);
    if (command.words.empty())
        return;
    const std::size_t verb = findVerb(line, command);
    if (command.words.size() != kVerbs[verb].words)
        line.fail(command.offsets.front(), "a command with the wrong number of words",
                  std::string(kVerbs[verb].name) + " " + std::string(kVerbs[verb].arguments));
    m_steps.push_back({lineNumber,
                       trimmed(line.text.substr(0, command.end)),
                       std::move(command.words),
                       verb,
                       {},
                       {}});
}

void SequenceScript::run() {
    const SequenceSweeper sweeper;
    for (Step& step : m_steps) {
        step.number.reset();
        step.failure.reset();
        try {
            step.number = kVerbs[step.verb].action(step.words);
        } catch (const HTCErrors::command_failed& failure) {
            step.failure = failure.what();
        }
    }
}

std::size_t SequenceScript::failures() const {
    return static_cast<std::size_t>(std::count_if(
        m_steps.begin(), m_steps.end(), [](const Step& step) { return step.failure.has_value(); }));
}

std::string SequenceScript::table() const {
    Table table({{"line", Table::Align::Right}, {"command"}, {"result"}});
    for (const Step& step : m_steps)
        table.addRow({std::to_string(step.line), step.text, resultText(step)});
    TextStream out;
    table.print(out);
    return out.str() + std::to_string(m_steps.size()) + " commands, " + std::to_string(failures()) +
           " failed\n";
}

std::string SequenceScript::json() const {
    JsonWriter json;
    json.beginArray();
    for (const Step& step : m_steps) {
        json.beginObject();
        json.member("line", step.line);
        json.member("command", step.text);
        json.member("ok", !step.failure.has_value());
        if (step.number)
            json.member("number", *step.number);
        if (step.failure)
            json.member("failure", *step.failure);
        json.endObject();
    }
    json.endArray();
    return json.text();
}

} // namespace tq
