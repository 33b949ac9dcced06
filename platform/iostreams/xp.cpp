#include "xp.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace isl::iostreams::xp {

bool is_encrypted(const char* path) {
    struct stat status {};
    if (path == nullptr || stat(path, &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    // No stream: it would need memory, without which a protected file would look like a plain one.
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return false;
    std::array<char, 2> magic{};
    const ssize_t got = pread(file, magic.data(), magic.size(), 0);
    close(file);
    return got == 2 && magic[0] == '\x1f' && magic[1] == '\x8b';
}

} // namespace isl::iostreams::xp
