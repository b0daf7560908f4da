#include "tests/support/TestDocument.h"

namespace {

TEST(NodeList, CountsAndGivesItsNodes)
{
    const QRMIDOM_Document document = documentOf("<a><b/><c/></a>");
    const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    EXPECT_EQ(list.getLength(), 2u);
    EXPECT_EQ(list.item(0).getNodeName(), I18NString("b"));
    EXPECT_EQ(list.item(1).getNodeName(), I18NString("c"));
    EXPECT_EQ(list.operator->(), static_cast<xercesc::DOMNodeList*>(list));
}

TEST(NodeList, GivesANullHandleBeyondItsEnd)
{
    const QRMIDOM_Document document = documentOf("<a><b/></a>");
    const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    for (const unsigned long index : {list.getLength(), ~0UL}) {
        EXPECT_TRUE(list.item(index).isNull());
        EXPECT_EQ(list.item(index).getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    }
}

TEST(NodeList, FollowsTheTree)
{
    QRMIDOM_Document document = documentOf("<a><b/></a>");
    const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    document.getDocumentElement().appendChild(document.createElement("c"));
    EXPECT_EQ(list.getLength(), 2u);
}

TEST(NodeList, ComparesByIdentityOfTheList)
{
    const QRMIDOM_Document document = documentOf("<a><b><c/></b></a>");
    const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    QRMIDOM_NodeList same = document.getDocumentElement().getChildNodes();
    QRMIDOM_NodeList other = document.getDocumentElement().getFirstChild().getChildNodes();
    EXPECT_TRUE(list == same);
    EXPECT_FALSE(list != same);
    EXPECT_TRUE(list != other);
}

TEST(NodeList, ComparesWithNullOnly)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_NodeList null;
    QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    EXPECT_TRUE(null == NULL);
    EXPECT_FALSE(null != NULL);
    EXPECT_FALSE(list == nullptr);
    EXPECT_TRUE(list != nullptr);
    EXPECT_EQ(assertionOf([&] { (void)(list == &null); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(list != &list); }), kNotNullPtr);
}

TEST(NodeList, FailsOnANullList)
{
    QRMIDOM_NodeList null;
    EXPECT_EQ(assertionOf([&] { null.item(0); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getLength(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setRefCountedNodeImpl(nullptr); }), "QRM_ASSERT(refCountedNodeImpl);");
    EXPECT_EQ(static_cast<xercesc::DOMNodeList*>(null), nullptr);
}

TEST(NodeList, CopiesAndAssigns)
{
    const QRMIDOM_Document document = documentOf("<a><b/></a>");
    const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    {
        const QRMIDOM_NodeList copy(list);
        QRMIDOM_NodeList assigned;
        assigned = copy;
        EXPECT_EQ(sharesOf(document), 4u);
        EXPECT_EQ(assigned.getLength(), 1u);
        assigned = QRMIDOM_NodeList();
        EXPECT_EQ(sharesOf(document), 3u);
        EXPECT_TRUE(assigned == NULL);
    }
    EXPECT_EQ(sharesOf(document), 2u);
    const QRMIDOM_NodeList bare(static_cast<xercesc::DOMNodeList*>(list));
    EXPECT_EQ(bare.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(bare.item(0).getRefCountedNodeImpl(), nullptr);
}

} // namespace
