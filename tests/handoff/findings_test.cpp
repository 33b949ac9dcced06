// The findings on connectivity files: none on good files of many kinds, and each of the slips that
// are planted in them.

#include <gmock/gmock.h>

#include <functional>
#include <random>

#include "HPAParamMgr.h"
#include "base/JsonDocument.h"
#include "base/RapidJson.h"
#include "handoff/HBSHandoff.h"
#include "support/support.h"

namespace {

using Texts = HBSHandoff::Texts;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A job that can be changed before it is read.
class Job {
public:
    JsonDocument json{rapidjson::kObjectType};
    Texts design;
    Texts system;

    JsonValue text(const std::string& bytes) {
        return JsonValue(bytes.c_str(), json.GetAllocator());
    }
    JsonValue object(const std::string& content) { return parsed(content); }
    JsonValue parsed(const std::string& content) {
        JsonDocument document;
        EXPECT_FALSE(document.Parse(content).HasParseError()) << content;
        return {document, json.GetAllocator()};
    }
    void add(JsonValue& object, const std::string& name, JsonValue value) {
        object.AddMember(text(name), value, json.GetAllocator());
    }
    void add(JsonValue& object, const std::string& name, const std::string& value) {
        add(object, name, text(value));
    }
    void push(JsonValue& array, JsonValue value) { array.PushBack(value, json.GetAllocator()); }
    void rename(JsonValue& object, const char* from, const std::string& to) {
        object.FindMember(from)->name = text(to);
    }

    JsonValue& working() {
        JsonValue& metadata = json["metadata"];
        return metadata.HasMember("a_b") ? metadata["a_b"] : metadata;
    }
    /// An instance by its name.
    JsonValue& instance(const char* name) {
        for (const char* list : {"slaves", "masters"})
            for (JsonValue& element : working()[list].GetArray())
                if (element.HasMember(name))
                    return element[name];
        ADD_FAILURE() << name;
        return json;
    }
    JsonValue& port(const char* name, unsigned number = 0) {
        return instance(name)["PORTS"][number];
    }
    JsonValue& connection(const char* name) { return port(name)["CONNECTIONS"][0U]; }

    std::vector<tq::Diagnostic> findings() {
        HPAParamMgr::getParamMgr()->setValue(
            "project.allowPSSubCoreSplit",
            json.HasMember("metadata") && json["metadata"].HasMember("a_b") ? "true" : "false");
        rapidjson::StringBuffer buffer;
        rapidjson::PrettyWriter<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>,
                                JsonAllocator>
            writer(buffer);
        json.Accept(writer);
        const std::string file = m_folder.write("c.json", buffer.GetString());
        tq::DiagnosticList list;
        const HBSHandoff handoff(design, system, file, list.sink());
        HPAParamMgr::getParamMgr()->unsetValue("project.allowPSSubCoreSplit");
        return list.all();
    }

private:
    support::TempDir m_folder;
};

/// A good job: two processors, a memory, a pair of an inside and an outside, "dev_0" to "dev_<n>"
/// with interrupts to the first processor, and a device that is switched off.
class GoodJob {
public:
    explicit GoodJob(unsigned seed) : m_random(seed) {}

    void fill(Job& job) {
        const bool hasDies = oneIn(3);
        const bool isSplit = hasDies && oneIn(2);
        const std::string core = hasDies ? "tovak" : oneIn(2) ? "core" : "";
        m_top = core.empty() ? "yrel_top" : core + "_top";
        m_die = hasDies ? ":1" : "";
        if (!core.empty())
            job.system["ps_core_name"] = core;
        job.system["device"] = isSplit ? "qmzt4401" : "other";
        job.system["cell_name"] = "x_a_b";
        job.design = {{"D_CLK_FREQMHZ", "1299.987"},
                      {"D_DDR", "{CTRL_ACT_FREQMHZ 1599.975 RANKS 2 ENABLE 1}"},
                      {"D_MODE", "fast"},
                      {"D_OFF", "0"},
                      {"D_ON", "1"}};
        m_devices = 2 + below(5);
        JsonValue working = job.parsed(R"({"slaves": [)" + slaves() + R"(], "masters": [)" +
                                       masters() + "]" + externalAddressing() + "}");
        JsonValue metadata(rapidjson::kObjectType);
        if (isSplit)
            job.add(metadata, "a_b", std::move(working));
        job.add(job.json, "metadata", isSplit ? std::move(metadata) : std::move(working));
    }

private:
    unsigned below(unsigned count) { return static_cast<unsigned>(m_random() % count); }
    bool oneIn(unsigned count) { return below(count) == 0; }

    static std::string hex(unsigned number) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "0x%X", number);
        return digits;
    }
    /// Ranges follow one another; some touch.
    void moveOn() { m_base += oneIn(2) ? 0x1000U : 0x11000U; }

    std::string slave(const std::string& name, const std::string& sdkName,
                      const std::string& more) {
        return R"({")" + name + R"(": {"SDKNAME": ")" + sdkName +
               R"(", "SLR_NUMBER": "1", "BASE_ADDR": ")" + hex(m_base) + R"(", "HIGH_ADDR": ")" +
               hex(m_base + 0xFFF) +
               R"(", "MEMTYPE": "REGISTER", "IS_DATA": "TRUE", "WIDTH": "32")" + more + "}}";
    }
    static std::string port(const std::string& name, const std::string& kind,
                            const std::string& ends) {
        return R"({"NAME": ")" + name + R"(", "DIR": "I", "SIG_IS": ")" + kind +
               R"(", "IRQID": "7", "CONNECTIONS": [)" + ends + "]}";
    }
    static std::string end(const std::string& instance, const std::string& port) {
        return R"({"INSTANCE": ")" + instance + R"(", "PORT": ")" + port + R"("})";
    }
    std::string device(const std::string& number) {
        constexpr const char* kModes[] = {"rgmii", "1", "D_MODE", "D_DDR_RANKS", "x_y", ""};
        const std::string mode = kModes[below(6)];
        moveOn();
        return slave("dev_" + number, "dev" + number,
                     R"(, "ENPARAM": ")" + std::string(oneIn(2) ? "D_ON" : "D_DDR_ENABLE") +
                         R"(", "PARAMETERS": {"MODE": ")" + mode +
                         R"(", "CLOCK": "D_CLK_FREQMHZ"}, "PORTS": [)" +
                         port("irq", "INTERRUPT", end("cpu0", "irq")) + "," +
                         port("pad", "", end(m_top, "pad" + number)) + "]");
    }
    std::string slaves() {
        std::string list =
            slave("ddr_0", "ddr", R"(, "PARAMETERS": {"HZ": "D_DDR_CTRL_ACT_FREQMHZ"})");
        moveOn();
        list += "," + slave("off_0", "off",
                            R"(, "ENPARAM": "D_OFF", "PORTS": [)" + port("p", "CLK", "") + "]");
        moveOn();
        list += "," + slave("uart_EXT", "uart", "");
        list += "," + slave("uart_INT", "uart",
                            R"(, "PORTS": [)" + port("p", "CLK", end("off", "p")) + "]");
        for (unsigned i = 0; i < m_devices; ++i)
            list += "," + device(std::to_string(i));
        return list;
    }
    std::string masters() {
        std::string ends;
        for (unsigned i = 0; i < m_devices; ++i)
            ends += (i == 0 ? "" : ",") + end("dev" + std::to_string(i), "irq");
        return R"({"cpu_0": {"SDKNAME": "cpu0", "PARAMETERS": {"HZ": "D_CLK_FREQMHZ", "NAME": "x"},
                  "excluded_slaves": ["dev_1)" +
               m_die + R"(", "off)" + m_die + R"("], "PORTS": [)" + port("irq", "INTR", ends) +
               R"(], "EXCLUDED_INTERFACES": [{"i": {"EN_PARAM": "D_I", "APERTURE": ["0x0"]}}]},
                 "cpu_1": {"SDKNAME": "cpu1"},
                 "fabric": {"SDKNAME": "fabric", "CLASSIFICATION": "INTERFACE"}})";
    }
    std::string externalAddressing() {
        return oneIn(3) ? "" : R"(, "external_addressing": [{"fabric": {"ENPARAM": "E", "VLNV": "v",
                             "MODE": "m", "ADDRESS_SPACE": [{"s": {"offset": "0x0"}}]}}])";
    }

    std::mt19937 m_random;
    std::string m_top;
    std::string m_die;
    unsigned m_base = 0x40000000;
    unsigned m_devices = 0;
};

/// What is changed, which finding comes of it, and with what the text begins where it points.
struct Slip {
    const char* id;
    const char* at;
    std::function<void(Job&)> plant;
};

JsonValue number(int value) {
    return JsonValue(value);
}

const std::vector<Slip>& slips() {
    static const std::vector<Slip> all{
        {"missing-section", "{", [](Job& j) { j.json.RemoveMember("metadata"); }},
        {"missing-section", "{", [](Job& j) { j.working().RemoveMember("masters"); }},
        {"missing-section", "5", [](Job& j) { j.working()["slaves"] = number(5); }},
        {"unknown-key", "\"slave\"", [](Job& j) { j.rename(j.working(), "slaves", "slave"); }},
        {"wrong-type", "1073741824",
         [](Job& j) { j.instance("dev_0")["BASE_ADDR"] = number(1073741824); }},
        {"wrong-type", "true", [](Job& j) { j.instance("cpu_0")["SDKNAME"].SetBool(true); }},
        {"wrong-type", "4", [](Job& j) { j.instance("dev_0")["PARAMETERS"]["MODE"] = number(4); }},
        {"wrong-type", "3", [](Job& j) { j.port("dev_0")["IRQID"] = number(3); }},
        {"wrong-type", "{", [](Job& j) { j.instance("dev_0")["PORTS"].SetObject(); }},
        {"wrong-type", "null", [](Job& j) { j.connection("dev_0")["PORT"].SetNull(); }},
        {"wrong-type", "7", [](Job& j) { j.push(j.working()["masters"], number(7)); }},
        {"wrong-type", "2",
         [](Job& j) { j.push(j.instance("cpu_0")["excluded_slaves"], number(2)); }},
        {"unknown-key", "\"BASEADDR\"",
         [](Job& j) { j.rename(j.instance("dev_0"), "BASE_ADDR", "BASEADDR"); }},
        {"unknown-key", "\"SIGIS\"", [](Job& j) { j.rename(j.port("dev_0"), "SIG_IS", "SIGIS"); }},
        {"unknown-key", "\"Instance\"",
         [](Job& j) { j.rename(j.connection("dev_0"), "INSTANCE", "Instance"); }},
        {"misplaced-key", "\"excluded_slaves\"",
         [](Job& j) { j.add(j.instance("dev_0"), "excluded_slaves", j.parsed("[]")); }},
        {"reserved-key", "\"isMasterOrSlave\"",
         [](Job& j) { j.add(j.instance("dev_0"), "isMasterOrSlave", "master"); }},
        {"duplicate-key", "\"MEMTYPE\"",
         [](Job& j) { j.add(j.instance("dev_0"), "MEMTYPE", "MEMORY"); }},
        {"duplicate-key", "\"MODE\"",
         [](Job& j) { j.add(j.instance("dev_0")["PARAMETERS"], "MODE", "1"); }},
        {"duplicate-instance", "\"dev_0\"",
         [](Job& j) {
             j.push(j.working()["slaves"], j.parsed(R"({"dev_0": {"SDKNAME": "dev0"}})"));
         }},
        {"duplicate-port", "\"irq\"",
         [](Job& j) { j.push(j.instance("dev_0")["PORTS"], j.parsed(R"({"NAME": "irq"})")); }},
        {"duplicate-connection", "\"cpu0\"",
         [](Job& j) {
             j.push(j.port("dev_0")["CONNECTIONS"],
                    j.parsed(R"({"INSTANCE": "cpu0", "PORT": "irq"})"));
         }},
        {"missing-sdkname", "\"dev_0\"",
         [](Job& j) { j.instance("dev_0").RemoveMember("SDKNAME"); }},
        {"shared-sdkname", "\"dev_1\"",
         [](Job& j) { j.instance("dev_1")["SDKNAME"] = j.text("dev0"); }},
        {"lost-contents", "\"uart_INT\"",
         [](Job& j) {
             j.instance("uart_EXT")
                 .AddMember("PORTS", j.parsed(R"([{"NAME": "x"}])"), j.json.GetAllocator());
             j.instance("uart_INT").RemoveMember("PORTS");
         }},
        {"missing-name", "{", [](Job& j) { j.port("dev_0").RemoveMember("NAME"); }},
        {"missing-end", "{", [](Job& j) { j.connection("dev_0").RemoveMember("PORT"); }},
        {"letter-case", "\"interrupt\"",
         [](Job& j) { j.port("dev_0")["SIG_IS"] = j.text("interrupt"); }},
        {"letter-case", "\"interface\"",
         [](Job& j) { j.instance("fabric")["CLASSIFICATION"] = j.text("interface"); }},
        {"unknown-enable-parameter", "\"D_OM\"",
         [](Job& j) { j.instance("dev_0")["ENPARAM"] = j.text("D_OM"); }},
        {"enable-value", "\"D_OFF\"", [](Job& j) { j.design["D_OFF"] = "false"; }},
        {"unknown-excluded-slave", "\"dev_one\"",
         [](Job& j) { j.push(j.instance("cpu_0")["excluded_slaves"], j.text("dev_one")); }},
        {"unknown-entry", "\"fabrik\"",
         [](Job& j) {
             j.working().RemoveMember("external_addressing");
             j.add(j.working(), "external_addressing", j.parsed(R"([{"fabrik": {}}])"));
         }},
        {"missing-far-port", "\"dev_0\"",
         [](Job& j) { j.connection("cpu_0")["INSTANCE"] = j.text("dev_0"); }},
        {"missing-far-port", "\"irk\"",
         [](Job& j) { j.connection("dev_0")["PORT"] = j.text("irk"); }},
        {"ambiguous-port", "\"irq\"",
         [](Job& j) {
             j.instance("dev_0")["SDKNAME"] = j.text("a");
             j.port("dev_0", 1)["NAME"] = j.text("0_irq");
             j.instance("dev_1")["SDKNAME"] = j.text("a_0");
         }},
        {"two-names", "\"dev0\"",
         [](Job& j) {
             // Two nets that have their names already are joined by a later port.
             j.add(j.instance("ddr_0"), "PORTS", j.parsed(R"([{"NAME": "s"}])"));
             j.push(j.instance("dev_0")["PORTS"], j.parsed(R"({"NAME": "s"})"));
             j.push(j.instance("uart_INT")["PORTS"],
                    j.parsed(R"({"NAME": "s", "CONNECTIONS": [{"INSTANCE": "ddr", "PORT": "s"},
                                 {"INSTANCE": "dev0", "PORT": "s"}]})"));
         }},
        {"unresolved-parameter", "\"MODE\"",
         [](Job& j) { j.instance("dev_0")["PARAMETERS"]["MODE"] = j.text("D_MODUS"); }},
        {"unreadable-frequency", "\"HZ\"", [](Job& j) { j.design["D_CLK_FREQMHZ"] = "fast"; }},
        {"unreadable-frequency", "\"HZ\"", [](Job& j) { j.design["D_CLK_FREQMHZ"] = "400 MHz"; }},
        {"frequency-overflow", "\"HZ\"", [](Job& j) { j.design["D_CLK_FREQMHZ"] = "5000"; }},
        {"unreadable-address", "\"0x4000_000G\"",
         [](Job& j) { j.instance("dev_0")["BASE_ADDR"] = j.text("0x4000_000G"); }},
        {"missing-address", "\"dev_0\"",
         [](Job& j) { j.instance("dev_0").RemoveMember("HIGH_ADDR"); }},
        {"empty-range", "\"0x1\"",
         [](Job& j) { j.instance("dev_0")["HIGH_ADDR"] = j.text("0x1"); }},
        {"overlapping-ranges", "\"0x40000000\"",
         [](Job& j) {
             j.instance("dev_0")["BASE_ADDR"] = j.text("0x40000000");
             j.instance("dev_0")["HIGH_ADDR"] = j.text("0x40000000");
         }},
    };
    return all;
}

std::vector<std::string> idsOf(const std::vector<tq::Diagnostic>& findings) {
    std::vector<std::string> ids;
    for (const auto& finding : findings)
        ids.push_back(finding.id + ": " + finding.text);
    return ids;
}

TEST(Findings, ThereAreNoneOnGoodFiles) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        Job job;
        GoodJob(seed).fill(job);
        EXPECT_THAT(idsOf(job.findings()), IsEmpty()) << "seed " << seed;
    }
}

TEST(Findings, NameEachSlipAndItsPlace) {
    for (const Slip& slip : slips())
        for (unsigned seed = 0; seed < 4; ++seed) {
            Job job;
            GoodJob(seed).fill(job);
            slip.plant(job);
            const auto findings = job.findings();
            const bool found =
                std::any_of(findings.begin(), findings.end(), [&](const tq::Diagnostic& finding) {
                    const tq::Place& place = finding.place;
                    return finding.id == slip.id && place.line > 0 &&
                           place.lineText.substr(place.column - 1 - place.lineTextOffset)
                               .starts_with(slip.at);
                });
            EXPECT_TRUE(found) << slip.id << " at " << slip.at << ", seed " << seed << '\n'
                               << testing::PrintToString(idsOf(findings));
        }
}

} // namespace
