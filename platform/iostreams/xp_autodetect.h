// Opens a file whichever way it is stored, plain or protected.
#pragma once

#include <boost/iostreams/filtering_stream.hpp>

#include <string>

#include "tq_export.h"

namespace isl::iostreams {

/// Sets a stream up to deliver the plain content of a file:
///
///     boost::iostreams::filtering_istream stream;
///     isl::iostreams::xp_autodetect()(path, stream);
///     if (stream.good())
///         read(stream);
///
/// Bytes are never translated. The stream is bad at once where the file can't be opened or isn't a
/// regular file. A protected file that is cut short or damaged turns the stream bad when the damage
/// is reached, at the latest at its end (its checksum is there): what was read is good only if
/// the stream isn't bad after the end was seen.
class TQ_EXPORT xp_autodetect {
public:
    /// Pushes the filters that the file needs, and the file, onto an empty stream.
    void operator()(const std::string& path, boost::iostreams::filtering_istream& stream) const;
};

} // namespace isl::iostreams
