#include "hardblock/metadata_reader.h"

#include <algorithm>

#include "HCRapidJsonReadWriteUtils.h"
#include "hardblock/json_getters.h"
#include "hardblock/messages.h"
#include "xp_autodetect.h"

namespace hardblock {

namespace {

/// Everything in the metadata may be left out.
constexpr bool kOptional = false;

std::string nameOf(const JsonValue& name) {
    return {name.GetString(), name.GetStringLength()};
}

/// True for an object; anything else is skipped with a message.
bool suitsAsObject(const JsonValue& value, const std::string& key) {
    if (value.IsObject())
        return true;
    sendUnsuitable(value, key);
    return false;
}

/// Calls `action` with the name and the value of each member, in file order. Null has no members.
template <class Action>
void forEachMember(const JsonValue* object, const std::string& key, Action&& action) {
    if (object == nullptr || !suitsAsObject(*object, key))
        return;
    for (const auto& member : object->GetObject())
        action(nameOf(member.name), member.value);
}

/// Lowers the letters of ASCII alone: the words mean the same whatever the locale is.
std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

void readParameter(const std::string& name, const JsonValue& value, Interface& interface) {
    if (value.IsInt64() || value.IsUint64())
        interface.addParameter(name, std::to_string(low32Bits(value)));
    else
        sendUnsuitable(value, name);
}

/// The member's name is the mapped side, its value the port side.
void readPortMap(const std::string& mapped, const JsonValue& port, Interface& interface) {
    if (port.IsString())
        interface.addPortMap(nameOf(port), mapped);
    else
        sendUnsuitable(port, mapped);
}

bool readInterface(const std::string& name, const JsonValue& body, Interface& interface) {
    if (!suitsAsObject(body, name))
        return true;
    const JsonValue* accessPoint = getJsonMember(body, "access_point", kOptional);
    if (accessPoint == nullptr || !suitsAsObject(*accessPoint, "access_point"))
        return true;

    std::string module;
    getJsonString(*accessPoint, "module", module, kOptional);
    interface.setApModuleName(module);

    const JsonValue* parameters = getJsonMember(*accessPoint, "parameters", kOptional);
    const JsonValue* portMaps = getJsonMember(*accessPoint, "port_maps", kOptional);
    forEachMember(parameters, "parameters",
                  [&](const std::string& parameter, const JsonValue& value) {
                      readParameter(parameter, value, interface);
                  });
    forEachMember(portMaps, "port_maps", [&](const std::string& mapped, const JsonValue& port) {
        readPortMap(mapped, port, interface);
    });
    return true;
}

bool readPin(const std::string& name, const JsonValue& body, Pin& pin) {
    if (!suitsAsObject(body, name))
        return true;

    std::string type = "wire";
    getJsonString(body, "type", type, kOptional);
    if (lowered(type) == "vector")
        pin.setType(Type::Vector);

    std::string direction = "INOUT";
    getJsonString(body, "direction", direction, kOptional);
    direction = lowered(direction);
    if (direction == "in")
        pin.setDirection(Direction::In);
    else if (direction == "out")
        pin.setDirection(Direction::Out);

    std::string defaultValue;
    getJsonString(body, "default_val", defaultValue, kOptional);
    pin.setDefaultValue(defaultValue);

    int left = -1;
    getJsonInt(body, "size_left", left, kOptional);
    pin.setLeftSize(left);
    int right = -1;
    getJsonInt(body, "size_right", right, kOptional);
    pin.setRightSize(right);
    return true;
}

bool readHardBlock(const JsonValue& body, HardBlockData& hardBlock) {
    if (!suitsAsObject(body, hardBlock.getName()))
        return true;
    const JsonValue* interfaces = getJsonMember(body, "interfaces", kOptional);
    const JsonValue* pins = getJsonMember(body, "pins", kOptional);

    bool good = true;
    forEachMember(interfaces, "interfaces", [&](const std::string& name, const JsonValue& value) {
        good &= readInterface(name, value, *hardBlock.createInterface(name));
    });
    if (!good)
        return false;
    forEachMember(pins, "pins", [&](const std::string& name, const JsonValue& value) {
        good &= readPin(name, value, *hardBlock.createPin(name));
    });
    return good;
}

bool openAndParse(const std::string& path, HardBlocks& hardBlocks) {
    boost::iostreams::filtering_istream stream;
    stream.exceptions(std::ios_base::goodbit);
    isl::iostreams::xp_autodetect()(path, stream);
    return stream.good() && parseMetadataStream(stream, hardBlocks);
}

} // namespace

bool parseMetadataStream(std::istream& stream, HardBlocks& hardBlocks) {
    JsonDocument document(rapidjson::kObjectType);
    document.ParseStream(stream);
    if (document.HasParseError()) {
        ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-2@%s",
                                 HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(document));
        return false;
    }
    // A protected file's checksum stands at its end, so its text may be whole and still be wrong.
    if (stream.bad())
        return false;

    bool good = true;
    forEachMember(&document, "", [&](const std::string& name, const JsonValue& value) {
        auto& hardBlock = *hardBlocks.emplace_back(std::make_unique<HardBlockData>(name));
        good &= readHardBlock(value, hardBlock);
    });
    return good;
}

bool readMetadataFile(const HUTFile& file, HardBlocks& hardBlocks) {
    std::string path;
    file.getFullPath(path);
    bool good = false;
    try {
        good = openAndParse(path, hardBlocks);
    } catch (...) {
        good = false; // whatever it was, the message below reports it
    }
    if (!good)
        ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-4@%s", path);
    return good;
}

} // namespace hardblock
