// Streams that put texts together and take them apart.
#pragma once

#include <sstream>
#include <string>

namespace tq {

// Both raise `std::bad_alloc` where memory runs out. Without its exceptions on, a stream takes that
// for its end or cuts the text short.

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
