#include "handoff/handoff_support.h"

#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>

#include <memory>

#include "handoff/HBSGenerateService.h"

namespace handoff_support {

namespace {

std::string utf8(const XMLCh* text) {
    const xercesc::TranscodeToStr bytes(text, "UTF-8");
    return {reinterpret_cast<const char*>(bytes.str()), bytes.length()};
}

class TreeBuilder : public xercesc::DefaultHandler {
public:
    Element document;

    void startElement(const XMLCh*, const XMLCh*, const XMLCh* name,
                      const xercesc::Attributes& attributes) override {
        Element element{utf8(name), {}, {}};
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i)
            element.attributes.emplace_back(utf8(attributes.getQName(i)),
                                            utf8(attributes.getValue(i)));
        m_open.back()->children.push_back(std::move(element));
        m_open.push_back(&m_open.back()->children.back());
    }
    void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override { m_open.pop_back(); }
    void fatalError(const xercesc::SAXParseException& error) override {
        ADD_FAILURE() << "line " << error.getLineNumber() << ": " << utf8(error.getMessage());
    }

private:
    std::vector<Element*> m_open{&document};
};

} // namespace

std::string Element::attribute(const std::string& key) const {
    for (const auto& [attributeName, value] : attributes)
        if (attributeName == key)
            return value;
    return "(none)";
}

std::vector<std::string> Element::values(const std::string& elements,
                                         const std::vector<std::string>& keys) const {
    std::vector<std::string> found;
    for (const Element& child : children) {
        if (child.name == elements) {
            std::string line;
            for (const auto& key : keys)
                line += " " + child.attribute(key);
            found.push_back(line.substr(keys.empty() ? 0 : 1));
        }
        const auto below = child.values(elements, keys);
        found.insert(found.end(), below.begin(), below.end());
    }
    return found;
}

Element readXml(const std::string& path) {
    xercesc::XMLPlatformUtils::Initialize();
    TreeBuilder builder;
    {
        const std::unique_ptr<xercesc::SAX2XMLReader> reader(
            xercesc::XMLReaderFactory::createXMLReader());
        reader->setContentHandler(&builder);
        reader->setErrorHandler(&builder);
        reader->parse(path.c_str());
    }
    xercesc::XMLPlatformUtils::Terminate();
    return builder.document.children.empty() ? Element() : builder.document.children.front();
}

std::string connectivity(const std::string& slaves, const std::string& masters) {
    return R"({"metadata": {"slaves": [{)" + slaves + R"(}], "masters": [{)" + masters + "}]}}";
}

Element Job::run(const std::string& content) {
    const std::string input = folder.write("connectivity.json", content);
    const std::string output = folder.file("out.hwh");
    HBSGenerateService::generateHWH(design, system, input, output);
    return readXml(output);
}

} // namespace handoff_support
