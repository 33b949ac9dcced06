// Descriptions held against schemas in a folder.

#include <gmock/gmock.h>

#include "support/support.h"
#include "workbench/files/InputError.h"
#include "workbench/ipxact/SchemaCheck.h"

namespace {

using testing::HasSubstr;

constexpr const char* kIndex =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns='urn:x' targetNamespace='urn:x' "
    "elementFormDefault='qualified'>\n"
    "<xs:include schemaLocation='http://elsewhere.invalid/schemas/parts.xsd'/>\n"
    "<xs:element name='component'><xs:complexType><xs:sequence>"
    "<xs:element ref='size'/></xs:sequence></xs:complexType></xs:element></xs:schema>";
constexpr const char* kParts =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:x'>"
    "<xs:element name='size' type='xs:unsignedByte'/></xs:schema>";

class SchemaCheck : public testing::Test {
protected:
    void SetUp() override {
        m_folder.write("editions/new/index.xsd", kIndex);
        m_folder.write("editions/new/parts.xsd", kParts);
    }

    std::string faultOf(const std::string& document) {
        m_findings = tq::DiagnosticList();
        try {
            (void)tq::ipxact::checkSchema(m_folder.write("c.xml", document),
                                          m_folder.file("editions"), m_findings.sink());
        } catch (const tq::InputError& error) {
            return error.what();
        }
        return {};
    }

    support::TempDir m_folder;
    tq::DiagnosticList m_findings;
};

TEST_F(SchemaCheck, PlacesWhatTheSchemaForbids) {
    EXPECT_EQ("", faultOf("<component xmlns='urn:x'><size>8</size></component>"));
    EXPECT_EQ(0U, m_findings.count());
    EXPECT_EQ("", faultOf("<component xmlns='urn:x'>\n <size>256</size></component>"));
    ASSERT_EQ(1U, m_findings.count());
    const tq::Diagnostic& finding = m_findings.all().front();
    EXPECT_EQ("schema", finding.id);
    EXPECT_EQ(2U, finding.place.line);
    EXPECT_THAT(finding.text, HasSubstr("256"));
}

TEST_F(SchemaCheck, FollowsNoNameOfAFile) {
    m_folder.write("loose.xsd",
                   "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                   "targetNamespace='urn:x'><xs:element name='component'/></xs:schema>");
    EXPECT_EQ("", faultOf("<component xmlns='urn:x' "
                          "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                          "xsi:schemaLocation='urn:x ../loose.xsd'><other/></component>"));
    EXPECT_NE(0U, m_findings.count());
    EXPECT_THAT(faultOf("<!DOCTYPE component [<!ENTITY e SYSTEM 'editions/new/parts.xsd'>]>"
                        "<component xmlns='urn:x'>&e;</component>"),
                HasSubstr("is not read"));
}

TEST_F(SchemaCheck, RefusesWhatIsNoSchemaForTheFile) {
    EXPECT_THAT(faultOf("<component xmlns='urn:y'/>"), HasSubstr("there is no schema below"));
    m_folder.write("editions/new/parts.xsd", "<broken");
    EXPECT_THAT(faultOf("<component xmlns='urn:x'/>"), HasSubstr("parts.xsd: error: line 1 of"));
    std::filesystem::remove(m_folder.file("editions/new/parts.xsd"));
    EXPECT_THAT(faultOf("<component xmlns='urn:x'/>"),
                HasSubstr("\"http://elsewhere.invalid/schemas/parts.xsd\" is not read"));
}

} // namespace
