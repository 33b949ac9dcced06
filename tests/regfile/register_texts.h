// Register description files made from their inner parts.
#pragma once

#include <memory>
#include <string>

#include "regfile/HBSRegFileParser.h"
#include "support/support.h"

namespace register_texts {

inline std::string element(const std::string& name, const std::string& content) {
    return "<spirit:" + name + ">" + content + "</spirit:" + name + ">\n";
}

/// A file with one map "ps_map" whose single block holds `content`.
inline std::string inBlock(const std::string& content) {
    return element("component",
                   element("memoryMaps",
                           element("memoryMap",
                                   element("name", "ps_map") + element("addressBlock", content))));
}

/// A file with the given registers at base address 0x1000.
inline std::string inRegisters(const std::string& registers) {
    return inBlock(element("baseAddress", "0x1000") + registers);
}

inline std::string reg(const std::string& name, const std::string& rest) {
    return element("register", element("name", name) + rest);
}

inline std::unique_ptr<hbs::HBSRegistersMap> parse(const std::string& content) {
    const support::TempDir folder;
    return hbs::HBSRegFileParser::parseFile(folder.write("registers.xml", content));
}

} // namespace register_texts
