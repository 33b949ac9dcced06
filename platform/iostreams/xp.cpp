#include "xp.h"

#include <sys/stat.h>

#include <array>
#include <fstream>

namespace isl::iostreams::xp {

bool is_encrypted(const char* path) {
    struct stat status {};
    if (path == nullptr || stat(path, &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    std::ifstream stream(path, std::ios::binary);
    std::array<char, 2> magic{};
    return stream.read(magic.data(), magic.size()) && magic[0] == '\x1f' && magic[1] == '\x8b';
}

} // namespace isl::iostreams::xp
