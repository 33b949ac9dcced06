// Typed addresses and values: any text gives a number or a failed command.

#include <cstddef>
#include <cstdint>
#include <string>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    for (const bool address : {true, false}) {
        try {
            if (address)
                (void)HBSCdoCommandParse::parseAddress(text);
            else
                (void)HBSCdoCommandParse::parseValue(text);
        } catch (const HTCErrors::command_failed&) { // the one way to fail
        }
    }
    return 0;
}
