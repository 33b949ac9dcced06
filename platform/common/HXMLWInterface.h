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
    /// The file is replaced in one step, once the whole text is on the disk. A link is followed,
    /// and the access rights of the old file are kept.
    /// Raises `HEXError` with the path and the cause for a null root, a folder that is missing or
    /// closed, a full disk, and for a path that leads to something other than a regular file. The
    /// old file then stays as it was.
    static void writeToFile(std::shared_ptr<HXMLWElement> root, std::string path);
};
