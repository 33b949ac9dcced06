#include "handoff/job_generator.h"

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string_view>
#include <vector>

namespace handoff_support {

namespace {

using Texts = std::map<std::string, std::string>;

class Generator {
public:
    explicit Generator(unsigned seed) : m_random(seed) {
        m_size = oneIn(8) ? 30 : 1 + below(8);
        m_strange = oneIn(3);
        m_core = oneIn(3) ? "tovak" : pick({"core", "core", ""});
    }

    GeneratedJob job() {
        GeneratedJob job;
        job.design = design();
        job.system = system();
        job.splitByCells = oneIn(3);
        job.connectivity = connectivity(job.splitByCells && oneIn(2));
        if (oneIn(12))
            damage(job.connectivity);
        return job;
    }

private:
    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(m_random() % limit);
    }
    bool oneIn(std::uint32_t count) { return below(count) == 0; }
    std::string pick(std::initializer_list<std::string_view> texts) {
        return std::string(texts.begin()[below(static_cast<std::uint32_t>(texts.size()))]);
    }
    std::string number(std::uint32_t limit) { return std::to_string(below(limit)); }

    static std::string quoted(const std::string& text) { return "\"" + text + "\""; }

    /// JSON escapes included.
    std::string strangeText() {
        return pick({"",
                     " ",
                     "a,b",
                     "= x",
                     "&<>'\\\"",
                     "\\u0000",
                     "x\\u0000y",
                     "\\u0009\\n\\r",
                     "\\u00e9\\ud83d\\ude00",
                     "\xC3\xA9",
                     "\xFF\xED\xA0\x80",
                     "_",
                     "a_b",
                     "\x7F",
                     "\\uffff",
                     "tab\\tend",
                     "1,\\u0000",
                     "[x:1]",
                     "\\/",
                     "a text of some length"});
    }
    std::string text(const std::string& usual) { return oneIn(40) ? strangeText() : usual; }

    /// A text in quotes, now and then a value of another type.
    std::string value(const std::string& usual) {
        if (m_strange && oneIn(12))
            return pick({"1", "-2.5e3", "true", "false", "null", "[]", "{}", "[\"x\"]",
                         "{\"x\": \"y\"}", "0.1e-4", "18446744073709551616"});
        return quoted(text(usual));
    }

    std::string instanceName() {
        return text(pick({"s", "m", "s_EXT", "s_INT", "x_EXT_INT", "i", "core_top", "_INT"}) +
                    (oneIn(3) ? "" : number(m_size)));
    }
    std::string sdkName() {
        return text(pick({"s", "m", "A", "M_", "x_y", ""}) + (oneIn(4) ? "" : number(m_size)));
    }
    std::string portName() {
        return text(pick({"p", "q", "y_p", "_", "clk"}) + (oneIn(3) ? "" : number(m_size)));
    }
    std::string farInstance() {
        return oneIn(4) ? pick({"core_top", "yrel_top", "tovak_top", "_top"})
                        : (oneIn(5) ? instanceName() : sdkName());
    }
    std::string designName() {
        return pick({"D", "D_E", "D_E_F", "K", "K_CLK", "EN", ""}) +
               (oneIn(2) ? "" : "_" + pick({"FREQMHZ", "CTRL_ACT_FREQMHZ", "A", "B", "E"})) +
               (oneIn(4) ? number(4) : "");
    }

    template <class Item>
    std::string list(std::uint32_t most, const char* open, const char* close, Item&& item) {
        std::string result = open;
        for (std::uint32_t count = below(most + 1); count > 0; --count) {
            result += item();
            if (count > 1)
                result += pick({",", ", ", ",\n  "});
        }
        return result + close;
    }
    template <class Item>
    std::string array(std::uint32_t most, Item&& item) {
        if (m_strange && oneIn(20))
            return pick({"null", "{}", "\"x\"", "7"});
        return list(most, "[", "]", item);
    }
    /// An array of which now and then an element isn't what belongs there.
    template <class Item>
    std::string arrayOfObjects(std::uint32_t most, Item&& item) {
        return array(most, [&] { return m_strange && oneIn(15) ? value("x") : item(); });
    }
    std::string member(const std::string& name, const std::string& content) {
        return quoted(name) + pick({":", ": "}) + content;
    }

    std::string connection() {
        std::string result = "{" + member("INSTANCE", value(farInstance()));
        if (!oneIn(20))
            result += "," + member("PORT", value(portName()));
        if (oneIn(20))
            result += "," + member("PORT", value("second"));
        return result + "}";
    }
    std::string port() {
        return list(7, "{", "}", [&]() -> std::string {
            switch (below(6)) {
            case 0:
            case 1:
                return member("NAME", value(portName()));
            case 2:
                return member("DIR", value(pick({"I", "O", "IO"})));
            case 3:
                return member("SIG_IS",
                              value(pick({"CLK", "INTR", "INTERRUPT", "clk", "DATA", ""})));
            case 4:
                return member(pick({"IRQID", "WIDTH"}), value(number(99)));
            default:
                return member("CONNECTIONS", arrayOfObjects(3, [&] { return connection(); }));
            }
        });
    }
    std::string parameters() {
        return list(6, "{", "}", [&] {
            return member(text("P" + number(8)), value(oneIn(3) ? number(99) : designName()));
        });
    }
    std::string excludedName() {
        const std::string name = oneIn(2) ? sdkName() : instanceName();
        return value(oneIn(3) ? name + ":" + number(3) : name);
    }
    std::string excludedInterfaces() {
        return arrayOfObjects(2, [&] {
            return list(3, "{", "}", [&] {
                return member("I" + number(3), list(3, "{", "}", [&] {
                                  if (oneIn(2))
                                      return member("EN_PARAM", value(designName()));
                                  return member("APERTURE",
                                                array(3, [&] { return value("0x" + number(9)); }));
                              }));
            });
        });
    }
    std::string scalar() {
        const std::string name =
            pick({"ENPARAM", "METAPARAM", "CLASSIFICATION", "IP_TYPE", "MODTYPE", "MODCLASS",
                  "MULTISOCKETSMP", "SLR_NUMBER", "BASE_ADDR", "HIGH_ADDR", "MEMTYPE", "IS_DATA",
                  "IS_INSTRUCTION", "isMasterOrSlave", "OTHER", "SDKNAMES", ""});
        if (name == "ENPARAM" || name == "METAPARAM")
            return member(name, value(designName()));
        if (name == "CLASSIFICATION")
            return member(name, value(oneIn(3) ? "interface" : "INTERFACE"));
        if (name == "isMasterOrSlave")
            return member(name, value(pick({"master", "slave", "x"})));
        return member(name, value(name == "SLR_NUMBER" ? number(3) : "v" + number(5)));
    }
    std::string instance() {
        return list(12, "{", "}", [&] {
            switch (below(12)) {
            case 0:
            case 1:
                return member("SDKNAME", value(sdkName()));
            case 2:
            case 3:
                return member("PORTS", arrayOfObjects(m_size, [&] { return port(); }));
            case 4:
                return member("PARAMETERS", m_strange && oneIn(9) ? value("x") : parameters());
            case 5:
                return member("excluded_slaves", array(4, [&] { return excludedName(); }));
            case 6:
                return member("EXCLUDED_INTERFACES", excludedInterfaces());
            default:
                return scalar();
            }
        });
    }
    std::string instances() {
        return arrayOfObjects(m_size, [&] {
            return list(2, "{", "}", [&] {
                return member(instanceName(), m_strange && oneIn(15) ? value("x") : instance());
            });
        });
    }
    std::string externalAddressing() {
        return arrayOfObjects(2, [&] {
            return list(2, "{", "}", [&] {
                return member(
                    "e" + number(2), list(4, "{", "}", [&] {
                        if (oneIn(2))
                            return member(pick({"ENPARAM", "VLNV", "MODE", "OTHER"}), value("x"));
                        return member("ADDRESS_SPACE", arrayOfObjects(2, [&] {
                                          return list(2, "{", "}", [&] {
                                              return member("sp" + number(2),
                                                            oneIn(9) ? value("x") : parameters());
                                          });
                                      }));
                    }));
            });
        });
    }
    std::string working() {
        return list(5, "{", "}", [&] {
            if (oneIn(9))
                return member("external_addressing", externalAddressing());
            return member(oneIn(2) ? "slaves" : "masters", instances());
        });
    }
    std::string usualWorking() {
        std::string result = "{" + member("slaves", instances());
        result += "," + member("masters", instances());
        if (oneIn(2))
            result += "," + member("external_addressing", externalAddressing());
        return result + "}";
    }
    std::string connectivity(bool split) {
        const std::string content = oneIn(8) ? working() : usualWorking();
        std::string metadata = split ? "{" + member("a_b", content) + "}" : content;
        std::string result = "{" + member("metadata", metadata);
        if (oneIn(9))
            result += "," + member("metadata", "{\"slaves\":[],\"masters\":[]}");
        return oneIn(30) ? pick({"[]", "{}", " 7 ", "\"x\"", "{\"metadata\": null}"})
                         : result + "}" + pick({"", "\n", "  "});
    }

    void damage(std::string& text) {
        const auto at = text.empty() ? 0 : below(static_cast<std::uint32_t>(text.size()));
        if (oneIn(2))
            text.resize(at);
        else
            text.insert(at, pick({",", "}", "[", "\"", "\\", "x", "\x01", ":"}));
    }

    std::string designValue() {
        if (oneIn(2))
            return pick({"0", "1", "00", "400", "33.3333339", "5000", "-1", "x", "", "a,b", "nan",
                         "1e300", "2,5"}) +
                   (oneIn(30) ? std::string(1, '\0') : "");
        std::string words;
        for (std::uint32_t count = below(7); count > 0; --count)
            words += pick({"FREQMHZ", "CTRL_ACT_FREQMHZ", "A", "B", "E", "E_F", "CLK", "0", "1",
                           "12.5", "D_E"}) +
                     pick({" ", " ", " ", "  ", "\t"});
        return oneIn(3) ? words : "{" + words + "}";
    }
    Texts design() {
        Texts design;
        for (std::uint32_t count = below(14); count > 0; --count)
            design[designName()] = designValue();
        return design;
    }
    Texts system() {
        Texts system;
        if (!m_core.empty() || oneIn(2))
            system["ps_core_name"] = m_core;
        for (const char* name : {"family", "package", "speedgrade", "SLR_ID"})
            if (oneIn(2))
                system[name] = pick({"x", "a<b", "", "-2"});
        if (!oneIn(4))
            system["device"] = pick({"qmzt4401", "qmzt4402", "other"});
        if (!oneIn(4))
            system["cell_name"] = pick({"x_a_b", "a_b", "x", "", "a"});
        return system;
    }

    std::mt19937 m_random;
    std::uint32_t m_size = 0;
    bool m_strange = false; ///< values of wrong types occur
    std::string m_core;
};

} // namespace

GeneratedJob generateJob(unsigned seed) {
    return Generator(seed).job();
}

} // namespace handoff_support
