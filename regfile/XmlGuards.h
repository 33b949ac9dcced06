// What every XML parser of the register file reader is set up with: faults are raised, and nothing
// outside the file is opened.
#pragma once

#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <stdexcept>
#include <string>

namespace hbs::regfile {

/// Ends a parse that can't go on.
class Fault : public std::runtime_error {
public:
    explicit Fault(const std::string& text) : std::runtime_error(text), m_text(text) {}
    /// `what()` has "(line …, column …)" after the text.
    Fault(const std::string& text, XMLFileLoc line, XMLFileLoc column)
        : std::runtime_error(text + " (line " + std::to_string(line) + ", column " +
                             std::to_string(column) + ")"),
          m_text(text), m_line(line), m_column(column) {}

    [[nodiscard]] const std::string& text() const { return m_text; }
    [[nodiscard]] XMLFileLoc line() const { return m_line; } ///< from 1; 0 where unknown
    [[nodiscard]] XMLFileLoc column() const { return m_column; }

private:
    std::string m_text;
    XMLFileLoc m_line = 0;
    XMLFileLoc m_column = 0;
};

/// In the local code page; empty for what it can't hold.
[[nodiscard]] std::string toText(const XMLCh* wide);

/// Xerces reports most faults to its handler and throws nothing, so without this one a broken file
/// would be accepted. Warnings are ignored.
class FaultHandler final : public xercesc::ErrorHandler {
public:
    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException& fault) override { raise(fault); }
    void fatalError(const xercesc::SAXParseException& fault) override { raise(fault); }
    void resetErrors() override {}

private:
    [[noreturn]] static void raise(const xercesc::SAXParseException& fault);
};

/// No file or address that a description names is ever opened.
class NoEntities final : public xercesc::EntityResolver {
public:
    xercesc::InputSource* resolveEntity(const XMLCh*, const XMLCh* systemId) override;
};

/// Settings and handlers. A parser borrows the handlers, so they have to outlive it.
class XmlGuards {
public:
    XmlGuards();

    template <class Parser>
    void applyTo(Parser& parser) {
        parser.setValidationScheme(Parser::Val_Never);
        parser.setDoNamespaces(false);
        parser.setDoSchema(false);
        parser.setLoadExternalDTD(false);
        parser.setDisableDefaultEntityResolution(true);
        parser.setErrorHandler(&m_faults);
        parser.setEntityResolver(&m_entities);
        parser.setSecurityManager(&m_expansions);
    }

private:
    FaultHandler m_faults;
    NoEntities m_entities;
    xercesc::SecurityManager m_expansions;
};

} // namespace hbs::regfile
