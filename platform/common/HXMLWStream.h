// Writes an XML file as its elements come.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "HXMLWText.h"
#include "tq_export.h"

namespace base {
class FileReplacement;
}

/// A file that comes element by element, for documents too large for a tree of `HXMLWElement`. Its
/// bytes are those that `HXMLWInterface::writeToFile` writes for the same tree:
///
///     HXMLWStream stream("plan.xml");
///     stream.text().start("PLAN");
///     …
///     stream.text().end();
///     stream.finish();
///
/// The file takes its place in `finish`. Until then, and if anything fails, the file that was there
/// before stays.
class TQ_EXPORT HXMLWStream {
public:
    /// Opens the new file beside `path`; a failure is reported by `finish`.
    explicit HXMLWStream(const std::string& path);
    ~HXMLWStream();
    HXMLWStream(const HXMLWStream&) = delete;
    HXMLWStream& operator=(const HXMLWStream&) = delete;

    /// The elements under way. Their bytes are kept until the next `flush`.
    [[nodiscard]] HXMLWText& text() { return m_text; }
    /// Hands the bytes on to the file.
    void flush();
    /// Puts the file in place. Raises `HEXError` where it can't be written.
    void finish();

private:
    std::string m_path;
    HXMLWText m_text;
    std::unique_ptr<base::FileReplacement> m_file;
};
