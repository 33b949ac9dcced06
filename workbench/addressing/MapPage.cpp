#include "workbench/addressing/MapPage.h"

#include <unordered_map>

#include "workbench/addressing/MapChecks.h"
#include "workbench/addressing/MapPageParts.h"
#include "workbench/addressing/MapQuestions.h"
#include "workbench/page/Page.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/JsonWriter.h"

namespace tq {

namespace {

void writeAddress(JsonWriter& json, const HABMAddrValue& value) {
    if (value.isValid())
        json.value(value.getHexStringValue(0));
    else
        json.null();
}

/// Arrays rather than objects, as a page has a hundred thousand of them. The script's constants
/// name their members.
class Data {
public:
    explicit Data(JsonWriter& json) : m_json(json) {}

    void write(const ConfiguredMap& map) {
        m_json.beginObject();
        m_json.member("name", map.configPath().empty() ? "no config" : map.configPath());
        m_json.beginArray("blocks");
        for (const AddressMap::Block& block : map.map().blocks()) {
            m_numbers.emplace(&block, m_numbers.size());
            write(map, block);
        }
        m_json.endArray();
        m_json.beginArray("views");
        for (const AddressViews::View& view : map.views().views())
            write(view);
        m_json.endArray();
        writeRemoved(map);
        writeFindings(map);
        m_json.endObject();
    }

private:
    void write(const ConfiguredMap& map, const AddressMap::Block& block) {
        m_json.beginArray();
        m_json.value(block.path);
        writeAddress(m_json, block.base);
        writeAddress(m_json, block.size);
        m_json.value(HABMAddrBlock::decodeMemoryType(block.definition->getMemoryType()));
        m_json.value(block.instance != nullptr ? 1 : 0);
        m_json.beginArray();
        for (const HABMRegister* const reg : AddressMap::registersOf(block)) {
            m_json.beginArray();
            m_json.value(reg->getName());
            writeAddress(m_json, reg->getOffset());
            m_json.value(reg->getWidth());
            m_json.value(static_cast<int>(reg->getAccess()));
            writeAddress(m_json, reg->getReset());
            writeAddress(m_json, map.map().valueOf(block, *reg));
            m_json.endArray();
        }
        m_json.endArray();
        m_json.endArray();
    }

    void write(const AddressViews::View& view) {
        m_json.beginObject();
        m_json.member("path", view.path);
        m_json.writeKey("range");
        writeAddress(m_json, view.space == nullptr ? HABMAddrValue() : view.space->getRange());
        m_json.beginArray("regions");
        for (const auto& region : view.regions.all()) {
            m_json.beginArray();
            writeAddress(m_json, region.first);
            writeAddress(m_json, region.last);
            writeAddress(m_json, region.value.origin);
            m_json.value(m_numbers.at(region.value.block));
            m_json.value(region.value.assign == nullptr ? "" : region.value.assign->getName());
            m_json.endArray();
        }
        m_json.endArray();
        m_json.endObject();
    }

    void writeRemoved(const ConfiguredMap& map) {
        MapReasons reasons(map);
        m_json.beginArray("off");
        for (const AddressMap::Removed& removed : map.map().removed()) {
            m_json.beginArray();
            m_json.value(removed.path);
            const MapReason reason = reasons.of(removed.path);
            std::string text = reason.text;
            for (const std::string& script : reason.scripts)
                text += "; computed by the script " + script;
            for (const MapReason::Register& reg : reason.registers)
                text += "; " + reg.path + " from " + reg.source;
            m_json.value(text);
            m_json.endArray();
        }
        m_json.endArray();
    }

    void writeFindings(const ConfiguredMap& map) {
        DiagnosticList findings;
        map.check(findings.sink());
        m_json.member("found", findings.count());
        m_json.beginArray("findings");
        for (const Diagnostic& finding : findings.all())
            m_json.value(headline(finding));
        m_json.endArray();
    }

    JsonWriter& m_json;
    std::unordered_map<const AddressMap::Block*, std::size_t> m_numbers;
};

} // namespace

std::string makeMapPage(const std::vector<const ConfiguredMap*>& maps, const std::string& title) {
    JsonWriter json(0);
    json.beginObject();
    json.member("title", title);
    json.beginArray("maps");
    for (const ConfiguredMap* const map : maps)
        Data(json).write(*map);
    json.endArray();
    json.endObject();
    return makePage({title, map_page::kStyle, map_page::kBody, json.text(), map_page::kScript});
}

} // namespace tq
