#include "workbench/addressing/AddressMapJson.h"

#include <vector>

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

void write(JsonWriter& json, const AddressMap::Block& block) {
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

std::string addressMapJson(const AddressMap& map) {
    JsonWriter json;
    json.beginObject();
    writeAll(json, "blocks", map.blocks());
    writeAll(json, "spaces", map.spaces());
    writeAll(json, "removed", map.removed());
    json.endObject();
    return json.text();
}

} // namespace tq
