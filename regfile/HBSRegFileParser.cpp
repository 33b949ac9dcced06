#include "regfile/HBSRegFileParser.h"

#include <utility>

#include "HSTStringUtils.h"
#include "regfile/ElementCursor.h"
#include "regfile/RegFileDocument.h"
#include "regfile/RegFileFormat.h"
#include "regfile/RegisterNumbers.h"

#if defined(__SANITIZE_ADDRESS__)
#define TQ_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TQ_ADDRESS_SANITIZER
#endif
#endif
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

/// Any other text leaves the access as it stands.
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
    if (path.empty())
        return nullptr;
    std::unique_ptr<HBSRegistersMap> registers(new HBSRegistersMap(path));
    const regfile::RegFileDocument document(path);
    if (document.root() == nullptr)
        return nullptr;
    HBSRegFileParser(registers.get()).readDocument(Cursor(document.root()));
    return registers;
}

void HBSRegFileParser::readDocument(Cursor cursor) {
    while (cursor.nextField(regfile::kDocument) != 0)
        readComponent(cursor.children());
}

void HBSRegFileParser::readComponent(Cursor cursor) {
    while (const int position = cursor.nextField(regfile::kComponent))
        if (position == kComponentMemoryMaps)
            readMemoryMaps(cursor.children());
}

void HBSRegFileParser::readMemoryMaps(Cursor cursor) {
    while (cursor.nextField(regfile::kMemoryMaps) != 0)
        readMemoryMap(cursor.children());
}

void HBSRegFileParser::readMemoryMap(Cursor cursor) {
    std::string name;
    while (const int position = cursor.nextField(regfile::kMemoryMap)) {
        if (position == kMapName)
            name = cursor.text();
        else if (position == kMapAddressBlock)
            readAddressBlock(cursor.children(), name);
    }
}

void HBSRegFileParser::readAddressBlock(Cursor cursor, const std::string& mapName) {
    Block block{mapName, {}};
    while (const int position = cursor.nextField(regfile::kAddressBlock)) {
        if (position == kBlockBaseAddress)
            block.baseAddress = cursor.text();
        else if (position == kBlockRegister)
            readRegister(cursor.children(), block);
    }
}

void HBSRegFileParser::readRegister(Cursor cursor, const Block& block) {
    HBSRegister* current = nullptr;
    while (const int position = cursor.nextField(regfile::kRegister)) {
        if (position == kRegisterName)
            current = addRegister(cursor.text(), block.mapName);
        else if (current != nullptr)
            readProperty(*current, position, cursor, block.baseAddress);
    }
}

HBSRegister* HBSRegFileParser::addRegister(std::string name, const std::string& mapName) {
    std::unique_ptr<HBSRegister> added(new HBSRegister);
    added->m_fullName = HSTStringUtils::to_upper(mapName + "_" + name);
    added->m_name = std::move(name);
    // The first of a name stays; a later one is filled all the same but can't be reached.
    m_registers->m_registers.emplace(added->m_name, added.get());
    TQ_KEEP_FOR_EVER(added.get());
    return added.release();
}

void HBSRegFileParser::readProperty(HBSRegister& target, int position, const Cursor& cursor,
                                    const std::string& baseAddress) {
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
        target.m_dim = regfile::dimValue(cursor.text());
        break;
    default: // fields, size and reset are none of the reader's business
        break;
    }
}

} // namespace hbs
