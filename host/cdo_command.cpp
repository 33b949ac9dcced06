// hbs cdo SCRIPT: goes through a small text of sequence commands and reports what came of each.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "host/Command.h"
#include "host/Table.h"
#include "rapidjson_headers.h"

namespace host {

namespace {

using Words = std::vector<std::string>;

/// Does one command; gives the number it stands for, if any, and raises where it fails.
using Action = std::optional<std::uint64_t> (*)(const Words& words);

struct Verb {
    std::string_view name;
    std::string_view arguments;
    std::size_t words;
    Action action;
};

/// The script has no sequences to hand over, only their names.
CdoSequence* const kNoSequence = nullptr;

bool exists(const std::string& name) {
    try {
        return HBSCdoSequenceMgr::getGlobal().getCdoSequenceWrapper(name) != nullptr;
    } catch (const HTCErrors::command_failed&) {
        return false;
    }
}

std::optional<std::uint64_t> create(const Words& words) {
    // The manager would let the old one go unreachable; in a script that is a slip of the pen.
    if (exists(words[1]))
        throw HTCErrors::command_failed("sequence '" + words[1] +
                                        "' exists already: delete it first");
    HBSCdoSequenceMgr::getGlobal().createCdoSequenceWrapper(words[1], kNoSequence);
    return std::nullopt;
}

std::optional<std::uint64_t> mark(const Words& words, unsigned int kind) {
    HBSCdoSequenceMgr::getGlobal().getCdoSequenceWrapper(words[1])->addMarker(words[2], kind);
    return std::nullopt;
}

std::optional<std::uint64_t> check(const Words& words) {
    HBSCdoSequenceMgr::getGlobal().getCdoSequenceWrapper(words[1])->markerCheck();
    return std::nullopt;
}

std::optional<std::uint64_t> remove(const Words& words) {
    HBSCdoSequenceMgr::getGlobal().deleteCdoSequenceWrapper(words[1]);
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
    {"open", "SEQUENCE MARKER", 3,
     [](const Words& words) { return mark(words, HBSCdoSequenceWrapper::kMarkerOpens); }},
    {"close", "SEQUENCE MARKER", 3,
     [](const Words& words) { return mark(words, HBSCdoSequenceWrapper::kMarkerCloses); }},
    {"check", "SEQUENCE", 2, check},
    {"address", "TEXT", 2, number<HBSCdoCommandParse::parseAddress>},
    {"value", "TEXT", 2, number<HBSCdoCommandParse::parseValue>},
    {"delete", "SEQUENCE", 2, remove},
}};

/// One line of the script and what came of it.
struct Step {
    std::size_t line = 0;
    std::string text;
    const Verb* verb = nullptr;
    Words words;
    std::optional<std::uint64_t> number;
    std::optional<std::string> failure;
};

class Script {
public:
    static Script read(const std::string& path);

    void run();
    void print(std::ostream& out) const;
    void printJson(std::ostream& out) const;
    [[nodiscard]] std::size_t failures() const;

private:
    void addLine(std::string line, std::size_t lineNumber, const std::string& path);

    std::vector<Step> m_steps;
};

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// Words are parted by white space; one that holds some, or none at all, stands in double quotes. A
/// word that begins with "#" starts a remark, which is cut off the line.
Words split(std::string& line, const std::string& place) {
    Words words;
    std::istringstream stream(line);
    while (stream >> std::ws && !stream.eof()) {
        if (stream.peek() == '#') {
            line.resize(static_cast<std::size_t>(stream.tellg()));
            break;
        }
        std::string word;
        if (!(stream >> std::quoted(word)))
            throw BadInput(place + ": a quoted text has no end");
        words.push_back(std::move(word));
    }
    return words;
}

/// UTF-8 without control characters, save tabs and the carriage return of a foreign line end.
bool isPlainText(const std::string& line) {
    rapidjson::MemoryStream in(line.data(), line.size());
    rapidjson::StringBuffer checked;
    while (in.Tell() < line.size()) {
        const auto next = static_cast<unsigned char>(in.Peek());
        if ((next < 0x20U && next != '\t' && next != '\r') ||
            !rapidjson::UTF8<>::Validate(in, checked))
            return false;
    }
    return true;
}

const Verb& findVerb(const std::string& name, const std::string& place) {
    std::string known;
    for (const Verb& verb : kVerbs) {
        if (verb.name == name)
            return verb;
        known.append(known.empty() ? "" : ", ").append(verb.name);
    }
    throw BadInput(place + ": unknown command \"" + name + "\", expected one of: " + known);
}

Script Script::read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    Script script;
    std::size_t lineNumber = 0;
    for (std::string line; std::getline(stream, line);)
        script.addLine(line, ++lineNumber, path);
    if (!stream.is_open() || stream.bad())
        throw BadInput(path + ": the file can't be read");
    return script;
}

void Script::addLine(std::string line, std::size_t lineNumber, const std::string& path) {
    const std::string place = path + ":" + std::to_string(lineNumber);
    if (!isPlainText(line))
        throw BadInput(place + ": expected UTF-8 text without control characters");
    Words words = split(line, place);
    if (words.empty())
        return;
    const Verb& verb = findVerb(words.front(), place);
    if (words.size() != verb.words)
        throw BadInput(place + ": expected: " + std::string(verb.name) + " " +
                       std::string(verb.arguments));
    m_steps.push_back({lineNumber, trimmed(line), &verb, std::move(words), {}, {}});
}

void Script::run() {
    for (Step& step : m_steps) {
        try {
            step.number = step.verb->action(step.words);
        } catch (const HTCErrors::command_failed& failure) {
            step.failure = failure.what();
        }
    }
}

std::size_t Script::failures() const {
    return static_cast<std::size_t>(std::count_if(
        m_steps.begin(), m_steps.end(), [](const Step& step) { return step.failure.has_value(); }));
}

std::string resultText(const Step& step) {
    if (step.failure)
        return "failed: " + *step.failure;
    if (!step.number)
        return "ok";
    std::ostringstream text;
    text << *step.number << " (0x" << std::hex << *step.number << ')';
    return text.str();
}

void Script::print(std::ostream& out) const {
    Table table({{"line", Table::Align::Right}, {"command"}, {"result"}});
    for (const Step& step : m_steps)
        table.addRow({std::to_string(step.line), step.text, resultText(step)});
    table.print(out);
    out << m_steps.size() << " commands, " << failures() << " failed\n";
}

void Script::printJson(std::ostream& out) const {
    rapidjson::OStreamWrapper stream(out);
    rapidjson::PrettyWriter<rapidjson::OStreamWrapper> writer(stream);
    writer.StartArray();
    for (const Step& step : m_steps) {
        writer.StartObject();
        writer.Key("line");
        writer.Uint64(step.line);
        writer.Key("command");
        writer.String(step.text.data(), static_cast<rapidjson::SizeType>(step.text.size()));
        writer.Key("ok");
        writer.Bool(!step.failure);
        if (step.number) {
            writer.Key("number");
            writer.Uint64(*step.number);
        }
        if (step.failure) {
            writer.Key("failure");
            writer.String(step.failure->data(),
                          static_cast<rapidjson::SizeType>(step.failure->size()));
        }
        writer.EndObject();
    }
    writer.EndArray();
    out << '\n';
}

/// What a script leaves behind is deleted, however it ends.
struct Sweeper {
    Sweeper() = default;
    Sweeper(const Sweeper&) = delete;
    Sweeper& operator=(const Sweeper&) = delete;
    ~Sweeper() {
        std::vector<HBSCdoSequenceWrapper*> left;
        HBSCdoSequenceMgr::getGlobal().getCdoSeqWrapperColl(left);
        for (const auto* wrapper : left)
            HBSCdoSequenceMgr::getGlobal().deleteCdoSequenceWrapper(wrapper->getName());
    }
};

struct Options {
    std::string script;
    bool json = false;
};

int runCdo(const Options& options) {
    Script script = Script::read(options.script);
    const Sweeper sweeper;
    script.run();
    if (options.json)
        script.printJson(std::cout);
    else
        script.print(std::cout);
    return script.failures() == 0 ? kSuccess : kNoResult;
}

} // namespace

void declareCdo(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* word = app.add_subcommand("cdo", "Goes through a script of sequence commands");
    word->add_option("SCRIPT", options->script,
                     "Lines of: create S, open S M, close S M, check S, address TEXT, value TEXT, "
                     "delete S, for a sequence S and a marker M")
        ->required();
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &status] { status = runCdo(*options); });
}

} // namespace host
