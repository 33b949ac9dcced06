#include "xp_autodetect.h"

#include <boost/iostreams/filter/gzip.hpp>

#include <ios>

#include "basic_file.h"
#include "xp.h"

namespace isl::iostreams {

namespace {

constexpr std::streamsize kBufferBytes = 1 << 16;

} // namespace

void xp_autodetect::operator()(const std::string& path,
                               boost::iostreams::filtering_istream& stream) const {
    stream.reset();
    const basic_file file(path);
    if (!file.is_open()) {
        stream.setstate(std::ios_base::badbit);
        return;
    }
    if (xp::is_encrypted(path.c_str()))
        stream.push(boost::iostreams::gzip_decompressor(), kBufferBytes);
    stream.push(file, kBufferBytes);
}

} // namespace isl::iostreams
