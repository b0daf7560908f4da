#include <xercesc/dom/DOM.hpp>

#include "tests/support/TestDocument.h"

namespace {

class DOMImplementation : public testing::Test
{
protected:
    QRMIDOM_DOMImplementation implementation = QRMIDOM_DOMImplementation::getInstance();
};

TEST_F(DOMImplementation, IsTheSameXercesObjectEachTime)
{
    EXPECT_EQ(static_cast<xercesc::DOMImplementation*>(implementation),
              static_cast<xercesc::DOMImplementation*>(QRMIDOM_DOMImplementation::getInstance()));
    EXPECT_NE(static_cast<xercesc::DOMImplementation*>(implementation), nullptr);
    QRMIDOM_DOMImplementation assigned;
    EXPECT_TRUE(assigned == NULL);
    assigned = implementation;
    EXPECT_TRUE(assigned != NULL);
    EXPECT_TRUE(QRMIDOM_DOMImplementation(implementation) != nullptr);
}

TEST_F(DOMImplementation, ComparesWithNullOnly)
{
    EXPECT_EQ(assertionOf([&] { (void)(implementation == &implementation); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(implementation != &implementation); }), kNotNullPtr);
}

TEST_F(DOMImplementation, TellsItsFeatures)
{
    EXPECT_TRUE(implementation.hasFeature("Core", ""));
    EXPECT_TRUE(implementation.hasFeature("XML", "1.0"));
    EXPECT_FALSE(implementation.hasFeature("XML", "7"));
    EXPECT_FALSE(implementation.hasFeature("", ""));
}

TEST_F(DOMImplementation, MakesDocumentsWithoutARoot)
{
    const QRMIDOM_DocumentType none;
    const QRMIDOM_Document documents[] = {
        implementation.createDocument(), implementation.createDocument("urn:u"),
        implementation.createDocument("urn:u", "p:root"), implementation.createDocument("", "root", none)};
    for (const QRMIDOM_Document& document : documents) {
        EXPECT_TRUE(document.getDocumentElement().isNull());
        EXPECT_TRUE(document.getFirstChild().isNull());
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(sharesOf(documents[i]), 1u);
    }
}

TEST_F(DOMImplementation, ChecksTheNameThatItDropsAgain)
{
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("", "1a"); }), 5);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("urn:u", "1a"); }), 5);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("", "p:a"); }), 14);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("urn:u", "a:b:c"); }), 14);
}

TEST_F(DOMImplementation, MakesDocumentTypes)
{
    const QRMIDOM_DocumentType one = implementation.createDocumentType("a");
    const QRMIDOM_DocumentType two = implementation.createDocumentType("a", "pub");
    const QRMIDOM_DocumentType three = implementation.createDocumentType("p:a", "pub", "sys");
    EXPECT_EQ(one.getName() + one.getPublicId() + one.getSystemId(), I18NString("a"));
    EXPECT_EQ(two.getName() + two.getPublicId() + two.getSystemId(), I18NString("apub"));
    EXPECT_EQ(three.getName() + three.getPublicId() + three.getSystemId(), I18NString("p:apubsys"));
    for (const QRMIDOM_DocumentType& doctype : {one, two, three}) {
        EXPECT_EQ(doctype.getRefCountedNodeImpl(), nullptr);
        EXPECT_EQ(doctype.getEntities().getLength(), 0u);
        doctype.getDOM_NodeImpl()->release();
    }
    EXPECT_EQ(domCodeOf([&] { implementation.createDocumentType(""); }), 5);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocumentType("1a"); }), 5);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocumentType("a:b:c"); }), 14);
}

TEST_F(DOMImplementation, GivesADocumentItsType)
{
    const QRMIDOM_DocumentType doctype = implementation.createDocumentType("a", "pub", "sys");
    QRMIDOM_Document document = implementation.createDocument("", "a", doctype);
    EXPECT_TRUE(document.getDoctype() == doctype);
    EXPECT_TRUE(document.getDocumentElement().isNull());
    document.appendChild(document.createElement("a"));
    EXPECT_EQ(written(document), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<!DOCTYPE a PUBLIC \"pub\" SYSTEM \"sys\">\n<a/>\n");
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("", "a", doctype); }), 4);
    EXPECT_TRUE(document.getDoctype() == doctype);
}

TEST_F(DOMImplementation, LeavesADocumentTypeAloneWhenTheNameIsRefused)
{
    const QRMIDOM_DocumentType doctype = implementation.createDocumentType("a", "pub", "sys");
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("", "1a", doctype); }), 5);
    EXPECT_EQ(domCodeOf([&] { implementation.createDocument("", "p:a", doctype); }), 14);
    EXPECT_EQ(doctype.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(doctype.getSystemId(), I18NString("sys"));
    EXPECT_TRUE(doctype.getOwnerDocument().isNull());
    const QRMIDOM_Document document = implementation.createDocument("", "a", doctype);
    EXPECT_TRUE(document.getDoctype() == doctype);
}

TEST_F(DOMImplementation, FailsEveryOperationWithoutAnImplementation)
{
    const QRMIDOM_DOMImplementation null;
    EXPECT_EQ(assertionOf([&] { null.hasFeature("", ""); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createDocumentType("a"); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createDocument(); }), kNullHandle);
}

} // namespace
