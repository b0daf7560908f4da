#include "tests/support/TestDocument.h"

namespace {

class NamedNodeMap : public testing::Test
{
protected:
    QRMIDOM_Document document = documentOf("<a xmlns:p='urn:p' p:n='1' b='2'/>");
    QRMIDOM_Element root = document.getDocumentElement();
    QRMIDOM_NamedNodeMap map = root.getAttributes();
    I18NString uri = "urn:p";
    I18NString local = "n";
};

TEST_F(NamedNodeMap, IsSortedByQualifiedName)
{
    ASSERT_EQ(map.getLength(), 3u);
    EXPECT_EQ(map.item(0).getNodeName(), I18NString("b"));
    EXPECT_EQ(map.item(1).getNodeName(), I18NString("p:n"));
    EXPECT_EQ(map.item(2).getNodeName(), I18NString("xmlns:p"));
    EXPECT_TRUE(map.item(3).isNull());
    EXPECT_TRUE(map.item(~0UL).isNull());
}

TEST_F(NamedNodeMap, FindsByName)
{
    EXPECT_EQ(map.getNamedItem("b").getNodeValue(), I18NString("2"));
    EXPECT_EQ(map.getNamedItemNS(uri, local).getNodeValue(), I18NString("1"));
    EXPECT_TRUE(map.getNamedItem("absent").isNull());
    EXPECT_TRUE(map.getNamedItem("").isNull());
    EXPECT_EQ(map.getNamedItem("absent").getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    I18NString none;
    EXPECT_TRUE(map.getNamedItemNS(none, none).isNull());
}

TEST_F(NamedNodeMap, SetsAndRemoves)
{
    QRMIDOM_Attr added = document.createAttribute("c");
    EXPECT_TRUE(map.setNamedItem(added).isNull());
    EXPECT_TRUE(map.setNamedItem(document.createAttribute("c")) == added);
    const QRMIDOM_Node b = map.getNamedItem("b");
    EXPECT_TRUE(map.removeNamedItem("b") == b);
    const QRMIDOM_Attr inNamespace = document.createAttributeNS("urn:p", "q:n");
    EXPECT_EQ(map.setNamedItemNS(inNamespace).getNodeValue(), I18NString("1"));
    EXPECT_TRUE(map.removeNamedItemNS(uri, local) == inNamespace);
    EXPECT_EQ(written(root), "<a c=\"\" xmlns:p=\"urn:p\"/>");
}

TEST_F(NamedNodeMap, RefusesWhatDoesNotBelongThere)
{
    const QRMIDOM_Document other = documentOf("<o><x n='v'/></o>");
    const QRMIDOM_Attr foreign =
        QRMIDOM_Element(other.getDocumentElement().getFirstChild()).getAttributeNode("n");
    QRMIDOM_Element second = document.createElement("second");
    second.setAttribute("used", "");
    EXPECT_EQ(domCodeOf([&] { map.removeNamedItem("absent"); }), 8);
    EXPECT_EQ(domCodeOf([&] { map.removeNamedItemNS("urn:p", "absent"); }), 8);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItem(root); }), 3);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItem(foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItem(second.getAttributeNode("used")); }), 10);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItemNS(second.getAttributeNode("used")); }), 10);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItem(QRMIDOM_Node()); }), 8);
    EXPECT_EQ(domCodeOf([&] { map.setNamedItemNS(QRMIDOM_Node()); }), 8);
    EXPECT_EQ(map.getLength(), 3u);
}

TEST_F(NamedNodeMap, ComparesWithNullOnly)
{
    QRMIDOM_NamedNodeMap null;
    EXPECT_TRUE(null == NULL);
    EXPECT_FALSE(null != NULL);
    EXPECT_FALSE(map == nullptr);
    EXPECT_TRUE(map != nullptr);
    EXPECT_EQ(assertionOf([&] { (void)(map == &null); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(map != &map); }), kNotNullPtr);
}

TEST_F(NamedNodeMap, IsNullOnNodesWithoutAttributes)
{
    QRMIDOM_NamedNodeMap null = document.getAttributes();
    EXPECT_TRUE(null == NULL);
    EXPECT_EQ(null.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    EXPECT_EQ(assertionOf([&] { null.getNamedItem(local); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setNamedItem(root); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeNamedItem(local); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.item(0); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getLength(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNamedItemNS(uri, local); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setNamedItemNS(root); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeNamedItemNS(uri, local); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setRefCountedNodeImpl(nullptr); }), "QRM_ASSERT(refCountedNodeImpl);");
}

TEST_F(NamedNodeMap, CopiesAndAssigns)
{
    const unsigned int before = sharesOf(document);
    {
        const QRMIDOM_NamedNodeMap copy(map);
        QRMIDOM_NamedNodeMap assigned;
        assigned = copy;
        EXPECT_EQ(sharesOf(document), before + 2);
        EXPECT_EQ(assigned.getLength(), 3u);
    }
    EXPECT_EQ(sharesOf(document), before);
}

} // namespace
