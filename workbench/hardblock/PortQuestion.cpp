// Which pins stand behind the bits of an interface's port.

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/hardblock/HardBlockReport.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using hardblock::HardBlockData;
using hardblock::Interface;

constexpr std::int64_t kMostBits = 65'536;

/// An interface and a port of it, as they were asked for.
struct Question {
    const Interface* interface = nullptr;
    std::string port;
};

std::optional<std::int64_t> readBit(std::string_view text) {
    std::int32_t bit = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), bit);
    const bool isWhole = error == std::errc() && stop == text.data() + text.size();
    return isWhole && bit >= 0 ? std::optional(std::int64_t{bit}) : std::nullopt;
}

/// A name with one bit, or a run of bits from the first to the last.
struct Bits {
    std::string name;
    std::int64_t first = 0;
    std::int64_t last = 0;

    [[nodiscard]] std::string text() const {
        return name + "[" + std::to_string(first) +
               (first == last ? "" : ":" + std::to_string(last)) + "]";
    }
    /// Takes the bit behind the last one in, in either direction.
    bool append(const Bits& next, std::int64_t step) {
        if (next.name != name || next.first != last + step)
            return false;
        last = next.last;
        return true;
    }
};

std::optional<Bits> readBits(std::string_view text) {
    const std::size_t open = text.find('[');
    if (open == std::string_view::npos || text.back() != ']')
        return std::nullopt;
    const std::string_view range = text.substr(open + 1, text.size() - open - 2);
    const std::size_t colon = range.find(':');
    const auto first = readBit(range.substr(0, colon));
    const auto last = colon == std::string_view::npos ? first : readBit(range.substr(colon + 1));
    if (!first || !last)
        return std::nullopt;
    return Bits{std::string(text.substr(0, open)), *first, *last};
}

/// Names of interfaces may hold ":", so each one is tried as the divider.
std::optional<Question> findInterface(HardBlockData& block, const std::string& port) {
    for (std::size_t colon = port.find(':'); colon != std::string::npos;
         colon = port.find(':', colon + 1))
        if (const Interface* interface = block.getInterfaceByName(port.substr(0, colon)))
            return Question{interface, port.substr(colon + 1)};
    return std::nullopt;
}

/// Puts the pins of a run of bits together again.
class Collector {
public:
    explicit Collector(std::int64_t step) : m_step(step) {}

    void add(const Bits& port, const std::string& pin) {
        const auto bits = readBits(pin);
        if (!m_mappings.empty() && joins(port, pin, bits))
            return;
        m_mappings.push_back({port, pin, bits});
    }
    std::vector<PortAnswer::Mapping> mappings() const {
        std::vector<PortAnswer::Mapping> texts;
        for (const auto& mapping : m_mappings)
            texts.push_back(
                {mapping.port.text(), mapping.bits && mapping.bits->first != mapping.bits->last
                                          ? mapping.bits->text()
                                          : mapping.pin});
        return texts;
    }

private:
    struct Mapping {
        Bits port;
        std::string pin;
        std::optional<Bits> bits;
    };

    /// Bits without a pin are one run, and so are those whose pins follow one another as they do.
    bool joins(const Bits& port, const std::string& pin, const std::optional<Bits>& bits) {
        Mapping& last = m_mappings.back();
        const bool isEmpty = pin.empty() && last.pin.empty();
        if (!isEmpty && !(bits && last.bits && last.bits->append(*bits, m_step)))
            return false;
        return last.port.append(port, m_step);
    }

    std::int64_t m_step;
    std::vector<Mapping> m_mappings;
};

PortAnswer askForBits(const Interface& interface, const Bits& asked) {
    const std::int64_t step = asked.first >= asked.last ? -1 : 1;
    if ((asked.last - asked.first) * step >= kMostBits)
        throw InputError("--port asks for more than 65536 bits");
    Collector collector(step);
    for (std::int64_t bit = asked.first; bit != asked.last + step; bit += step) {
        const Bits one{asked.name, bit, bit};
        collector.add(one, interface.getPortMapByName(one.text()));
    }
    return {collector.mappings(), ""};
}

} // namespace

PortAnswer findPins(HardBlockData& block, const std::string& port) {
    const std::size_t colon = port.find(':');
    if (colon == std::string::npos || port.find('[') < colon)
        throw InputError("--port " + port + ": expected INTERFACE:PORT");
    const auto question = findInterface(block, port);
    if (!question)
        return {{}, block.getName() + " has no interface \"" + port.substr(0, colon) + "\""};
    const auto bits = readBits(question->port);
    PortAnswer answer;
    if (bits && bits->first != bits->last)
        answer = askForBits(*question->interface, *bits);
    else
        answer.mappings.push_back(
            {question->port, question->interface->getPortMapByName(question->port)});
    for (const PortAnswer::Mapping& mapping : answer.mappings)
        if (mapping.pin.empty())
            answer.problem.append(answer.problem.empty() ? "no pin is mapped to " : ", ")
                .append(port.substr(0, port.size() - question->port.size()))
                .append(mapping.port);
    if (!answer.problem.empty())
        answer.problem += " of " + block.getName();
    return answer;
}

std::string portTable(const PortAnswer& answer) {
    if (answer.mappings.size() == 1)
        return printable(answer.mappings.front().pin) + "\n";
    Table table({{"Port"}, {"Pin"}});
    for (const PortAnswer::Mapping& mapping : answer.mappings)
        table.addRow({mapping.port, mapping.pin});
    TextStream out;
    table.print(out);
    return out.str();
}

std::string portJson(const std::string& port, const PortAnswer& answer) {
    JsonWriter json;
    json.beginObject();
    json.member("port", port);
    std::string all;
    for (const PortAnswer::Mapping& mapping : answer.mappings)
        all.append(all.empty() || mapping.pin.empty() ? "" : ", ").append(mapping.pin);
    json.member("mapped", all);
    if (answer.mappings.size() > 1) {
        json.beginArray("parts");
        for (const PortAnswer::Mapping& mapping : answer.mappings) {
            json.beginObject();
            json.member("port", mapping.port);
            json.member("mapped", mapping.pin);
            json.endObject();
        }
        json.endArray();
    }
    json.endObject();
    return json.text();
}

} // namespace tq
