// Scripts of sequence commands as hbs cdo reads them: any text is refused or reported.

#include <cstdlib>

#include "fuzz/Expect.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/ProgramRun.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile script;
    script.fill(data, size);
    const std::string json = fuzz::runProgram({"cdo", script.path(), "--json"});
    if (!json.empty()) // refused
        fuzz::expectJson(json);
    for (const char letter : fuzz::runProgram({"cdo", script.path()}))
        if (static_cast<unsigned char>(letter) < ' ' && letter != '\n')
            std::abort(); // it would reach the terminal
    return 0;
}
