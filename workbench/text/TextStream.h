// Streams that write and parse texts.
#pragma once

#include <sstream>
#include <string>

namespace tq {

// Both raise `std::bad_alloc` where memory runs out. With its exceptions off, a stream
// would treat that as its end or cut the text short.

class TextStream : public std::ostringstream {
public:
    TextStream() { exceptions(std::ios_base::badbit); }
};

class InputTextStream : public std::istringstream {
public:
    explicit InputTextStream(const std::string& text) : std::istringstream(text) {
        exceptions(std::ios_base::badbit);
    }
};

} // namespace tq
