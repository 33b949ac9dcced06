#include "host/RegisterOutline.h"

#include <boost/iostreams/filtering_stream.hpp>

#include <algorithm>
#include <iterator>
#include <pugixml.hpp>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "host/Command.h"
#include "regfile/RegFileFormat.h"
#include "xp_autodetect.h"

namespace host {

namespace {

namespace format = hbs::regfile;

/// One level of the document: what the reader knows there, and what it goes down into.
struct Level {
    std::span<const std::string_view> known;
    std::string_view entered;
    const Level* below;
};

constexpr Level kRegister{format::kRegister, "", nullptr};
constexpr Level kAddressBlock{format::kAddressBlock, "spirit:register", &kRegister};
constexpr Level kMemoryMap{format::kMemoryMap, "spirit:addressBlock", &kAddressBlock};
constexpr Level kMemoryMaps{format::kMemoryMaps, "spirit:memoryMap", &kMemoryMap};
constexpr Level kComponent{format::kComponent, "spirit:memoryMaps", &kMemoryMaps};
constexpr Level kDocument{format::kDocument, "spirit:component", &kComponent};

std::string contentOf(const std::string& path) {
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(path, stream);
    std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (stream.bad())
        throw BadInput(path + ": the file can't be read");
    return content;
}

class Look {
public:
    explicit Look(const std::string& path) : m_content(contentOf(path)) {
        const auto result = m_document.load_buffer(m_content.data(), m_content.size());
        m_linesCount = result.encoding == pugi::encoding_utf8;
    }

    RegisterOutline outline() {
        walk(m_document, kDocument, "the document");
        return std::move(m_outline);
    }

private:
    // As deep as there are levels.
    void walk(const pugi::xml_node& parent, const Level& level, const std::string& name) {
        for (const pugi::xml_node& child : parent.children()) {
            if (child.type() != pugi::node_element)
                continue;
            const std::string_view element = child.name();
            if (std::find(level.known.begin(), level.known.end(), element) == level.known.end()) {
                m_outline.stops.push_back({child.name(), name, lineOf(child)});
                return;
            }
            if (element == level.entered)
                walk(child, *level.below, "<" + std::string(element) + ">");
            else if (level.below == nullptr && element == format::kRegister.front())
                addName(child);
        }
    }

    void addName(const pugi::xml_node& node) {
        std::istringstream words(textOf(node));
        std::string name;
        for (std::string word; words >> word;)
            name += (name.empty() ? "" : " ") + word;
        if (m_seen.insert(name).second)
            m_outline.names.push_back(name);
    }

    static std::string textOf(const pugi::xml_node& node) {
        struct Gatherer : pugi::xml_tree_walker {
            std::string text;
            bool for_each(pugi::xml_node& inner) override {
                text += inner.value();
                return true;
            }
        } gatherer;
        pugi::xml_node top = node;
        top.traverse(gatherer);
        return gatherer.text;
    }

    /// Elements come in file order, so every line end is counted once.
    std::size_t lineOf(const pugi::xml_node& node) {
        if (!m_linesCount) // offsets are those of the converted text
            return 0;
        const auto offset = static_cast<std::size_t>(node.offset_debug());
        const auto from = m_content.begin() + static_cast<std::ptrdiff_t>(m_counted);
        const auto to = m_content.begin() + static_cast<std::ptrdiff_t>(offset);
        m_line += static_cast<std::size_t>(std::count(from, to, '\n'));
        m_counted = offset;
        return m_line;
    }

    std::string m_content;
    pugi::xml_document m_document;
    RegisterOutline m_outline;
    std::unordered_set<std::string> m_seen;
    bool m_linesCount = false;
    std::size_t m_counted = 0;
    std::size_t m_line = 1;
};

} // namespace

RegisterOutline RegisterOutline::read(const std::string& path) {
    return Look(path).outline();
}

} // namespace host
