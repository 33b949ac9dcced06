#include "workbench/addressing/AddressMapJson.h"

#include <vector>

#include "addressing/HBSAddressing.h"
#include "base/JsonWriter.h"
#include "workbench/addressing/AddressMapWriting.h"
#include "workbench/text/JsonWriter.h"

namespace tq {

namespace {

void writeAddress(JsonWriter& json, const char* key, const HABMAddrValue& value) {
    json.writeKey(key);
    if (value.isValid())
        json.value(value.getPrettyHexStringValue(0));
    else
        json.null();
}

void writeNames(JsonWriter& json, const char* key,
                const std::vector<const HABMInterface*>& interfaces) {
    json.beginArray(key);
    for (const HABMInterface* interface : interfaces)
        json.value(interface->getInterfaceName());
    json.endArray();
}

void writeRegisters(JsonWriter& json, const AddressMap& map, const AddressMap::Block& block) {
    json.beginArray("registers");
    for (const HABMRegister* const reg : AddressMap::registersOf(block)) {
        json.beginObject();
        json.member("name", reg->getName());
        writeAddress(json, "address", block.base.plus(reg->getOffset()));
        writeAddress(json, "offset", reg->getOffset());
        json.member("width", reg->getWidth());
        json.member("access", HABMRegister::decodeRegisterAccess(reg->getAccess()));
        writeAddress(json, "reset", reg->getReset());
        writeAddress(json, "value", map.valueOf(block, *reg));
        json.endObject();
    }
    json.endArray();
}

void write(JsonWriter& json, const AddressMap& map, const AddressMap::Block& block,
           bool withRegisters) {
    json.beginObject();
    writeAddress(json, "base", block.base);
    writeAddress(json, "end", block.end);
    writeAddress(json, "size", block.size);
    writeAddress(json, "offset", block.definition->getOffset());
    json.member("name", block.definition->getName());
    json.member("path", block.path);
    json.member("usage", HABMAddrBlock::decodeMemoryType(block.definition->getMemoryType()));
    writeNames(json, "interfaces", block.access->interfaces);
    writeNames(json, "ports", block.access->ports);
    json.member("on", block.instance != nullptr);
    if (withRegisters)
        writeRegisters(json, map, block);
    json.endObject();
}

void write(JsonWriter& json, const AddressMap::SpaceEntry& entry) {
    json.beginObject();
    writeAddress(json, "start", entry.start);
    writeAddress(json, "end", AddressMap::endOf(entry.start, entry.size));
    writeAddress(json, "size", entry.size);
    json.member("name", entry.name);
    if (entry.assign == nullptr) {
        json.member("type", HABMAddrSegment::decodeMemoryType(entry.segment->getMemoryType()));
    } else {
        json.member("type", HABMAddrAssign::decodeAssignType(entry.assign->getAssignType()));
        json.member("segment", entry.segment->getName());
    }
    json.endObject();
}

void write(JsonWriter& json, const AddressMap::Removed& item) {
    const bool isBlock = item.interface == nullptr;
    json.beginObject();
    json.member("kind", isBlock ? "block" : "interface");
    json.member("path", item.path);
    json.member("condition",
                isBlock ? item.block->getEnablement() : item.interface->getEnablement());
    json.endObject();
}

void write(JsonWriter& json, const AddressMap::Space& space);

template <class Item>
void writeAll(JsonWriter& json, const char* key, const std::vector<Item>& items) {
    json.beginArray(key);
    for (const Item& item : items)
        write(json, item);
    json.endArray();
}

void write(JsonWriter& json, const AddressMap::Space& space) {
    json.beginObject();
    json.member("path", space.path);
    writeAddress(json, "range", space.space->getRange());
    writeAll(json, "windows", space.windows);
    writeAll(json, "assigned", space.assigned);
    json.endObject();
}

} // namespace

void writeMembers(JsonWriter& json, const AddressMap& map, bool withRegisters) {
    json.beginArray("blocks");
    for (const AddressMap::Block& block : map.blocks())
        write(json, map, block, withRegisters);
    json.endArray();
    writeAll(json, "spaces", map.spaces());
    writeAll(json, "removed", map.removed());
}

std::string addressMapJson(const AddressMap& map, bool withRegisters) {
    JsonWriter json;
    json.beginObject();
    writeMembers(json, map, withRegisters);
    json.endObject();
    return json.text();
}

std::string addressingReportJson(const HABMBlock& instance) {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(instance, document);
    JsonTextBuffer buffer;
    JsonPrettyWriter<JsonTextBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace tq
