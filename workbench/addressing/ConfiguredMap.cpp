#include "workbench/addressing/ConfiguredMap.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "HUTEnv.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/files/OutputFile.h"

namespace tq {

namespace {

const HABMBlock& definitionOf(const std::string& vlnv, const std::string& hardblocks,
                              const DiagnosticSink& sink) {
    std::string vendor, library, name, version;
    if (!HABMUtils::splitVLNV(vlnv, vendor, library, name, version))
        throw InputError("\"" + vlnv + "\" isn't of the form vendor:library:name:version");
    if (hardblocks.empty()) {
        const char* const path = std::getenv("TQ_DATA_PATH");
        throw InputError("there is no folder mirrel in " + std::string(path ? path : ""));
    }
    DiagnosticList findings;
    if (const HABMBlock* definition =
            HBSAddressing::createSubsystemDefinition(vlnv, "tq workbench", findings.sink())) {
        for (const Diagnostic& finding : findings.all())
            if (sink)
                sink(finding);
        return *definition;
    }
    if (findings.hasErrors())
        throw InputError(findings.all().front());
    const std::string file = hardblocks + "/" + name + "/" + name + ".bmj";
    throw InputError("there is no " + file + "; hbs define makes it from the hard block's tables");
}

std::string hardblockFolder() {
    const std::string area = HUTEnv::getOBLDataDir("mirrel");
    return area.empty() ? area : area + "/mirrel/hardblocks";
}

} // namespace

ConfiguredMap::ConfiguredMap(const std::string& vlnv, const std::string& configPath,
                             const DiagnosticSink& sink, AddressingConfig::Purpose purpose)
    : m_vlnv(vlnv), m_configPath(configPath), m_hardblocks(hardblockFolder()),
      m_definition(&definitionOf(vlnv, m_hardblocks, sink)),
      m_config(configPath.empty() ? AddressingConfig()
                                  : AddressingConfig::read(JsonFile::read(configPath),
                                                           *m_definition, sink, purpose)),
      m_instance(
          HBSAddressing::createSubsystemInstance(*m_definition, m_config.block(), m_decisions)) {
    m_config.addAssignsTo(*m_instance);
    m_map = std::make_unique<AddressMap>(*m_definition, *m_instance, &m_config.block());
    m_views = std::make_unique<AddressViews>(*m_map, *m_instance);
}

ConfiguredMap::~ConfiguredMap() = default;

void ConfiguredMap::check(const DiagnosticSink& sink) const {
    checkMap({*m_definition, *m_instance, *m_map, *m_views, m_config, m_hardblocks, m_vlnv}, sink);
}

void refuseDefinition(const std::string& output) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (output == kStandardOutput || !fs::is_regular_file(output, error))
        return;
    std::vector<std::string> files;
    for (fs::recursive_directory_iterator entry(hardblockFolder(), error), end;
         !error && entry != end; entry.increment(error))
        for (const char* extension : {".bmj", ".tcl", ".txt"})
            if (entry->path().extension() == extension)
                files.push_back(entry->path().string());
    refuseInput(output, files);
}

} // namespace tq
