#include "handoff/HWHDecision.h"

#include "HPAParamMgr.h"
#include "handoff/HWHMeaningCheck.h"
#include "handoff/HWHModelBuilder.h"
#include "handoff/HWHShapeCheck.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

ConnectivityFile read(const std::string& fileName, HWHTextMap& systemInfo,
                      const tq::DiagnosticSink& sink) {
    if (HPAParamMgr::getParamMgr()->getValueIfExistAsBool("project.allowPSSubCoreSplit", false))
        return ConnectivityFile(fileName, true, systemInfo, sink);
    return ConnectivityFile(fileName, sink);
}

/// Sends the exit line. A file that lacks sections isn't a failure: the document shows what there
/// is.
const ConnectivityFile& reportEndOf(const ConnectivityFile& file) {
    file.reportEnd();
    return file;
}

} // namespace

Decision::Decision(const HWHTextMap& designParams, HWHTextMap& systemInfo,
                   const std::string& connectivityFile, const tq::DiagnosticSink& sink)
    : file(read(connectivityFile, systemInfo, sink)), design(designParams),
      model(buildModel(reportEndOf(file), design, systemInfo[fact::kCoreName])) {
    if (!sink)
        return;
    checkShape(file, sink);
    checkMeaning(file, model, design, designParams, sink);
}

} // namespace hwh
