// A folder for the files of one test, benchmark or fuzzer.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace support {

/// A folder of its own, removed with all it holds.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tq_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        m_path = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] std::string file(std::string_view name) const { return (m_path / name).string(); }

    /// Writes a file, making its folders, and gives its path.
    std::string write(std::string_view name, std::string_view content) const {
        const std::filesystem::path path = m_path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream stream(path, std::ios::binary);
        stream << content;
        stream.close();
        if (!stream)
            throw std::runtime_error("can't write " + path.string());
        return path.string();
    }

private:
    std::filesystem::path m_path;
};

} // namespace support
