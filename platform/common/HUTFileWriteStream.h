// A stream that writes a file and tells whether all of it was written.
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "tq_export.h"

/// An output stream onto a file, byte for byte as written. The file is replaced in one step when
/// the stream is closed; until then the old one stays. The stream fails at once where the file
/// can't be written; a FIFO isn't opened, as that would wait for a reader.
///
///     HUTFileWriteStream stream(path, 2);
///     stream << text;
///     if (!stream.close())
///         complain(path);
class TQ_EXPORT HUTFileWriteStream : public std::ostream {
public:
    /// Mode 2 replaces a file; any other number opens nothing and fails.
    HUTFileWriteStream(const std::string& path, int mode);
    /// Leaves the old file as it is unless the stream was closed.
    ~HUTFileWriteStream() override;
    HUTFileWriteStream(const HUTFileWriteStream&) = delete;
    HUTFileWriteStream& operator=(const HUTFileWriteStream&) = delete;

    /// Puts the file in place. True if everything since the opening was written and is on the disk;
    /// else the old file stays and the stream's fail bit is set. A second call is false.
    bool close();

private:
    class Buffer;
    std::unique_ptr<Buffer> m_buffer; ///< null in another mode
};
