#include "HXMLWInterface.h"

#include <cstddef>
#include <string_view>

#include "HEXError.h"
#include "HXMLWDocument.h"
#include "base/FileReplacement.h"

namespace {

[[noreturn]] void raise(const std::string& path, const std::string& cause) {
    throw HEXError("can't write '" + path + "': " + cause);
}

/// What pugixml prints goes to the file.
class FileWriter : public pugi::xml_writer {
public:
    explicit FileWriter(base::FileReplacement& file) : m_file(file) {}

    void write(const void* data, std::size_t size) override {
        m_file.write({static_cast<const char*>(data), size});
    }

private:
    base::FileReplacement& m_file;
};

} // namespace

std::shared_ptr<HXMLWElement> HXMLWInterface::createRoot(const char* name) {
    auto document = std::make_shared<HXMLWDocument>();
    HXMLWElement* root = document->appendTo(document->root(), name == nullptr ? "" : name);
    return root == nullptr ? nullptr : document->shared(root);
}

// The shared pointer and the path come by value, as the tool's library has it.
void HXMLWInterface::writeToFile(std::shared_ptr<HXMLWElement> root, std::string path) {
    if (root == nullptr)
        raise(path, "there is no document");
    base::FileReplacement file(path);
    if (file.isGood()) {
        FileWriter writer(file);
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        pugi::xml_node(root->m_node).print(writer, "\t", pugi::format_indent, pugi::encoding_utf8);
    }
    if (!file.commit())
        raise(path, file.reason());
}
