// A regular file as a source of bytes for Boost.Iostreams.
#pragma once

#include <boost/iostreams/categories.hpp>

#include <ios>
#include <memory>
#include <string>

#include "tq_export.h"

namespace isl::iostreams {

/// Gives the bytes of a file as they are stored. Anything but a regular file (links are followed)
/// is refused without waiting: a folder, a FIFO, a device. Copies share the open file and its
/// position; the last one closes it.
///
///     boost::iostreams::stream<isl::iostreams::basic_file>
///     stream(isl::iostreams::basic_file(path));
class TQ_EXPORT basic_file {
public:
    /// What Boost.Iostreams asks of a source.
    using char_type = char;
    struct category : boost::iostreams::source_tag, boost::iostreams::closable_tag {};

    /// Opens the file; `is_open` tells whether that went well.
    explicit basic_file(const std::string& path);

    /// False for what can't be opened or isn't a regular file, and after `close`.
    [[nodiscard]] bool is_open() const;
    /// The count of bytes read, -1 at the end. Raises `std::ios_base::failure` where reading fails
    /// or nothing is open.
    std::streamsize read(char* buffer, std::streamsize count);
    void close();

private:
    struct Descriptor;
    std::shared_ptr<Descriptor> m_descriptor;
};

} // namespace isl::iostreams
