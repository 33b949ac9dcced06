#include "handoff/HWHGenerator.h"

#include "HPAParamMgr.h"
#include "HUTEnv.h"
#include "HUTFile.h"
#include "handoff/HWHDesignParams.h"
#include "handoff/HWHDocumentWriter.h"
#include "handoff/HWHModelBuilder.h"
#include "handoff/HWHVocabulary.h"

namespace {

/// File name of a handoff for which the caller names none.
constexpr const char* kDefaultFileName = "ksb.hwh";

} // namespace

HWHGenerator::HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo)
    : m_designParams(designParams), m_systemInfo(systemInfo), m_systemInfoCopy(systemInfo) {}

void HWHGenerator::generate(const std::string& connectivityFile, const std::string& outputFile) {
    try {
        write(read(connectivityFile), outputFile);
    } catch (...) {
        // Keys were only added; the caller's own entries stay where they are.
        std::erase_if(m_systemInfo,
                      [&](const auto& entry) { return !m_systemInfoCopy.contains(entry.first); });
        throw;
    }
}

/// A file that lacks sections is no failure: the document shows what there is.
hwh::ConnectivityFile HWHGenerator::read(const std::string& connectivityFile) {
    if (HPAParamMgr::getParamMgr()->getValueIfExistAsBool("project.allowPSSubCoreSplit", false))
        return hwh::ConnectivityFile(connectivityFile, true, m_systemInfo);
    return hwh::ConnectivityFile(connectivityFile);
}

void HWHGenerator::write(const hwh::ConnectivityFile& file, const std::string& outputFile) {
    file.reportEnd();
    hwh::DesignParams design(m_designParams);
    const hwh::Model model = hwh::buildModel(file, design, m_systemInfo[hwh::fact::kCoreName]);
    const auto facts = hwh::DocumentFacts::collect(m_systemInfo);
    const std::string path = !outputFile.empty()
                                 ? outputFile
                                 : HUTEnv::getPWD() + HUTFile::getDirSeparator() + kDefaultFileName;
    hwh::writeDocument(model, facts, path);
}
