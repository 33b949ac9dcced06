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

class Collector : public xercesc::DefaultHandler {
public:
    Document document;

    void startElement(const XMLCh*, const XMLCh*, const XMLCh* name,
                      const xercesc::Attributes& attributes) override {
        m_path += "/" + utf8(name);
        document.push_back({m_path, {}});
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i)
            document.back().attributes[utf8(attributes.getQName(i))] = utf8(attributes.getValue(i));
    }
    void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override {
        m_path.resize(m_path.rfind('/'));
    }
    void fatalError(const xercesc::SAXParseException& error) override {
        ADD_FAILURE() << "line " << error.getLineNumber() << ": " << utf8(error.getMessage());
    }

private:
    std::string m_path;
};

} // namespace

std::vector<std::string> values(const Document& document, const std::string& pathEnd,
                                const std::vector<std::string>& keys) {
    std::vector<std::string> found;
    for (const auto& [path, attributes] : document) {
        if (!("/" + path).ends_with("/" + pathEnd))
            continue;
        std::string line;
        for (const auto& key : keys)
            line += " " + (attributes.contains(key) ? attributes.at(key) : "(none)");
        found.push_back(line.substr(keys.empty() ? 0 : 1));
    }
    return found;
}

Document readXml(const std::string& path) {
    xercesc::XMLPlatformUtils::Initialize();
    Collector collector;
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(
        xercesc::XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&collector);
    reader->setErrorHandler(&collector);
    reader->parse(path.c_str());
    return collector.document;
}

std::string connectivity(const std::string& slaves, const std::string& masters) {
    return R"({"metadata": {"slaves": [{)" + slaves + R"(}], "masters": [{)" + masters + "}]}}";
}

Document Job::run(const std::string& content) {
    const std::string input = folder.write("connectivity.json", content);
    const std::string output = folder.file("out.hwh");
    HBSGenerateService::generateHWH(design, system, input, output);
    return readXml(output);
}

} // namespace handoff_support
