#include "hardblock/MetadataReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HCRapidJsonReadWriteUtils.h"
#include "base/FileReading.h"
#include "base/Text.h"
#include "diagnostics/SourceText.h"
#include "hardblock/JsonGetters.h"
#include "hardblock/Messages.h"
#include "hardblock/MetadataCheck.h"
#include "hardblock/MetadataSource.h"
#include "input/InputFile.h"
#include "xp_autodetect.h"

namespace hardblock {

using base::JsonNode;

namespace {

/// Everything in the metadata may be left out.
constexpr bool kOptional = false;

/// A bound of a pin's range.
constexpr int kNotGiven = -1;

/// True for an object; anything else is skipped with a message.
bool suitsAsObject(const JsonNode& value, std::string_view key) {
    if (value.isObject())
        return true;
    sendUnsuitable(value, key);
    return false;
}

/// Calls `action` with the name and the value of each member, in file order. Nothing has no
/// members.
template <class Action>
void forEachMember(const std::optional<JsonNode>& object, std::string_view key, Action&& action) {
    if (object && suitsAsObject(*object, key))
        object->forEachMember(
            [&](const JsonNode& name, const JsonNode& value) { action(name.text(), value); });
}

/// Sends the messages for values that the interface will pass over when it reads them.
void checkParameters(const JsonNode& parameters) {
    parameters.forEachMember([](const JsonNode& name, const JsonNode& value) {
        if (!low32Bits(value))
            sendUnsuitable(value, name.text());
    });
}

void checkPortMaps(const JsonNode& portMaps) {
    portMaps.forEachMember([](const JsonNode& mapped, const JsonNode& port) {
        if (!port.isString())
            sendUnsuitable(port, mapped.text());
    });
}

std::size_t countMembers(const JsonNode& object) {
    std::size_t count = 0;
    object.forEachMember([&](const JsonNode&, const JsonNode&) { ++count; });
    return count;
}

std::uint32_t indexOf(const std::optional<JsonNode>& node) {
    return node ? node->index() : MetadataSource::kNone;
}

class Reader {
public:
    Reader(std::shared_ptr<const base::JsonTape> tape, HardBlocks& hardBlocks)
        : m_tape(std::move(tape)), m_hardBlocks(hardBlocks) {}

    void read() {
        forEachMember(m_tape->root(), "", [&](std::string_view name, const JsonNode& value) {
            m_hardBlocks.push_back(std::make_unique<HardBlockData>(std::string(name)));
            readHardBlock(value, *m_hardBlocks.back());
        });
    }

private:
    void readHardBlock(const JsonNode& body, HardBlockData& hardBlock) const {
        if (!suitsAsObject(body, hardBlock.getName()))
            return;
        const auto [interfaces, pins] =
            getJsonMembers<2>(body, {std::string_view("interfaces"), std::string_view("pins")});
        if (interfaces)
            MetadataSource::reserveInterfaces(hardBlock, countMembers(*interfaces));
        forEachMember(interfaces, "interfaces", [&](std::string_view name, const JsonNode& value) {
            readInterface(name, value, *hardBlock.createInterface(std::string(name)));
        });
        forEachMember(pins, "pins", [&](std::string_view name, const JsonNode& value) {
            readPin(name, value, *hardBlock.createPin(std::string(name)));
        });
    }

    void readInterface(std::string_view name, const JsonNode& body, Interface& interface) const {
        if (!suitsAsObject(body, name))
            return;
        const auto accessPoint = getJsonMember(body, "access_point", kOptional);
        if (!accessPoint || !suitsAsObject(*accessPoint, "access_point"))
            return;
        const auto [module, parameters, portMaps] = getJsonMembers<3>(
            *accessPoint, {std::string_view("module"), std::string_view("parameters"),
                           std::string_view("port_maps")});
        std::string moduleName;
        readJsonString(module, "module", moduleName);
        interface.setApModuleName(moduleName);
        if (parameters && suitsAsObject(*parameters, "parameters"))
            checkParameters(*parameters);
        if (portMaps && suitsAsObject(*portMaps, "port_maps"))
            checkPortMaps(*portMaps);
        MetadataSource::add(interface, {m_tape, indexOf(parameters), indexOf(portMaps)});
    }

    static void readPin(std::string_view name, const JsonNode& body, Pin& pin) {
        if (!suitsAsObject(body, name))
            return;
        const auto [typeValue, directionValue, defaultValue, left, right] =
            getJsonMembers<5>(body, {std::string_view("type"), std::string_view("direction"),
                                     std::string_view("default_val"), std::string_view("size_left"),
                                     std::string_view("size_right")});
        std::string type;
        readJsonString(typeValue, "type", type);
        if (base::lowered(type) == "vector")
            pin.setType(Type::Vector);

        std::string direction;
        readJsonString(directionValue, "direction", direction);
        direction = base::lowered(direction);
        if (direction == "in")
            pin.setDirection(Direction::In);
        else if (direction == "out")
            pin.setDirection(Direction::Out);

        std::string text;
        readJsonString(defaultValue, "default_val", text);
        pin.setDefaultValue(text);
        int size = kNotGiven;
        readJsonInt(left, "size_left", size);
        pin.setLeftSize(size);
        size = kNotGiven;
        readJsonInt(right, "size_right", size);
        pin.setRightSize(size);
    }

    std::shared_ptr<const base::JsonTape> m_tape;
    HardBlocks& m_hardBlocks;
};

void sendMalformed(const std::string& reason) {
    ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-2@%s", reason);
}

void reportUnreadable(const std::string& name, const std::string& reason,
                      const tq::DiagnosticSink& sink) {
    if (sink)
        sink(makeDiagnostic(tq::Severity::Error, "unreadable-file", tq::placeOfFile(name),
                            "can't be read: " + reason));
}

bool openAndParse(const std::string& path, HardBlocks& hardBlocks, const std::string& name,
                  const tq::DiagnosticSink& sink) {
    boost::iostreams::filtering_istream stream;
    stream.exceptions(std::ios_base::goodbit);
    isl::iostreams::xp_autodetect()(path, stream);
    if (!stream.good()) {
        const auto obstacle = sink ? base::findObstacle(path) : std::nullopt;
        reportUnreadable(name, obstacle ? obstacle->reason : "it can't be opened", sink);
        return false;
    }
    return parseMetadataStream(stream, hardBlocks, name, sink);
}

} // namespace

bool parseMetadataStream(std::istream& stream, HardBlocks& hardBlocks, const std::string& name,
                         const tq::DiagnosticSink& sink) {
    const base::FileContent content = input::readStream(stream);
    if (content.outcome == base::ReadOutcome::TooLarge)
        sendMalformed(content.reason);
    if (!content.isWhole()) {
        reportUnreadable(name, content.reason, sink);
        return false;
    }
    const auto tape = std::make_shared<const base::JsonTape>(content.text);
    const tq::SourceText source(name, content.text);
    if (tape->HasParseError()) {
        if (sink)
            sink(makeDiagnostic(tq::Severity::Error, "malformed-json",
                                source.placeOf(tape->GetErrorOffset()),
                                base::describeError(*tape)));
        sendMalformed(HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(*tape));
        return false;
    }
    if (sink)
        checkMetadata(*tape, source, sink);
    Reader(tape, hardBlocks).read();
    return true;
}

bool readMetadataFile(const HUTFile& file, HardBlocks& hardBlocks, const std::string& name,
                      const tq::DiagnosticSink& sink) {
    std::string path;
    file.getFullPath(path);
    bool good = false;
    try {
        good = openAndParse(path, hardBlocks, name, sink);
    } catch (...) {
        good = false; // the message below reports any reason
    }
    if (!good)
        ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-4@%s", path);
    return good;
}

} // namespace hardblock
