// Block model files: any text is read whole, and then comes back as it is, or refused.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        std::string text(data, data + size);
        const auto block = habm::bmj::fromText(text);
        std::string written = habm::bmj::toText(*block);
        const std::string copy = written;
        const auto again = habm::bmj::fromText(written);
        const bool isSame = habm::bmj::toText(*again) == copy &&
                            habm::bmj::toText(*HABMBlock::cloneTopBlock(*again)) == copy;
        if (!isSame || !HABMBlockCheck::run(*again).faults.empty())
            std::abort();
    } catch (const habm::bmj::Fault&) {
        return 0;
    }
    return 0;
}
