// Runs a fuzz target over the files, and the files of the folders, that are named.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void runFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)),
                            std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        if (!std::filesystem::is_directory(path)) {
            runFile(path);
            ++count;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            runFile(entry.path());
            ++count;
        }
    }
    std::cout << count << " inputs run\n";
    return count > 0 ? 0 : 1;
}
