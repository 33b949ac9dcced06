#include "input/InputFile.h"

#include <boost/iostreams/filtering_stream.hpp>

#include <algorithm>
#include <utility>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "xp_autodetect.h"

namespace input {

namespace {

constexpr const char* kLimitParameter = "general.maxInputMiB";
constexpr int kDefaultMebibytes = 256;
constexpr int kMostMebibytes = 4095;

int limitInMebibytes() {
    try {
        return HPAParamMgr::getParamMgr()->getValueAsInt(kLimitParameter);
    } catch (const HEXError&) {
        return kDefaultMebibytes;
    }
}

base::FileContent withParameter(base::FileContent content) {
    if (content.outcome == base::ReadOutcome::TooLarge)
        content.reason.append(", the limit set by the parameter ").append(kLimitParameter);
    return content;
}

} // namespace

std::uint64_t limit() {
    return static_cast<std::uint64_t>(std::clamp(limitInMebibytes(), 1, kMostMebibytes)) << 20U;
}

base::FileContent readFile(const std::string& path) {
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(path, stream);
    if (stream.good())
        return readStream(stream);
    // The stream can't tell why it has failed to open.
    if (auto obstacle = base::findObstacle(path))
        return *std::move(obstacle);
    return {base::ReadOutcome::Unopened, "", "it can't be opened"};
}

base::FileContent readPlainFile(const std::string& path) {
    return withParameter(base::readFile(path, limit()));
}

base::FileContent readStream(std::istream& stream) {
    return withParameter(base::readStream(stream, limit()));
}

} // namespace input
