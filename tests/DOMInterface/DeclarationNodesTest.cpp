#include "tests/support/TestDocument.h"

namespace {

constexpr const char* kDeclarations = "<!DOCTYPE a PUBLIC \"pub\" \"sys.dtd\" ["
                                      "<!NOTATION n PUBLIC \"np\" \"ns\">"
                                      "<!NOTATION m SYSTEM \"ms\">"
                                      "<!ENTITY internal \"text\">"
                                      "<!ENTITY unparsed PUBLIC \"ep\" \"es\" NDATA n>"
                                      "]><a/>";

QRMIDOM_Document withDeclarations()
{
    QRMIDOM_Parser parser;
    parser.setLoadExternalDTD(0);
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(kDeclarations, static_cast<int>(std::strlen(kDeclarations)), document), 1);
    return document;
}

TEST(DocumentType, TellsNameIdentifiersAndSubset)
{
    const QRMIDOM_Document document = withDeclarations();
    const QRMIDOM_DocumentType doctype = document.getDoctype();
    EXPECT_EQ(doctype.getName(), I18NString("a"));
    EXPECT_EQ(doctype.getPublicId(), I18NString("pub"));
    EXPECT_EQ(doctype.getSystemId(), I18NString("sys.dtd"));
    EXPECT_EQ(doctype.getInternalSubset().indexOf("<!NOTATION n PUBLIC \"np\" \"ns\">"), 0);
    I18NString filled("before");
    doctype.getName(filled);
    EXPECT_EQ(filled, I18NString("a"));
    doctype.getPublicId(filled);
    EXPECT_EQ(filled, I18NString("pub"));
    doctype.getSystemId(filled);
    EXPECT_EQ(filled, I18NString("sys.dtd"));
    doctype.getInternalSubset(filled);
    EXPECT_EQ(filled, doctype.getInternalSubset());
}

TEST(DocumentType, GivesEmptyStringsAndMapsForWhatIsAbsent)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a []><a/>");
    const QRMIDOM_DocumentType doctype = document.getDoctype();
    EXPECT_EQ(doctype.getPublicId(), I18NString(""));
    EXPECT_EQ(doctype.getSystemId(), I18NString(""));
    EXPECT_EQ(doctype.getInternalSubset(), I18NString(""));
    EXPECT_EQ(doctype.getEntities().getLength(), 0u);
    EXPECT_EQ(doctype.getNotations().getLength(), 0u);
    I18NString filled("before");
    doctype.getPublicId(filled);
    EXPECT_TRUE(filled.empty());
    filled = "before";
    doctype.getSystemId(filled);
    EXPECT_TRUE(filled.empty());
    filled = "before";
    doctype.getInternalSubset(filled);
    EXPECT_TRUE(filled.empty());
}

TEST(DocumentType, HasNoPublicIdWithASystemIdOnly)
{
    const QRMIDOM_DocumentType doctype =
        QRMIDOM_DOMImplementation::getInstance().createDocumentType("a", "", "sys.dtd");
    EXPECT_EQ(doctype.getPublicId(), I18NString(""));
    EXPECT_EQ(doctype.getSystemId(), I18NString("sys.dtd"));
    doctype.getDOM_NodeImpl()->release();
}

TEST(DocumentType, IsNullWhereThereIsNone)
{
    const QRMIDOM_DocumentType null = documentOf("<a/>").getDoctype();
    I18NString text;
    EXPECT_EQ(assertionOf([&] { null.getName(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getEntities(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNotations(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getPublicId(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getPublicId(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getSystemId(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getSystemId(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getInternalSubset(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getInternalSubset(text); }), kNullHandle);
}

TEST(DocumentType, GivesReadOnlyMaps)
{
    const QRMIDOM_Document document = withDeclarations();
    QRMIDOM_NamedNodeMap entities = document.getDoctype().getEntities();
    EXPECT_EQ(entities.getLength(), 2u);
    EXPECT_EQ(document.getDoctype().getNotations().getLength(), 2u);
    EXPECT_EQ(domCodeOf([&] { entities.removeNamedItem("internal"); }), 7);
    EXPECT_EQ(entities.getLength(), 2u);
}

TEST(Entity, TellsIdentifiersAndNotation)
{
    const QRMIDOM_Document document = withDeclarations();
    const QRMIDOM_Entity unparsed = document.getDoctype().getEntities().getNamedItem("unparsed");
    EXPECT_EQ(unparsed.getPublicId(), I18NString("ep"));
    EXPECT_EQ(unparsed.getSystemId(), I18NString("es"));
    EXPECT_EQ(unparsed.getNotationName(), I18NString("n"));
    I18NString filled;
    unparsed.getPublicId(filled);
    EXPECT_EQ(filled, I18NString("ep"));
    unparsed.getSystemId(filled);
    EXPECT_EQ(filled, I18NString("es"));
    unparsed.getNotationName(filled);
    EXPECT_EQ(filled, I18NString("n"));
}

TEST(Entity, HasNothingWhenItIsInternal)
{
    const QRMIDOM_Document document = withDeclarations();
    const QRMIDOM_Entity internal = document.getDoctype().getEntities().getNamedItem("internal");
    EXPECT_EQ(internal.getPublicId(), I18NString(""));
    EXPECT_EQ(internal.getSystemId(), I18NString(""));
    EXPECT_EQ(internal.getNotationName(), I18NString(""));
    I18NString filled("before");
    internal.getNotationName(filled);
    EXPECT_TRUE(filled.empty());
}

TEST(Notation, TellsIdentifiers)
{
    const QRMIDOM_Document document = withDeclarations();
    const QRMIDOM_Notation n = document.getDoctype().getNotations().getNamedItem("n");
    const QRMIDOM_Notation m = document.getDoctype().getNotations().getNamedItem("m");
    EXPECT_EQ(n.getPublicId(), I18NString("np"));
    EXPECT_EQ(n.getSystemId(), I18NString("ns"));
    EXPECT_EQ(m.getPublicId(), I18NString(""));
    EXPECT_EQ(m.getSystemId(), I18NString("ms"));
    I18NString filled("before");
    m.getPublicId(filled);
    EXPECT_TRUE(filled.empty());
    m.getSystemId(filled);
    EXPECT_EQ(filled, I18NString("ms"));
}

TEST(ProcessingInstruction, TellsTargetAndData)
{
    const QRMIDOM_Document document = documentOf("<a><?t d e?><?empty?></a>");
    QRMIDOM_ProcessingInstruction instruction = document.getDocumentElement().getFirstChild();
    EXPECT_EQ(instruction.getTarget(), I18NString("t"));
    EXPECT_EQ(instruction.getData(), I18NString("d e"));
    I18NString filled("before");
    instruction.getTarget(filled);
    EXPECT_EQ(filled, I18NString("t"));
    instruction.getData(filled);
    EXPECT_EQ(filled, I18NString("d e"));
    instruction.setNodeValue("new");
    EXPECT_EQ(instruction.getData(), I18NString("new"));
    const QRMIDOM_ProcessingInstruction empty = instruction.getNextSibling();
    EXPECT_EQ(empty.getData(), I18NString(""));
}

TEST(EntityReference, HasReadOnlyChildren)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>");
    QRMIDOM_EntityReference reference = document.getDocumentElement().getFirstChild();
    EXPECT_EQ(reference.getNodeName(), I18NString("e"));
    EXPECT_EQ(domCodeOf([&] { reference.removeChild(reference.getFirstChild()); }), 7);
}

} // namespace
