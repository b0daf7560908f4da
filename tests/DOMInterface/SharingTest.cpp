#include <xercesc/dom/DOM.hpp>

#include "tests/support/FailingAllocator.h"
#include "tests/support/TestDocument.h"

namespace {

xercesc::DOMDocument* newXercesDocument()
{
    return xercesc::DOMImplementation::getImplementation()->createDocument(nullptr, u"root", nullptr);
}

/// Tells when the document that it watches is released.
class Watch : public xercesc::DOMUserDataHandler
{
public:
    explicit Watch(const QRMIDOM_Document& document) : m_document(document.getDOM_NodeImpl())
    {
        m_document->setUserData(u"watch", this, this);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() override
    {
        if (!released) {
            m_document->setUserData(u"watch", nullptr, nullptr);
        }
    }
    void handle(DOMOperationType operation, const XMLCh*, void*, const xercesc::DOMNode*,
                xercesc::DOMNode*) override
    {
        released = released || operation == NODE_DELETED;
    }
    bool released = false;

private:
    xercesc::DOMNode* m_document;
};

TEST(Sharing, ADocumentIsAdoptedWithACountOfOne)
{
    const QRMIDOM_Node asNode(newXercesDocument());
    EXPECT_EQ(sharesOf(asNode), 1u);
    EXPECT_EQ(asNode.getRefCountedNodeImpl()->getNode(), asNode.getDOM_NodeImpl());
    const QRMIDOM_Document asDocument(newXercesDocument());
    EXPECT_EQ(sharesOf(asDocument), 1u);
    EXPECT_EQ(asDocument.getRefCountedNodeImpl()->getNode(), asDocument.getDOM_NodeImpl());
}

TEST(Sharing, OtherNodesAreBorrowed)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    const QRMIDOM_Node bare(document.getDocumentElement().getDOM_NodeImpl());
    EXPECT_EQ(bare.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(QRMIDOM_Node(static_cast<xercesc::DOMNode*>(nullptr)).getRefCountedNodeImpl(), nullptr);
    EXPECT_TRUE(QRMIDOM_Document(static_cast<xercesc::DOMDocument*>(nullptr)).isNull());
}

TEST(Sharing, TheDocumentLivesAsLongAsAnyHandleOnIt)
{
    QRMIDOM_Document document = documentOf("<a><b/></a>");
    Watch watch(document);
    QRMIDOM_Node b = document.getDocumentElement().getFirstChild();
    EXPECT_EQ(sharesOf(b), 2u);
    document = NULL;
    EXPECT_FALSE(watch.released);
    EXPECT_EQ(b.getNodeName(), I18NString("b"));
    b = NULL;
    EXPECT_TRUE(watch.released);
}

TEST(Sharing, ACollectionKeepsTheDocument)
{
    QRMIDOM_Document document = documentOf("<a n='v'><b/></a>");
    Watch watch(document);
    {
        const QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
        const QRMIDOM_NamedNodeMap map = document.getDocumentElement().getAttributes();
        EXPECT_EQ(sharesOf(document), 3u);
        document = NULL;
        EXPECT_FALSE(watch.released);
        EXPECT_EQ(list.item(0).getNodeName(), I18NString("b"));
        EXPECT_EQ(map.item(0).getNodeName(), I18NString("n"));
    }
    EXPECT_TRUE(watch.released);
}

TEST(Sharing, CopyingAndAssigningCount)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    {
        const QRMIDOM_Node copy(document);
        EXPECT_EQ(sharesOf(document), 2u);
        QRMIDOM_Node assigned;
        assigned = copy;
        EXPECT_EQ(sharesOf(document), 3u);
        assigned = document.getDocumentElement();
        EXPECT_EQ(sharesOf(document), 3u);
        assigned = QRMIDOM_Node();
        EXPECT_EQ(sharesOf(document), 2u);
        EXPECT_EQ(assigned.getRefCountedNodeImpl(), nullptr);
    }
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(Sharing, AssignmentToItselfChangesNothing)
{
    QRMIDOM_Document document = documentOf("<a/>");
    Watch watch(document);
    const QRMIDOM_Document& same = document;
    document = same;
    EXPECT_EQ(sharesOf(document), 1u);
    const QRMIDOM_Document second = document;
    document = same;
    EXPECT_EQ(sharesOf(document), 2u);
    EXPECT_FALSE(watch.released);
    QRMIDOM_Node null;
    const QRMIDOM_Node& sameNull = null;
    null = sameNull;
    EXPECT_TRUE(null.isNull());
}

TEST(Sharing, AssigningTheLastHandleReleasesItsDocument)
{
    QRMIDOM_Document document = documentOf("<a/>");
    Watch watch(document);
    document = documentOf("<b/>");
    EXPECT_TRUE(watch.released);
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(Sharing, EveryResultSharesTheDocumentOnce)
{
    QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ENTITY e 'x'>]><a n='v' i='1'>t<b/></a>");
    QRMIDOM_Element root = document.getDocumentElement();
    const auto holder = document.getRefCountedNodeImpl();
    const unsigned int before = holder->getCount();
    const auto expectOneMore = [&](auto&& make) {
        const auto result = make();
        EXPECT_EQ(result.getRefCountedNodeImpl(), holder);
        EXPECT_EQ(holder->getCount(), before + 1);
    };
    expectOneMore([&] { return root.getParentNode(); });
    expectOneMore([&] { return root.getFirstChild(); });
    expectOneMore([&] { return root.getLastChild(); });
    expectOneMore([&] { return root.getNextSibling(); });
    expectOneMore([&] { return root.getPreviousSibling(); });
    expectOneMore([&] { return root.getOwnerDocument(); });
    expectOneMore([&] { return root.getChildNodes(); });
    expectOneMore([&] { return root.getAttributes(); });
    expectOneMore([&] { return root.cloneNode(1); });
    expectOneMore([&] { return root.getAttributeNode("n"); });
    expectOneMore([&] { return root.getAttributeNode("absent"); });
    expectOneMore([&] { return root.getAttributeNodeNS("", "n"); });
    expectOneMore([&] { return root.getElementsByTagName("b"); });
    expectOneMore([&] { return root.getElementsByTagNameNS("", "b"); });
    expectOneMore([&] { return root.setAttributeNode(document.createAttribute("new")); });
    expectOneMore([&] { return root.setAttributeNodeNS(document.createAttributeNS("urn:u", "p:new")); });
    expectOneMore([&] { return root.removeAttributeNode(root.getAttributeNode("new")); });
    expectOneMore([&] { return root.appendChild(document.createElement("c")); });
    expectOneMore([&] { return root.insertBefore(document.createElement("d"), root.getFirstChild()); });
    expectOneMore([&] { return root.replaceChild(document.createElement("e"), root.getFirstChild()); });
    expectOneMore([&] { return root.removeChild(root.getFirstChild()); });
    expectOneMore([&] { return document.getDoctype(); });
    expectOneMore([&] { return document.getDocumentElement(); });
    expectOneMore([&] { return document.createElement("x"); });
    expectOneMore([&] { return document.createDocumentFragment(); });
    expectOneMore([&] { return document.createTextNode("x"); });
    expectOneMore([&] { return document.createComment("x"); });
    expectOneMore([&] { return document.createCDATASection("x"); });
    expectOneMore([&] { return document.createProcessingInstruction("x", "y"); });
    expectOneMore([&] { return document.createAttribute("x"); });
    expectOneMore([&] { return document.createEntityReference("x"); });
    expectOneMore([&] { return document.createElementNS("urn:u", "x"); });
    expectOneMore([&] { return document.createAttributeNS("urn:u", "x"); });
    expectOneMore([&] { return document.getElementsByTagName("b"); });
    expectOneMore([&] { return document.getElementsByTagNameNS("", "b"); });
    expectOneMore([&] { return document.getElementById("none"); });
    expectOneMore([&] { return document.createTreeWalker(document, 1, nullptr, 0); });
    expectOneMore([&] { return document.getDoctype().getEntities(); });
    expectOneMore([&] { return document.getDoctype().getNotations(); });
    expectOneMore([&] { return root.getAttributes().item(0); });
    expectOneMore([&] { return root.getAttributes().item(99); });
    expectOneMore([&] { return root.getChildNodes().item(99); });
    expectOneMore([&] { return root.getAttributeNode("n").getOwnerElement(); });
    QRMIDOM_Document other = documentOf("<o/>");
    QRMIDOM_Node foreign = other.getDocumentElement();
    expectOneMore([&] { return document.importNode(foreign, 1); });
    QRMIDOM_Node renamed = root;
    EXPECT_EQ(document.renameNode(renamed, "", "z").getRefCountedNodeImpl(), holder);
    renamed = NULL;
    foreign = NULL;
    EXPECT_EQ(sharesOf(other), 1u);
    EXPECT_EQ(holder->getCount(), before);
}

TEST(Sharing, FailedChangesLeaveTheCountsAsTheyWere)
{
    QRMIDOM_Document document = documentOf("<a><b/></a>");
    QRMIDOM_Element root = document.getDocumentElement();
    const QRMIDOM_Document other = documentOf("<o/>");
    const QRMIDOM_Element foreign = other.getDocumentElement();
    const unsigned int before = sharesOf(document);
    const unsigned int beforeOther = sharesOf(other);
    EXPECT_EQ(domCodeOf([&] { root.appendChild(foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.insertBefore(foreign, foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.replaceChild(foreign, foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.removeChild(foreign); }), 8);
    EXPECT_EQ(domCodeOf([&] { document.createElement("1"); }), 5);
    EXPECT_EQ(domCodeOf([&] { root.setAttribute("1", ""); }), 5);
    EXPECT_EQ(domCodeOf([&] { root.removeAttributeNode(QRMIDOM_Attr()); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.getAttributes().removeNamedItem("x"); }), 8);
    EXPECT_EQ(sharesOf(document), before);
    EXPECT_EQ(sharesOf(other), beforeOther);
}

TEST(Sharing, ACloneThroughAHandleWithoutAHolderOwnsItself)
{
    const QRMIDOM_Document document = documentOf("<a><b/></a>");
    QRMIDOM_Element bare(static_cast<xercesc::DOMElement*>(document.getDocumentElement()));
    {
        const QRMIDOM_Node clone = bare.cloneNode(1);
        EXPECT_NE(clone.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
        EXPECT_EQ(sharesOf(clone), 1u);
        EXPECT_EQ(clone.getRefCountedNodeImpl()->getNode(), clone.getDOM_NodeImpl());
    }
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(Sharing, ACloneOfADocumentOwnsItself)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    const QRMIDOM_Node clone = document.cloneNode(1);
    EXPECT_EQ(sharesOf(clone), 1u);
    EXPECT_EQ(sharesOf(document), 1u);
    EXPECT_EQ(clone.getRefCountedNodeImpl()->getNode(), clone.getDOM_NodeImpl());
}

TEST(Sharing, AHolderWhoseNodeMayNotBeReleasedStays)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Element root(static_cast<xercesc::DOMElement*>(document.getDocumentElement()));
    RefCounted_DOMNode* holder = nullptr;
    {
        const QRMIDOM_Node clone = root.cloneNode(1);
        holder = clone.getRefCountedNodeImpl();
        root.appendChild(clone);
    }
    EXPECT_EQ(holder->getCount(), 0u) << "the destructor has given up its share and said nothing";
    EXPECT_EQ(written(root), "<a><a/></a>");
    root.removeChild(root.getFirstChild());
    holder->cleanup();
    EXPECT_EQ(holder->getNode(), nullptr);
    delete holder;
}

TEST(Sharing, AssigningOverAnAttachedCloneTellsAndLeavesNoShare)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Element root(static_cast<xercesc::DOMElement*>(document.getDocumentElement()));
    QRMIDOM_Node clone = root.cloneNode(1);
    RefCounted_DOMNode* const holder = clone.getRefCountedNodeImpl();
    root.appendChild(clone);
    EXPECT_THROW(clone = document, xercesc::DOMException);
    EXPECT_EQ(clone.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(sharesOf(document), 1u);
    root.removeChild(root.getFirstChild());
    holder->cleanup();
    delete holder;
}

TEST(Sharing, SettingAHolderDoesNotGiveUpTheOldOne)
{
    QRMIDOM_Document first = documentOf("<a/>");
    const QRMIDOM_Document second = documentOf("<b/>");
    QRMIDOM_Node node = first;
    node.setRefCountedNodeImpl(second.getRefCountedNodeImpl());
    EXPECT_EQ(sharesOf(first), 2u);
    EXPECT_EQ(sharesOf(second), 2u);
    first.getRefCountedNodeImpl()->removeReference();
}

TEST(Sharing, ACollectionAssignedToItselfDropsItsShare)
{
    const QRMIDOM_Document document = documentOf("<a n='v'><b/></a>");
    QRMIDOM_NodeList list = document.getDocumentElement().getChildNodes();
    QRMIDOM_NamedNodeMap map = document.getDocumentElement().getAttributes();
    QRMIDOM_TreeWalker walker = QRMIDOM_Document(document).createTreeWalker(document, 1, nullptr, 0);
    EXPECT_EQ(sharesOf(document), 4u);
    const auto assignToItself = [](auto& collection) {
        const auto& same = collection;
        collection = same;
    };
    assignToItself(list);
    assignToItself(map);
    assignToItself(walker);
    EXPECT_EQ(sharesOf(document), 1u);
    EXPECT_EQ(list.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(list.getLength(), 1u);
    EXPECT_EQ(map.getLength(), 1u);
}

TEST(Sharing, ADocumentTypeKeepsTheDocumentItWasGivenTo)
{
    const auto implementation = QRMIDOM_DOMImplementation::getInstance();
    const QRMIDOM_DocumentType doctype = implementation.createDocumentType("a");
    EXPECT_EQ(doctype.getRefCountedNodeImpl(), nullptr);
    QRMIDOM_Document document = implementation.createDocument("", "a", doctype);
    Watch watch(document);
    EXPECT_EQ(doctype.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    EXPECT_EQ(sharesOf(document), 2u);
    document = NULL;
    EXPECT_FALSE(watch.released);
    EXPECT_EQ(doctype.getName(), I18NString("a"));
}

TEST(Sharing, ANullDocumentTypeGetsTheHolderToo)
{
    const QRMIDOM_DocumentType none;
    const QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument("", "a", none);
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(none.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
}

TEST(Sharing, ANullDocumentTypeOfAnotherDocumentChangesSides)
{
    const QRMIDOM_Document former = documentOf("<a/>");
    const QRMIDOM_DocumentType none = former.getDoctype();
    EXPECT_EQ(sharesOf(former), 2u);
    const QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument("", "a", none);
    EXPECT_EQ(sharesOf(former), 1u);
    EXPECT_EQ(sharesOf(document), 2u);
}

TEST(Sharing, AnAllocationThatFailsLeavesBothEntriesInTheBackTrace)
{
    const auto expectBothEntries = [](const QRMOutOfMemoryError& error, const char* file) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_EQ(error.getText(), nullptr);
        ASSERT_EQ(error.getBackTrace().size(), 2u);
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
        EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
        for (const auto& entry : error.getBackTrace()) {
            EXPECT_EQ(entry.fileName, file);
            EXPECT_EQ(entry.context, "");
        }
    };
    xercesc::DOMDocument* const raw = newXercesDocument();
    try {
        const failing_allocator::FailNth fail(1);
        const QRMIDOM_Node node(raw);
        FAIL() << "it was adopted";
    } catch (const QRMOutOfMemoryError& error) {
        expectBothEntries(error, "QRMIDOM_Node.cpp");
    }
    try {
        const failing_allocator::FailNth fail(1);
        const QRMIDOM_Document document(raw);
        FAIL() << "it was adopted";
    } catch (const QRMOutOfMemoryError& error) {
        expectBothEntries(error, "QRMIDOM_Document.cpp");
    }
    const QRMIDOM_Document document(raw);
    const QRMIDOM_Element bare(raw->getDocumentElement());
    for (const QRMIDOM_Node* source :
         {static_cast<const QRMIDOM_Node*>(&document), static_cast<const QRMIDOM_Node*>(&bare)}) {
        try {
            const failing_allocator::FailNth fail(1);
            source->cloneNode(1);
            FAIL() << "it was cloned";
        } catch (const QRMOutOfMemoryError& error) {
            expectBothEntries(error, "QRMIDOM_Node.cpp");
        }
    }
    EXPECT_EQ(sharesOf(document), 1u);
}

} // namespace
