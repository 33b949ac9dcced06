#include "handoff/HWHConnectivity.h"

#include <algorithm>
#include <array>

#include "ComMsgMgr.h"
#include "HCRapidJsonReadWriteUtils.h"
#include "HEXError.h"
#include "HUTFile.h"
#include "handoff/HWHVocabulary.h"
#include "input/InputFile.h"

namespace hwh {

namespace {

using base::JsonNode;
using base::JsonTape;

constexpr unsigned kDebugMask = 0x1000003;

/// The core, and its devices, whose metadata is split by cells.
constexpr const char* kSplitCore = "tovak";
constexpr const char* kSplitDevices[] = {"qmzt4401", "qmzt4402"};

template <class... Args>
void sendDebugLine(int line, const char* format, const Args&... args) {
    ComMsgMgr::sendScopedMsg::eval(static_cast<int>(sizeof...(args)), __FILE__, line, "hbs",
                                   "cdo.gen", kDebugMask, format, args...);
}

const std::string& sendEntry(const std::string& fileName) {
    sendDebugLine(__LINE__, "\t\t\t HBSJsonReader::parseconnectivityjson- tmpFile: %s Enter\n",
                  fileName);
    return fileName;
}

const std::string& sendEntry(const std::string& fileName, bool isAddressing) {
    sendDebugLine(
        __LINE__,
        "\t\t HBSJsonReader::parseconnectivityjson- isAddressing: %d fileName: %s Enter\n",
        isAddressing, fileName);
    return fileName;
}

bool isSplitByCells(HWHTextMap& systemInfo) {
    if (systemInfo[fact::kCoreName] != kSplitCore)
        return false;
    const std::string& device = systemInfo[fact::kDevice];
    return device == kSplitDevices[0] || device == kSplitDevices[1];
}

std::string_view cellKey(std::string_view cellName) {
    const std::size_t divider = cellName.find('_');
    return divider == std::string_view::npos ? cellName : cellName.substr(divider + 1);
}

struct FactName {
    std::string_view name;
    std::string_view InstanceFacts::*fact;
};

constexpr std::array<FactName, 13> kFactNames{{
    {scalar::kSdkName, &InstanceFacts::sdkName},
    {scalar::kEnableParam, &InstanceFacts::enableParam},
    {scalar::kClassification, &InstanceFacts::classification},
    {scalar::kIpType, &InstanceFacts::ipType},
    {scalar::kModType, &InstanceFacts::modType},
    {scalar::kModClass, &InstanceFacts::modClass},
    {scalar::kMultiSocketSmp, &InstanceFacts::multiSocketSmp},
    {scalar::kSlrNumber, &InstanceFacts::slrNumber},
    {scalar::kBaseAddress, &InstanceFacts::baseAddress},
    {scalar::kHighAddress, &InstanceFacts::highAddress},
    {scalar::kMemType, &InstanceFacts::memType},
    {scalar::kIsData, &InstanceFacts::isData},
    {scalar::kIsInstruction, &InstanceFacts::isInstruction},
}};

/// Saves the copy of the text. The rare number that needs one has the file read again.
JsonTape parseWhereItLies(const std::string& fileName, std::string text) {
    JsonTape tape(std::move(text));
    if (tape.GetParseError() != rapidjson::kParseErrorNumberTooBig)
        return tape;
    const base::FileContent content = input::readFile(fileName);
    return JsonTape(std::string_view(content.text));
}

} // namespace

JsonTape readJsonFile(const std::string& fileName, const tq::DiagnosticSink& sink,
                      std::unique_ptr<KeptText>* kept) {
    using Outcome = base::ReadOutcome;
    const std::string canonicalName = HUTFile(fileName).getCanonicalName();
    base::FileContent content = input::readFile(fileName);
    // Callers without a sink know the text without a reason.
    if (!sink && (content.outcome == Outcome::Missing || content.outcome == Outcome::Unopened))
        HCRapidJsonReadWriteUtils::errorReadingJsonFile(canonicalName);
    if (sink && !content.isWhole())
        sink(makeDiagnostic(tq::Severity::Error, "unreadable-file", tq::placeOfFile(fileName),
                            "can't be read: " + content.reason));
    if (!content.isWhole())
        throw HEXError("the JSON file '" + canonicalName + "' can't be read: " + content.reason);
    JsonTape tape = sink ? JsonTape(std::string_view(content.text))
                         : parseWhereItLies(fileName, std::move(content.text));
    if (sink) {
        auto text = std::make_unique<KeptText>(fileName, std::move(content.text));
        if (tape.HasParseError())
            sink(makeDiagnostic(tq::Severity::Error, "malformed-json",
                                text->source.placeOf(tape.GetErrorOffset()),
                                base::describeError(tape)));
        if (kept != nullptr)
            *kept = std::move(text);
    }
    if (tape.HasParseError())
        HCRapidJsonReadWriteUtils::errorParsingJsonFile(
            canonicalName, HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(tape));
    return tape;
}

std::optional<JsonNode> findMember(const JsonNode& object, std::string_view name) {
    std::optional<JsonNode> found;
    object.forEachMember([&](const JsonNode& member, const JsonNode& value) {
        if (!found && member.text() == name)
            found = value;
    });
    return found;
}

std::optional<JsonNode> findObject(const JsonNode& object, std::string_view name) {
    const auto value = findMember(object, name);
    return value && value->isObject() ? value : std::nullopt;
}

std::optional<JsonNode> findArray(const JsonNode& object, std::string_view name) {
    const auto value = findMember(object, name);
    return value && value->isArray() ? value : std::nullopt;
}

ConnectivityFile::ConnectivityFile(const std::string& fileName, const tq::DiagnosticSink& sink)
    : m_tape(readJsonFile(sendEntry(fileName), sink, &m_kept)),
      m_working(findObject(m_tape.root(), "metadata")) {
    findLists();
}

ConnectivityFile::ConnectivityFile(const std::string& fileName, bool isAddressing,
                                   HWHTextMap& systemInfo, const tq::DiagnosticSink& sink)
    : m_tape(readJsonFile(sendEntry(fileName, isAddressing), sink, &m_kept)),
      m_working(findObject(m_tape.root(), "metadata")) {
    if (m_working && isSplitByCells(systemInfo)) {
        m_cell = cellKey(systemInfo[fact::kCellName]);
        m_working = findObject(*m_working, *m_cell);
    }
    findLists();
}

void ConnectivityFile::findLists() {
    if (m_working)
        m_slaves = findArray(*m_working, "slaves");
    if (m_slaves)
        m_masters = findArray(*m_working, "masters");
    if (m_masters)
        m_externalAddressing = findArray(*m_working, "external_addressing");
}

void ConnectivityFile::reportEnd() const {
    if (m_externalAddressing)
        sendDebugLine(__LINE__, "\t\t HBSJsonReader::parseconnectivityjson- Exit\n");
}

InstanceFacts readFacts(const JsonNode& instance) {
    InstanceFacts facts;
    instance.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        const auto* known = std::find_if(
            kFactNames.begin(), kFactNames.end(),
            [text = name.text()](const FactName& factName) { return factName.name == text; });
        if (known != kFactNames.end())
            facts.*(known->fact) = textOf(value);
    });
    return facts;
}

Connection readConnection(const JsonNode& connection) {
    Connection ends;
    connection.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (ends.instance.node == Text::kMissing && name.text() == member::kInstance)
            ends.instance.node = value.index();
        else if (ends.port.node == Text::kMissing && name.text() == member::kPort)
            ends.port.node = value.index();
    });
    return ends;
}

} // namespace hwh
