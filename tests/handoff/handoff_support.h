// Makes handoffs of small metadata and reads them back with an independent XML parser.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/support.h"

namespace handoff_support {

using Texts = std::map<std::string, std::string>;

/// An element of a document as Xerces reads it.
struct Element {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes; ///< in file order
    std::vector<Element> children;

    [[nodiscard]] std::string attribute(const std::string& key) const;
    /// For every element of that name below this one, in document order: the values of the given
    /// attributes, joined by blanks.
    [[nodiscard]] std::vector<std::string> values(const std::string& elements,
                                                  const std::vector<std::string>& keys) const;
};

Element readXml(const std::string& path);

/// The text of a connectivity file with the given members of "slaves" and "masters".
std::string connectivity(const std::string& slaves, const std::string& masters = "");

/// What one call of the service is given.
struct Job {
    support::TempDir folder;
    Texts design;
    Texts system{{"ps_core_name", "core"}};

    /// The document that comes out.
    Element run(const std::string& content);
    Element run(const std::string& slaves, const std::string& masters) {
        return run(connectivity(slaves, masters));
    }
};

} // namespace handoff_support
