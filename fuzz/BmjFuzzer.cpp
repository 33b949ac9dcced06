// Block model files: any text is read whole, and then comes back as it is, or refused.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"

namespace {

std::string textOf(const HABMBlock& block) {
    std::string text;
    (void)habm::bmj::write(block,
                           [&](std::string_view piece) { return !text.append(piece).empty(); });
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        std::string text(data, data + size);
        const auto block = habm::bmj::fromText(text);
        std::string written = textOf(*block);
        const std::string copy = written;
        const auto again = habm::bmj::fromText(written);
        const bool isSame =
            textOf(*again) == copy && textOf(*HABMBlock::cloneTopBlock(*again)) == copy;
        if (!isSame || !HABMBlockCheck::run(*again).faults.empty())
            std::abort();
    } catch (const habm::bmj::Fault&) {
        return 0;
    }
    return 0;
}
