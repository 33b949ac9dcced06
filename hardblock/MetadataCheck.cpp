#include "hardblock/MetadataCheck.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "diagnostics/NearestName.h"

namespace hardblock {

namespace {

using base::JsonNode;
using Names = std::initializer_list<std::string_view>;

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

/// A whole text as a number of any size, so that an overflow isn't taken for a text.
std::optional<double> wholeNumber(std::string_view text) {
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() ? std::optional(number)
                                                                     : std::nullopt;
}

bool isInteger(const JsonNode& value) {
    return value.kind() == JsonNode::Kind::Number &&
           value.text().find_first_of(".eE") == std::string_view::npos;
}

/// One side of a mapping, as it is written.
struct Side {
    std::string_view name;
    bool hasRange = false;
    std::int64_t left = 0;
    std::int64_t right = 0;
};

/// "name", "name[N]" or "name[L:R]" with plain numbers, else nothing.
std::optional<Side> readSide(std::string_view text) {
    const std::size_t open = text.find('[');
    if (open == std::string_view::npos)
        return text.find(']') == std::string_view::npos ? std::optional(Side{text, false, 0, 0})
                                                        : std::nullopt;
    if (text.back() != ']')
        return std::nullopt;
    const std::string_view range = text.substr(open + 1, text.size() - open - 2);
    const std::size_t colon = range.find(':');
    const auto read = [](std::string_view digits) -> std::optional<std::int64_t> {
        std::int32_t number = 0;
        const auto [stop, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), number);
        const bool isWhole = error == std::errc() && stop == digits.data() + digits.size();
        return isWhole && number >= 0 ? std::optional(std::int64_t{number}) : std::nullopt;
    };
    const auto left = read(range.substr(0, colon));
    const auto right = colon == std::string_view::npos ? left : read(range.substr(colon + 1));
    return left && right ? std::optional(Side{text.substr(0, open), true, *left, *right})
                         : std::nullopt;
}

class MetadataCheck {
public:
    MetadataCheck(const tq::SourceText& source, const tq::DiagnosticSink& sink)
        : m_source(source), m_sink(sink) {}

    void run(const JsonNode& root) {
        if (!isObject(root, "the file"))
            return;
        checkNames(root, "hard block", "look-ups find the first");
        root.forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (isObject(value, "the hard block " + quoted(name.text())))
                checkBlock(value);
        });
    }

private:
    void checkBlock(const JsonNode& block) {
        checkKeys(block, {"interfaces", "pins"});
        forEach(block, "interfaces", [&](const JsonNode& interfaces) {
            checkNames(interfaces, "interface", "both are read into one");
            interfaces.forEachMember([&](const JsonNode& name, const JsonNode& value) {
                if (isObject(value, "the interface " + quoted(name.text())))
                    checkInterface(value);
            });
        });
        forEach(block, "pins", [&](const JsonNode& pins) {
            checkNames(pins, "pin", "there are two pins of that name");
            pins.forEachMember([&](const JsonNode& name, const JsonNode& value) {
                if (isObject(value, "the pin " + quoted(name.text())))
                    checkPin(value);
            });
        });
    }

    void checkInterface(const JsonNode& interface) {
        checkKeys(interface, {"access_point"});
        forEach(interface, "access_point", [&](const JsonNode& accessPoint) {
            checkKeys(accessPoint, {"module", "parameters", "port_maps"});
            accessPoint.forEachMember([&](const JsonNode& key, const JsonNode& value) {
                if (key.text() == "module")
                    checkText(key, value);
            });
            forEach(accessPoint, "parameters",
                    [&](const JsonNode& parameters) { checkParameters(parameters); });
            forEach(accessPoint, "port_maps",
                    [&](const JsonNode& portMaps) { checkPortMaps(portMaps); });
        });
    }

    void checkParameters(const JsonNode& parameters) {
        checkNames(parameters, "parameter", "the first counts");
        parameters.forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (isInteger(value))
                checkFits(name, value);
            else
                warn("wrong-type", value,
                     "the parameter " + quoted(name.text()) + " is " + kindOf(value) +
                         " and is passed over",
                     "an integer");
        });
    }

    void checkPin(const JsonNode& pin) {
        checkKeys(pin, {"type", "direction", "default_val", "size_left", "size_right"});
        pin.forEachMember([&](const JsonNode& key, const JsonNode& value) {
            if (key.text() == "type")
                checkWord(key, value, {"wire", "vector"}, "wire");
            else if (key.text() == "direction")
                checkWord(key, value, {"in", "out", "inout"}, "inout");
            else if (key.text() == "default_val")
                checkText(key, value);
            else if (key.text() == "size_left" || key.text() == "size_right")
                checkSize(key, value);
        });
    }

    void checkWord(const JsonNode& key, const JsonNode& value, Names known,
                   std::string_view fallback) {
        if (!checkText(key, value))
            return;
        const std::string word = base::lowered(std::string(value.text()));
        if (std::find(known.begin(), known.end(), word) == known.end())
            warn("unknown-text", value,
                 "the " + std::string(key.text()) + " " + quoted(value.text()) + " counts as " +
                     quoted(fallback),
                 tq::oneOfNames(word, std::span(known.begin(), known.size())));
    }

    /// Texts, booleans, integers and arrays of texts are texts to the reader.
    bool checkText(const JsonNode& key, const JsonNode& value) {
        using Kind = JsonNode::Kind;
        const bool isSuitable = value.isString() || value.kind() == Kind::Boolean ||
                                value.isArray() || isInteger(value);
        if (!isSuitable)
            warn("wrong-type", value,
                 quoted(key.text()) + " is " + kindOf(value) + " and is passed over", "a text");
        return isSuitable;
    }

    void checkSize(const JsonNode& key, const JsonNode& value) {
        const bool isText = value.isString();
        if (!isText && value.kind() != JsonNode::Kind::Boolean && !isInteger(value))
            return warn("wrong-type", value,
                        quoted(key.text()) + " is " + kindOf(value) + " and is passed over",
                        "an integer");
        if (isText && !wholeNumber(value.text()))
            warn("unreadable-number", value,
                 quoted(key.text()) + " " + quoted(value.text()) + " isn't read as a whole",
                 "an integer");
        else if (isText || isInteger(value))
            checkFits(key, value);
    }

    void checkFits(const JsonNode& key, const JsonNode& value) {
        using Limits = std::numeric_limits<std::int32_t>;
        const double number =
            wholeNumber(value.text()).value_or(std::numeric_limits<double>::infinity());
        if (number < Limits::min() || number > Limits::max())
            warn("number-overflow", value,
                 quoted(key.text()) + " " + std::string(value.text()) + " loses its high bits",
                 "a number of 32 bits");
    }

    /// The port sides seen so far, by name.
    struct Mapped {
        Side port;
        JsonNode node;
    };
    using MappedPorts = std::unordered_map<std::string_view, std::vector<Mapped>>;

    void checkPortMaps(const JsonNode& portMaps) {
        MappedPorts ports;
        portMaps.forEachMember([&](const JsonNode& mapped, const JsonNode& port) {
            if (!port.isString())
                return warn("wrong-type", port,
                            "the port of " + quoted(mapped.text()) + " is " + kindOf(port) +
                                " and is passed over",
                            "a text");
            const auto portSide = checkSide(port);
            const auto mappedSide = checkSide(mapped);
            if (!portSide || !mappedSide)
                return;
            if (portSide->hasRange && mappedSide->hasRange &&
                portSide->left - portSide->right != mappedSide->left - mappedSide->right)
                warn("range-width", port,
                     quoted(port.text()) + " and " + quoted(mapped.text()) +
                         " have different widths");
            ports[portSide->name].push_back({*portSide, port});
        });
        for (auto& entry : ports)
            checkOverlaps(entry.second);
    }

    std::optional<Side> checkSide(const JsonNode& text) {
        const auto side = readSide(text.text());
        if (!side)
            warn("unreadable-range", text,
                 "the range of " + quoted(text.text()) + " isn't read as it is written",
                 "name, name[N] or name[L:R]");
        else if (side->hasRange && side->right > side->left)
            warn("ascending-range", text, "no bit is in the range of " + quoted(text.text()),
                 "the larger number first");
        return side && side->left >= side->right ? side : std::nullopt;
    }

    void checkOverlaps(std::vector<Mapped>& ranges) {
        std::stable_sort(ranges.begin(), ranges.end(), [](const Mapped& a, const Mapped& b) {
            return a.port.right < b.port.right;
        });
        const Mapped* furthest = nullptr;
        for (const Mapped& range : ranges) {
            if (furthest != nullptr && range.port.hasRange == furthest->port.hasRange &&
                range.port.right <= furthest->port.left)
                warn("overlapping-ranges", range.node,
                     quoted(range.node.text()) + " overlaps " + quoted(furthest->node.text()) +
                         ", and the first in the file counts",
                     {}, furthest->node, "the other range");
            if (furthest == nullptr || range.port.left > furthest->port.left)
                furthest = &range;
        }
    }

    /// Calls `check(value)` for the first member of that name, if it is an object.
    template <class Check>
    void forEach(const JsonNode& object, std::string_view key, Check&& check) {
        bool isSeen = false;
        object.forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (isSeen || name.text() != key)
                return;
            isSeen = true;
            if (isObject(value, quoted(key)))
                check(value);
        });
    }

    bool isObject(const JsonNode& value, const std::string& what) {
        if (!value.isObject())
            warn("wrong-type", value, what + " is " + kindOf(value) + " and is passed over",
                 "an object");
        return value.isObject();
    }

    void checkKeys(const JsonNode& object, Names known) {
        std::vector<std::pair<std::string_view, JsonNode>> seen;
        object.forEachMember([&](const JsonNode& name, const JsonNode&) {
            if (std::find(known.begin(), known.end(), name.text()) == known.end())
                return warn("unknown-key", name, "unknown key " + quoted(name.text()),
                            tq::oneOfNames(name.text(), std::span(known.begin(), known.size())));
            const auto before = std::find_if(seen.begin(), seen.end(),
                                             [&](const auto& s) { return s.first == name.text(); });
            if (before == seen.end())
                seen.emplace_back(name.text(), name);
            else
                warn("duplicate-key", name,
                     "a second key " + quoted(name.text()) + ", which is passed over", {},
                     before->second, "first given here");
        });
    }

    void checkNames(const JsonNode& object, const char* what, const char* consequence) {
        std::unordered_map<std::string_view, JsonNode> seen;
        object.forEachMember([&](const JsonNode& name, const JsonNode&) {
            const auto [first, isNew] = seen.try_emplace(name.text(), name);
            if (!isNew)
                warn("duplicate-name", name,
                     "a second " + std::string(what) + " " + quoted(name.text()) + ": " +
                         consequence,
                     {}, first->second, "first given here");
        });
    }

    static std::string kindOf(const JsonNode& value) {
        return value.kind() == JsonNode::Kind::Number && !isInteger(value)
                   ? "a number with a fraction or an exponent"
                   : value.kindName();
    }

    void warn(const char* id, const JsonNode& at, std::string text, std::string expected = {}) {
        m_sink(make(id, at, std::move(text), std::move(expected)));
    }
    void warn(const char* id, const JsonNode& at, std::string text, std::string expected,
              const JsonNode& noteAt, const char* note) {
        tq::Diagnostic finding = make(id, at, std::move(text), std::move(expected));
        finding.notes.push_back({m_source.placeOf(noteAt.offset()), note});
        m_sink(std::move(finding));
    }
    tq::Diagnostic make(const char* id, const JsonNode& at, std::string text,
                        std::string expected) {
        return tq::makeDiagnostic(tq::Severity::Warning, id, m_source.placeOf(at.offset()),
                                  std::move(text), std::move(expected));
    }

    const tq::SourceText& m_source;
    const tq::DiagnosticSink& m_sink;
};

} // namespace

void checkMetadata(const base::JsonTape& tape, const tq::SourceText& source,
                   const tq::DiagnosticSink& sink) {
    MetadataCheck(source, sink).run(tape.root());
}

} // namespace hardblock
