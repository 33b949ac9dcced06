#include "HXMLWStream.h"

#include "HEXError.h"
#include "base/FileReplacement.h"

HXMLWStream::HXMLWStream(const std::string& path)
    : m_path(path), m_file(std::make_unique<base::FileReplacement>(path)) {
    m_file->write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

HXMLWStream::~HXMLWStream() = default;

void HXMLWStream::flush() {
    m_file->write(m_text.bytes());
    m_text.clearBytes();
}

void HXMLWStream::finish() {
    flush();
    if (!m_file->commit())
        throw HEXError("can't write '" + m_path + "': " + m_file->reason());
}
