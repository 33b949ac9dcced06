#include "workbench/addressing/export/MapExport.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <tuple>
#include <unordered_map>

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"
#include "workbench/files/InputError.h"
#include "workbench/text/Text.h"

namespace tq {

namespace map_export {

namespace {

/// The path as an identifier, without the part in front of the last if `isShort`.
std::string nameOf(const std::string& path, bool isShort) {
    const std::size_t last = path.rfind('/');
    if (!isShort || last == std::string::npos || last == 0)
        return identifier(path);
    const std::size_t before = path.rfind('/', last - 1);
    return identifier(before == std::string::npos ? path
                                                  : path.substr(0, before) + path.substr(last));
}

} // namespace

Sorted sorted(const MapModel& model, const DiagnosticSink& sink) {
    Sorted result{&model, {}};
    std::unordered_map<std::string, unsigned> uses;
    for (const MapBlock& block : model.blocks) {
        result.blocks.push_back({&block, {}, {}});
        ++uses[capital(nameOf(block.path, true))];
    }
    std::sort(result.blocks.begin(), result.blocks.end(), [](const auto& a, const auto& b) {
        return std::tie(a.block->base, a.block->path) < std::tie(b.block->base, b.block->path);
    });
    LegalNames names(sink);
    for (Sorted::Block& entry : result.blocks) {
        const std::string brief = nameOf(entry.block->path, true);
        const bool isShort = uses[capital(brief)] == 1;
        entry.name =
            names.take(isShort ? brief : nameOf(entry.block->path, false), entry.block->path);
        for (const MapRegister& reg : entry.block->registers)
            entry.registers.push_back(&reg);
        std::sort(entry.registers.begin(), entry.registers.end(),
                  [](const MapRegister* a, const MapRegister* b) {
                      return std::tie(a->offset, a->name) < std::tie(b->offset, b->name);
                  });
    }
    return result;
}

std::string hex(std::uint64_t number) {
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
    return "0x" + capital(std::string(digits.begin(), end));
}

std::uint64_t maskOf(unsigned width) {
    return width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1;
}

std::uint64_t bytesOf(const MapRegister& reg) {
    return (std::uint64_t{reg.width} + 7) / 8;
}

std::uint64_t accessWidth(const MapRegister& reg) {
    return std::bit_ceil(std::max(std::uint64_t{reg.width}, std::uint64_t{8}));
}

unsigned widthWithin(const MapField& field, const MapRegister& reg) {
    return field.lsb >= reg.width ? 0 : std::min(field.width, reg.width - field.lsb);
}

std::string comment(std::string_view text) {
    std::string line = printable(validUtf8(text));
    for (std::size_t at = line.find("*/"); at != std::string::npos; at = line.find("*/", at))
        line.replace(at, 2, "* /");
    for (std::size_t at = line.find("/*"); at != std::string::npos; at = line.find("/*", at))
        line.replace(at, 2, "/ *");
    return line;
}

const char* accessText(MapAccess access) {
    switch (access) {
    case MapAccess::ReadOnly:
        return "read-only";
    case MapAccess::WriteOnly:
        return "write-only";
    case MapAccess::ReadWrite:
        break;
    }
    return "read-write";
}

void tellNotExported(const DiagnosticSink& sink, const std::string& what, const std::string& why) {
    if (sink)
        sink(makeDiagnostic(Severity::Remark, "not-exported", {},
                            what + " isn't in the exported file: " + why));
}

} // namespace map_export

namespace {

struct Format {
    std::string_view ending;
    MapFormat format;
    std::string (*write)(const map_export::Sorted&, const DiagnosticSink&);
};

constexpr std::array<Format, 8> kFormats{{
    {".h", MapFormat::CHeader, map_export::writeCHeader},
    {".ld", MapFormat::LinkerScript, map_export::writeLinkerScript},
    {".dts", MapFormat::Devicetree, map_export::writeDevicetree},
    {".dtsi", MapFormat::Devicetree, map_export::writeDevicetree},
    {".rdl", MapFormat::SystemRdl, map_export::writeSystemRdl},
    {".svd", MapFormat::Svd, map_export::writeSvd},
    {".csv", MapFormat::Csv, map_export::writeCsv},
    {".md", MapFormat::Markdown, map_export::writeMarkdown},
}};

} // namespace

std::optional<MapFormat> mapFormatOf(std::string_view path) {
    for (const Format& format : kFormats)
        if (path.ends_with(format.ending))
            return format.format;
    return std::nullopt;
}

std::string mapFormatEndings() {
    std::string endings;
    for (const Format& format : kFormats)
        endings.append(endings.empty() ? "" : ", ").append(format.ending);
    return endings;
}

std::string exportMap(const MapModel& model, MapFormat format, const DiagnosticSink& sink) {
    for (const Format& known : kFormats)
        if (known.format == format)
            return known.write(map_export::sorted(model, sink), sink);
    return {};
}

std::string exportMapAs(const std::string& path, const MapModel& model,
                        const DiagnosticSink& sink) {
    const std::optional<MapFormat> format = mapFormatOf(path);
    if (!format)
        throw InputError("can't tell the format of \"" + path +
                         "\" by its ending, expected one of: " + mapFormatEndings());
    return exportMap(model, *format, sink);
}

} // namespace tq
