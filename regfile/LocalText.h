// Texts that Xerces converted to the local code page, released on every path.
#pragma once

#include <xercesc/util/XMLString.hpp>

#include <memory>

namespace hbs::regfile {

struct LocalTextReleaser {
    void operator()(char* text) const { xercesc::XMLString::release(&text); }
};

using LocalText = std::unique_ptr<char, LocalTextReleaser>;

} // namespace hbs::regfile
