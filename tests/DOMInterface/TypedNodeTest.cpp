#include "tests/support/TestDocument.h"

namespace {

template <class HandleType, class XercesType>
struct Kind
{
    using Handle = HandleType;
    using Xerces = XercesType;
};

template <class Pair>
class TypedNode : public testing::Test
{
};

using Kinds =
    testing::Types<Kind<QRMIDOM_Attr, xercesc::DOMAttr>, Kind<QRMIDOM_CDATASection, xercesc::DOMCDATASection>,
                   Kind<QRMIDOM_CharacterData, xercesc::DOMCharacterData>,
                   Kind<QRMIDOM_Comment, xercesc::DOMComment>, Kind<QRMIDOM_Document, xercesc::DOMDocument>,
                   Kind<QRMIDOM_DocumentFragment, xercesc::DOMDocumentFragment>,
                   Kind<QRMIDOM_DocumentType, xercesc::DOMDocumentType>,
                   Kind<QRMIDOM_Element, xercesc::DOMElement>, Kind<QRMIDOM_Entity, xercesc::DOMEntity>,
                   Kind<QRMIDOM_EntityReference, xercesc::DOMEntityReference>,
                   Kind<QRMIDOM_Notation, xercesc::DOMNotation>,
                   Kind<QRMIDOM_ProcessingInstruction, xercesc::DOMProcessingInstruction>,
                   Kind<QRMIDOM_Text, xercesc::DOMText>>;
TYPED_TEST_SUITE(TypedNode, Kinds);

TYPED_TEST(TypedNode, IsNullAtFirst)
{
    typename TypeParam::Handle handle;
    EXPECT_TRUE(handle.isNull());
    EXPECT_TRUE(handle == NULL);
    EXPECT_TRUE(handle == nullptr);
    EXPECT_EQ(handle.getRefCountedNodeImpl(), nullptr);
    typename TypeParam::Xerces* const wrapped = handle;
    EXPECT_EQ(wrapped, nullptr);
}

TYPED_TEST(TypedNode, TakesAnyNodeWithItsShareAndChecksNoType)
{
    const QRMIDOM_Document document = documentOf("<a>text</a>");
    const QRMIDOM_Node text = document.getDocumentElement().getFirstChild();
    using Handle = typename TypeParam::Handle;
    {
        Handle constructed(text);
        Handle copied(constructed);
        Handle assigned;
        assigned = text;
        Handle assignedSame;
        assignedSame = copied;
        for (Handle* handle : {&constructed, &copied, &assigned, &assignedSame}) {
            EXPECT_EQ(handle->getDOM_NodeImpl(), text.getDOM_NodeImpl());
            EXPECT_EQ(handle->getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
            EXPECT_TRUE(*handle == text);
        }
        EXPECT_EQ(sharesOf(document), 6u);
        constructed = constructed.getNextSibling();
        EXPECT_TRUE(constructed.isNull());
        EXPECT_EQ(sharesOf(document), 6u);
    }
    EXPECT_EQ(sharesOf(document), 2u);
}

TYPED_TEST(TypedNode, TakesANullPointerForNoNode)
{
    const typename TypeParam::Handle handle(static_cast<typename TypeParam::Xerces*>(nullptr));
    EXPECT_TRUE(handle.isNull());
    EXPECT_EQ(handle.getRefCountedNodeImpl(), nullptr);
}

TYPED_TEST(TypedNode, BecomesNullByAssignmentOfNullOnly)
{
    const QRMIDOM_Document document = documentOf("<a>text</a>");
    QRMIDOM_Node node = document.getDocumentElement();
    typename TypeParam::Handle handle(node);
    EXPECT_EQ(assertionOf([&] { handle = &node; }), kNotNull);
    EXPECT_EQ(assertionOf([&] { (void)(handle == &node); }), kNotNull);
    EXPECT_EQ(assertionOf([&] { (void)(handle != &handle); }), kNotNull);
    EXPECT_TRUE(handle == node);
    handle = NULL;
    EXPECT_TRUE(handle.isNull());
    EXPECT_EQ(handle.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(sharesOf(document), 2u);
}

TYPED_TEST(TypedNode, AddsNoDataToANode)
{
    // A document handle is a traversal factory besides, which costs the pointer to that interface's operations.
    constexpr bool isDocument = std::is_same_v<typename TypeParam::Handle, QRMIDOM_Document>;
    EXPECT_EQ(sizeof(typename TypeParam::Handle), sizeof(QRMIDOM_Node) + (isDocument ? sizeof(void*) : 0));
    EXPECT_EQ(sizeof(QRMIDOM_Node), 3 * sizeof(void*));
}

TEST(TypedNodeArrow, GivesTheHandleItselfForDocumentsElementsAndAttributes)
{
    QRMIDOM_Document document = documentOf("<a n='v'/>");
    QRMIDOM_Element element = document.getDocumentElement();
    QRMIDOM_Attr attribute = element.getAttributeNode("n");
    EXPECT_EQ(static_cast<void*>(document.operator->()), &document);
    EXPECT_EQ(static_cast<void*>(element.operator->()), &element);
    EXPECT_EQ(static_cast<void*>(attribute.operator->()), &attribute);
    EXPECT_EQ(element->getTagName(), I18NString("a"));
}

TEST(TypedNodeArrow, GivesTheXercesNodeForCharacterDataAndDeclarations)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ENTITY e 'x'>]><a>t<![CDATA[c]]><!--k--><?p d?></a>");
    const QRMIDOM_Text text = document.getDocumentElement().getFirstChild();
    const QRMIDOM_CDATASection cdata = text.getNextSibling();
    const QRMIDOM_Comment comment = cdata.getNextSibling();
    const QRMIDOM_ProcessingInstruction instruction = comment.getNextSibling();
    const QRMIDOM_CharacterData data = text;
    const QRMIDOM_Entity entity = document.getDoctype().getEntities().item(0);
    EXPECT_EQ(text.operator->(), static_cast<xercesc::DOMText*>(text));
    EXPECT_EQ(cdata.operator->(), static_cast<xercesc::DOMCDATASection*>(cdata));
    EXPECT_EQ(comment.operator->(), static_cast<xercesc::DOMComment*>(comment));
    EXPECT_EQ(data.operator->(), static_cast<xercesc::DOMCharacterData*>(data));
    EXPECT_EQ(instruction->getTarget(), std::u16string(u"p"));
    EXPECT_EQ(entity->getNodeName(), std::u16string(u"e"));
    EXPECT_EQ(document.getDoctype()->getName(), std::u16string(u"a"));
}

TEST(TypedNodeArrow, ConvertsADocumentToItsOwnXercesInterface)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    xercesc::DOMDocument* const asDocument = document;
    const xercesc::DOMNode* const asNode = document;
    EXPECT_EQ(static_cast<const xercesc::DOMNode*>(asDocument), asNode);
    EXPECT_EQ(asDocument->getDocumentElement()->getTagName(), std::u16string(u"a"));
}

} // namespace
