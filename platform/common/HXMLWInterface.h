// Start and end of an XML document: the root element, and the file.
#pragma once

#include <memory>
#include <string>

#include "HXMLWElement.h"
#include "tq_export.h"

/// See `HXMLWElement` for what happens in between.
class TQ_EXPORT HXMLWInterface {
public:
    /// A new document's root element, or null for an empty or null name.
    [[nodiscard]] static std::shared_ptr<HXMLWElement> createRoot(const char* name);

    /// Writes the element with all below it as an XML document in UTF-8: a declaration, then one
    /// line for each element, indented by tabs.
    ///
    /// The file is written whole or not at all: the text goes to a new file in the same folder,
    /// which takes the place of `path` at the end. A link is followed, and the access rights of a
    /// file that stood there are kept.
    /// Raises `HEXError` with the path and the cause for a null root, a folder that is missing or
    /// closed, a full disk, and for a path at which something other than a regular file stands;
    /// what stood there before then stays.
    static void writeToFile(std::shared_ptr<HXMLWElement> root, std::string path);
};
