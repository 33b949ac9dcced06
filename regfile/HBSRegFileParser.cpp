#include "regfile/HBSRegFileParser.h"

#include <xercesc/util/OutOfMemoryException.hpp>

#include <new>
#include <stdexcept>
#include <utility>

#include "HSTStringUtils.h"
#include "regfile/ElementCursor.h"
#include "regfile/RegFileDocument.h"
#include "regfile/RegFileFormat.h"
#include "regfile/RegisterNumbers.h"
#include "regfile/XmlGuards.h"

#if defined(__SANITIZE_ADDRESS__)
#define TQ_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TQ_ADDRESS_SANITIZER
#endif
#endif
// Registers are never freed, as their contract says; the leak checker is told so.
#ifdef TQ_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#define TQ_KEEP_FOR_EVER(object) __lsan_ignore_object(object)
#else
#define TQ_KEEP_FOR_EVER(object) static_cast<void>(object)
#endif

namespace hbs {

namespace {

// Positions in the lists of RegFileFormat.h.
constexpr int kComponentMemoryMaps = 6;
enum MemoryMapField { kMapName = 1, kMapAddressBlock };
enum AddressBlockField { kBlockBaseAddress = 2, kBlockRegister };
enum RegisterField {
    kRegisterName = 1,
    kRegisterDescription,
    kRegisterAddressOffset,
    kRegisterAccess,
    kRegisterDim = 8
};

/// Any other text leaves the access unchanged.
void readAccess(const std::string& text, std::string& access) {
    if (text == "read-write")
        access = "rw";
    else if (text == "read-only")
        access = "ro";
    else if (text == "write-only")
        access = "wo";
}

} // namespace

std::unique_ptr<HBSRegistersMap> HBSRegFileParser::parseFile(const std::string& path) {
    return read(path, nullptr, {});
}

std::unique_ptr<HBSRegistersMap> HBSRegFileParser::parseFile(const std::string& path,
                                                             std::vector<HBSRegFileStop>& stops,
                                                             const tq::DiagnosticSink& sink) {
    return read(path, &stops, sink);
}

std::unique_ptr<HBSRegistersMap> HBSRegFileParser::read(const std::string& path, Stops* stops,
                                                        const tq::DiagnosticSink& sink) try {
    if (path.empty())
        return nullptr;
    std::unique_ptr<HBSRegistersMap> registers(new HBSRegistersMap(path));
    const regfile::RegFileDocument document(path, stops != nullptr, sink);
    if (document.root() == nullptr)
        return nullptr;
    HBSRegFileParser parser(registers.get(), document, stops, sink);
    parser.readDocument(Cursor(document.root()));
    parser.keepRegisters();
    return registers;
} catch (const xercesc::OutOfMemoryException&) { // which is no standard exception
    throw std::bad_alloc();
}

/// The registers of a map outlive it; those of a file that wasn't read to its end have no map.
void HBSRegFileParser::keepRegisters() {
    for (auto& made : m_made) {
        TQ_KEEP_FOR_EVER(made.get());
        static_cast<void>(made.release());
    }
}

int HBSRegFileParser::nextField(Cursor& cursor, Names names) {
    const int position = cursor.nextField(names);
    if (position == 0 && m_stops != nullptr && cursor.element() != nullptr)
        addStop(cursor, names);
    return position;
}

void HBSRegFileParser::addStop(const Cursor& cursor, Names names) {
    const xercesc::DOMElement& element = *cursor.element();
    const xercesc::DOMNode& parent = *element.getParentNode();
    const tq::Place place = m_document.placeOf(element);
    HBSRegFileStop stop{place.line, place.column, regfile::toText(element.getTagName()), {}, {}};
    stop.level = parent.getNodeType() == xercesc::DOMNode::DOCUMENT_NODE
                     ? "the document"
                     : "<" + regfile::toText(parent.getNodeName()) + ">";
    for (const std::string_view name : names)
        stop.expected.append(stop.expected.empty() ? "" : ", ").append(name);
    if (m_sink)
        m_sink(tq::makeDiagnostic(tq::Severity::Warning, "reader-stop", place,
                                  "the reader stopped at <" + stop.element +
                                      ">, which it doesn't know in " + stop.level,
                                  stop.expected));
    m_stops->push_back(std::move(stop));
}

void HBSRegFileParser::readDocument(Cursor cursor) {
    while (nextField(cursor, regfile::kDocument) != 0)
        readComponent(cursor.children());
}

void HBSRegFileParser::readComponent(Cursor cursor) {
    while (const int position = nextField(cursor, regfile::kComponent))
        if (position == kComponentMemoryMaps)
            readMemoryMaps(cursor.children());
}

void HBSRegFileParser::readMemoryMaps(Cursor cursor) {
    while (nextField(cursor, regfile::kMemoryMaps) != 0)
        readMemoryMap(cursor.children());
}

void HBSRegFileParser::readMemoryMap(Cursor cursor) {
    std::string name;
    while (const int position = nextField(cursor, regfile::kMemoryMap)) {
        if (position == kMapName)
            name = cursor.text();
        else if (position == kMapAddressBlock)
            readAddressBlock(cursor.children(), name);
    }
}

void HBSRegFileParser::readAddressBlock(Cursor cursor, const std::string& mapName) {
    Block block{mapName, {}};
    while (const int position = nextField(cursor, regfile::kAddressBlock)) {
        if (position == kBlockBaseAddress)
            block.baseAddress = cursor.text();
        else if (position == kBlockRegister)
            readRegister(cursor.children(), block);
    }
}

void HBSRegFileParser::readRegister(Cursor cursor, const Block& block) {
    HBSRegister* current = nullptr;
    while (const int position = nextField(cursor, regfile::kRegister)) {
        if (position == kRegisterName)
            current = addRegister(cursor.text(), block.mapName);
        else if (current != nullptr)
            readProperty(*current, position, cursor, block.baseAddress);
    }
}

HBSRegister* HBSRegFileParser::addRegister(std::string name, const std::string& mapName) {
    HBSRegister* const added =
        m_made.emplace_back(std::unique_ptr<HBSRegister>(new HBSRegister)).get();
    added->m_fullName = HSTStringUtils::to_upper(mapName + "_" + name);
    added->m_name = std::move(name);
    // The first of a name stays; a later one is filled all the same but can't be reached.
    if (m_registers->m_registers.emplace(added->m_name, added).second)
        m_registers->m_inFileOrder.push_back(added);
    return added;
}

void HBSRegFileParser::readProperty(HBSRegister& target, int position, const Cursor& cursor,
                                    const std::string& baseAddress) const {
    switch (position) {
    case kRegisterDescription:
        target.m_desc = cursor.text();
        break;
    case kRegisterAddressOffset:
        target.m_offset = regfile::absoluteOffset(cursor.text(), baseAddress);
        break;
    case kRegisterAccess:
        readAccess(cursor.text(), target.m_access);
        break;
    case kRegisterDim:
        target.m_dim = readDim(cursor);
        break;
    default: // fields, size and reset aren't kept
        break;
    }
}

int HBSRegFileParser::readDim(const Cursor& cursor) const try {
    return regfile::dimValue(cursor.text());
} catch (const std::logic_error& error) {
    if (m_sink)
        m_sink(tq::makeDiagnostic(
            tq::Severity::Error, "bad-number", m_document.placeOf(*cursor.element()),
            std::string("a spirit:dim is no number: ") + error.what(), "a decimal number"));
    throw;
}

} // namespace hbs
