// A stream that writes a file and tells whether all of it was written.
#pragma once

#include <fstream>
#include <ostream>
#include <string>

#include "tq_export.h"

/// An output stream onto a file, byte for byte as written. The stream fails at once where the file
/// can't be opened; a FIFO isn't opened, as that would wait for a reader.
///
///     HUTFileWriteStream stream(path, 2);
///     stream << text;
///     if (!stream.close())
///         complain(path);
class TQ_EXPORT HUTFileWriteStream : public std::ostream {
public:
    /// Mode 2 replaces the file that stands there; any other number opens nothing and fails.
    HUTFileWriteStream(const std::string& path, int mode);
    /// Closes what is still open; a failure then goes unheard.
    ~HUTFileWriteStream() override;
    HUTFileWriteStream(const HUTFileWriteStream&) = delete;
    HUTFileWriteStream& operator=(const HUTFileWriteStream&) = delete;

    /// Writes out what is held back and closes the file. True if everything since the opening was
    /// written; else the stream's fail bit is set. A second call is false.
    bool close();

private:
    std::filebuf m_buffer;
};
