// Makes handoffs of small metadata and reads them back with an independent XML parser.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/support.h"

namespace handoff_support {

using Texts = std::map<std::string, std::string>;

/// An element as Xerces reads it.
struct Element {
    std::string path; ///< "/LOMSYSTEM/MODULES" …
    Texts attributes;
};
using Document = std::vector<Element>; ///< in document order

Document readXml(const std::string& path);

/// For every element whose path ends so: the values of the given attributes, joined by blanks.
std::vector<std::string> values(const Document& document, const std::string& pathEnd,
                                const std::vector<std::string>& keys);

/// The text of a connectivity file with the given members of "slaves" and "masters".
std::string connectivity(const std::string& slaves, const std::string& masters = "");

/// What one call of the service is given.
struct Job {
    support::TempDir folder;
    Texts design;
    Texts system{{"ps_core_name", "core"}};

    /// The document that comes out.
    Document run(const std::string& content);
    Document run(const std::string& slaves, const std::string& masters) {
        return run(connectivity(slaves, masters));
    }
};

} // namespace handoff_support
