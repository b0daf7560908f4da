// What the library does with whole trees by itself, against Xerces, which calls itself for each level: the same results
// on trees that Xerces can take, and on trees that are deeper.

#include <random>
#include <string>
#include <vector>

#include "QRMUtils/XML/DOMInterface/RefCounted_DOMNode.h"
#include "tests/support/RandomTrees.h"
#include "tests/support/TestDocument.h"
#include "tests/support/TreeComparison.h"

namespace {

using tree_comparison::differenceOf;
using tree_comparison::differenceOfTrees;
using xercesc::DOMNode;

constexpr int kDepth = 1000000;
constexpr int kRandomTrees = 400;

/// Everything that a document may hold: declarations, defaults, identifiers, references in references, all kinds of
/// nodes, and texts that normal forms put together.
constexpr const char* kRichDocument =
    "<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?>"
    "<!DOCTYPE r [<!ELEMENT r ANY><!NOTATION n SYSTEM 'n'><!ENTITY u SYSTEM 'u' NDATA n>"
    "<!ENTITY inner '<i k=\"1\">t</i>'><!ENTITY e 'a<b>c&inner;</b><!--d--><?p q?>'>"
    "<!ATTLIST i k CDATA #IMPLIED d CDATA 'default' id ID #IMPLIED>]>"
    "<!--before--><r xmlns:p='urn:p'>&e;<p:x p:y='1' z='&lt;'/><![CDATA[ c ]]>text<i id='x'>&inner;</i><?t "
    "d?>"
    "<!--in-->after<i/></r><?after all?>";

template <class Function>
void forEachDocument(Function&& function)
{
    RandomNamespaceTrees random(20);
    for (int i = 0; i < kRandomTrees; ++i) {
        SCOPED_TRACE("tree " + std::to_string(i));
        function(random.next());
        if (testing::Test::HasFailure()) {
            return;
        }
    }
    SCOPED_TRACE("the rich document");
    function(documentOf(kRichDocument));
}

/// Every node of a tree, attributes and declarations too.
std::vector<DOMNode*> nodesOf(DOMNode* root)
{
    std::vector<DOMNode*> nodes{root};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (const xercesc::DOMNamedNodeMap* const attributes = nodes[i]->getAttributes()) {
            for (XMLSize_t k = 0; k < attributes->getLength(); ++k) {
                nodes.push_back(attributes->item(k));
            }
        }
        if (nodes[i]->getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
            const auto* const doctype = static_cast<const xercesc::DOMDocumentType*>(nodes[i]);
            for (const xercesc::DOMNamedNodeMap* const map :
                 {doctype->getEntities(), doctype->getNotations()}) {
                for (XMLSize_t k = 0; k < map->getLength(); ++k) {
                    nodes.push_back(map->item(k));
                }
            }
        }
        for (DOMNode* child = nodes[i]->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
            nodes.push_back(child);
        }
    }
    return nodes;
}

TEST(TreeOperations, CloneEveryNodeAsXercesDoes)
{
    forEachDocument([](const QRMIDOM_Document& document) {
        for (DOMNode* const node : nodesOf(document)) {
            if (node->getNodeType() == DOMNode::DOCUMENT_NODE) {
                continue;
            }
            for (const bool deep : {false, true}) {
                const QRMIDOM_Node copy = QRMIDOM_Node(node).cloneNode(deep ? 1 : 0);
                EXPECT_EQ(differenceOfTrees(node->cloneNode(deep), copy), "");
            }
        }
    });
}

TEST(TreeOperations, CloneDocumentsAsXercesDoes)
{
    forEachDocument([](const QRMIDOM_Document& document) {
        const DOMNode* const node = document;
        const QRMIDOM_Document expected(static_cast<xercesc::DOMDocument*>(node->cloneNode(true)));
        const QRMIDOM_Document copy = document.cloneNode(1);
        const xercesc::DOMDocument* const expectedDocument = expected;
        const xercesc::DOMDocument* const copiedDocument = copy;
        EXPECT_EQ(differenceOf(expectedDocument, copiedDocument), "");
        EXPECT_EQ(copiedDocument->getDocumentElement() == nullptr,
                  expectedDocument->getDocumentElement() == nullptr);
        EXPECT_EQ(copiedDocument->getDoctype() == nullptr, expectedDocument->getDoctype() == nullptr);
    });
}

TEST(TreeOperations, ImportEveryNodeAsXercesDoes)
{
    forEachDocument([](const QRMIDOM_Document& document) {
        const QRMIDOM_Document expectedTarget =
            documentOf("<!DOCTYPE r [<!ENTITY e 'other <o/>'><!ATTLIST a new CDATA 'n'>]><r>&e;</r>");
        QRMIDOM_Document target =
            documentOf("<!DOCTYPE r [<!ENTITY e 'other <o/>'><!ATTLIST a new CDATA 'n'>]><r>&e;</r>");
        xercesc::DOMDocument* const expected = expectedTarget;
        xercesc::DOMDocument* const actual = target;
        for (DOMNode* const node : nodesOf(document)) {
            if (node->getNodeType() == DOMNode::DOCUMENT_NODE
                || node->getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
                continue; // refused
            }
            QRMIDOM_Node source(node);
            DOMNode* const expectedNode = expected->importNode(node, true);
            DOMNode* const actualNode = target.importNode(source, 1);
            EXPECT_EQ(differenceOfTrees(expectedNode, actualNode), "");
            if (actualNode->getNodeType() == DOMNode::ELEMENT_NODE) {
                expected->getDocumentElement()->appendChild(expectedNode);
                actual->getDocumentElement()->appendChild(actualNode);
            }
        }
        const xercesc::DOMDocument* const a = expected;
        const xercesc::DOMDocument* const b = actual;
        EXPECT_EQ(differenceOf(a, b), "");
    });
}

TEST(TreeOperations, CloneAndImportFragments)
{
    QRMIDOM_Document document = documentOf("<r/>");
    QRMIDOM_DocumentFragment fragment = document.createDocumentFragment();
    fragment.appendChild(document.createTextNode("a"));
    fragment.appendChild(document.createElement("b")).appendChild(document.createComment("c"));
    const DOMNode* const node = fragment;
    xercesc::DOMDocument* const raw = document;
    EXPECT_EQ(differenceOfTrees(node->cloneNode(true), fragment.cloneNode(1)), "");
    EXPECT_EQ(differenceOfTrees(raw->importNode(node, true), document.importNode(fragment, 1)), "");
}

/// A document of every mixture of short texts, empty ones too, with comments, CDATA sections, elements and references.
QRMIDOM_Document mixedDocument(std::mt19937& random)
{
    QRMIDOM_Document document =
        documentOf("<!DOCTYPE r [<!ENTITY e 'x<!--c-->y'>]><!--1--><r/><!--2--><?p?>");
    std::vector<QRMIDOM_Node> parents{document.getDocumentElement()};
    for (unsigned step = 0; step < 40; ++step) {
        QRMIDOM_Node parent = parents[random() % parents.size()];
        switch (random() % 9) {
        case 0: parent.appendChild(document.createTextNode("")); break;
        case 1:
        case 2:
        case 3: parent.appendChild(document.createTextNode(I18NString(std::to_string(step).c_str()))); break;
        case 4:
        case 5: parent.appendChild(document.createComment("c")); break;
        case 6: parent.appendChild(document.createCDATASection(random() % 3 == 0 ? "" : "d")); break;
        case 7: parent.appendChild(document.createEntityReference("e")); break;
        default: {
            QRMIDOM_Element element = document.createElement("e");
            element.setAttribute("a", "1");
            element.getAttributeNode("a").appendChild(document.createTextNode("2"));
            parents.push_back(parent.appendChild(element));
        }
        }
    }
    return document;
}

TEST(TreeOperations, NormalizeAsXercesDoes)
{
    std::mt19937 random(21);
    for (int i = 0; i < kRandomTrees && !HasFailure(); ++i) {
        SCOPED_TRACE("tree " + std::to_string(i));
        const QRMIDOM_Document document = mixedDocument(random);
        const QRMIDOM_Document expected = document.cloneNode(1);
        QRMIDOM_Document copy = document.cloneNode(1);
        xercesc::DOMDocument* const expectedDocument = expected;
        expectedDocument->normalize();
        copy.normalize();
        const xercesc::DOMDocument* const a = expected;
        const xercesc::DOMDocument* const b = copy;
        EXPECT_EQ(differenceOf(a, b), "");
    }
}

/// Which nodes of the tree stay, in document order, as places in the list.
std::vector<std::size_t> placesOf(DOMNode* root, const std::vector<DOMNode*>& nodes)
{
    std::vector<std::size_t> places;
    for (const DOMNode* const node : nodesOf(root)) {
        const auto found = std::find(nodes.begin(), nodes.end(), node);
        places.push_back(static_cast<std::size_t>(found - nodes.begin()));
    }
    return places;
}

TEST(TreeOperations, NormalizeDocumentsAsXercesDoesAndKeepTheSameNodes)
{
    std::mt19937 random(22);
    for (int i = 0; i < kRandomTrees && !HasFailure(); ++i) {
        SCOPED_TRACE("tree " + std::to_string(i));
        const QRMIDOM_Document document = mixedDocument(random);
        QRMIDOM_Document expected = document.cloneNode(1);
        QRMIDOM_Document copy = document.cloneNode(1);
        const std::vector<DOMNode*> expectedNodes = nodesOf(expected);
        const std::vector<DOMNode*> nodes = nodesOf(copy);
        copy.normalizeDocument();
        xercesc::DOMDocument* const raw = expected;
        raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMCDATASections, false);
        raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMComments, false);
        raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMNamespaces, false);
        raw->normalizeDocument();
        const xercesc::DOMDocument* const a = expected;
        const xercesc::DOMDocument* const b = copy;
        EXPECT_EQ(differenceOf(a, b), "");
        EXPECT_EQ(placesOf(copy, nodes), placesOf(expected, expectedNodes));
    }
}

class DeletionRecorder : public xercesc::DOMUserDataHandler
{
public:
    void handle(DOMOperationType operation, const XMLCh* /*key*/, void* data, const DOMNode* /*source*/,
                DOMNode* /*destination*/) override
    {
        if (operation == NODE_DELETED) {
            deleted.push_back(static_cast<char*>(data) - static_cast<char*>(nullptr));
        }
    }
    std::vector<std::ptrdiff_t> deleted;
};

void releaseAsHandlesDo(DOMNode* node)
{
    RefCounted_DOMNode holder;
    holder.setNode(node);
    holder.cleanup();
}

TEST(TreeOperations, ReleaseTheNodesThatXercesReleases)
{
    forEachDocument([](const QRMIDOM_Document& document) {
        DOMNode* const root = document.getDocumentElement();
        DeletionRecorder recorders[2];
        for (int side = 0; side < 2; ++side) {
            DOMNode* const copy = root->cloneNode(true);
            char* number = nullptr;
            for (DOMNode* const node : nodesOf(copy)) {
                node->setUserData(u"number", ++number, &recorders[side]);
            }
            side == 0 ? copy->release() : releaseAsHandlesDo(copy);
        }
        // Xerces comes to attributes after the children, here they come with their element.
        EXPECT_EQ(recorders[1].deleted.at(0), recorders[0].deleted.at(0));
        for (DeletionRecorder& recorder : recorders) {
            std::sort(recorder.deleted.begin(), recorder.deleted.end());
        }
        EXPECT_EQ(recorders[0].deleted, recorders[1].deleted);
    });
}

TEST(TreeOperations, ReleasedNodesServeAgain)
{
    QRMIDOM_Document document = documentOf("<r><a><b>t</b><c/></a></r>");
    DOMNode* const copy = document.getDocumentElement()->cloneNode(true);
    const std::vector<DOMNode*> nodes = nodesOf(copy);
    releaseAsHandlesDo(copy);
    const DOMNode* const text = document.createTextNode("again");
    const DOMNode* const element = document.createElementNS("", "again");
    EXPECT_NE(std::find(nodes.begin(), nodes.end(), text), nodes.end());
    EXPECT_NE(std::find(nodes.begin(), nodes.end(), element), nodes.end());
}

TEST(TreeOperations, RefuseToReleaseANodeThatHasAParent)
{
    const QRMIDOM_Document document = documentOf("<r><a><b>t</b></a></r>");
    DOMNode* const child = document.getDocumentElement().getFirstChild();
    EXPECT_THROW(releaseAsHandlesDo(child), xercesc::DOMException);
    EXPECT_EQ(written(document.getDocumentElement()), "<r><a><b>t</b></a></r>");
}

/// A chain of elements with two texts behind some of them.
QRMIDOM_Document deepDocument()
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Node inner = document.createElement("e");
    for (int i = 1; i < kDepth; ++i) {
        QRMIDOM_Element outer = document.createElement("e");
        outer.appendChild(inner);
        if (i % 50 == 0) {
            outer.appendChild(document.createTextNode("a"));
            outer.appendChild(document.createTextNode("b"));
        }
        inner = outer;
    }
    document.appendChild(inner);
    return document;
}

/// The levels; negative where a last text is not the expected one.
long depthOf(const QRMIDOM_Node& root, const char* text)
{
    long depth = 0;
    for (const DOMNode* node = root; node != nullptr; node = node->getFirstChild()) {
        ++depth;
        const DOMNode* const last = node->getLastChild();
        if (last != nullptr && last->getNodeType() == DOMNode::TEXT_NODE
            && I18NString(last->getNodeValue()) != I18NString(text)) {
            return -depth;
        }
    }
    return depth;
}

TEST(DeepTreeOperations, CloneImportNormalizeAndReleaseAMillionLevels)
{
    QRMIDOM_Document document = deepDocument();
    {
        const QRMIDOM_Node clone = document.getDocumentElement().cloneNode(1);
        EXPECT_EQ(depthOf(clone, "b"), kDepth);
    }
    {
        QRMIDOM_Document copy = document.cloneNode(1);
        EXPECT_EQ(depthOf(copy.getDocumentElement(), "b"), kDepth);
        copy.normalizeDocument();
        EXPECT_EQ(depthOf(copy.getDocumentElement(), "ab"), kDepth);
    }
    {
        QRMIDOM_Document other = documentOf("<r/>");
        QRMIDOM_Element root = document.getDocumentElement();
        EXPECT_EQ(depthOf(other.importNode(root, 1), "b"), kDepth);
        QRMIDOM_Element target = other.getDocumentElement();
        EXPECT_EQ(depthOf(QRMIDOM_Helper::appendChild(target, root), "b"), kDepth);
        EXPECT_EQ(depthOf(QRMIDOM_Helper::insertBefore(target, target.getFirstChild(), root), "b"), kDepth);
        EXPECT_EQ(target.getChildNodes().getLength(), 2u);
    }
    document.normalize();
    EXPECT_EQ(depthOf(document.getDocumentElement(), "ab"), kDepth);
}

TEST(DeepTreeOperations, ReleaseADeepCloneThatAHandleOwns)
{
    QRMIDOM_Document document = deepDocument();
    // A handle from a plain pointer shares no document, so its clone is its own.
    const QRMIDOM_Node plain(static_cast<DOMNode*>(document.getDocumentElement()));
    QRMIDOM_Node clone = plain.cloneNode(1);
    EXPECT_EQ(depthOf(clone, "b"), kDepth);
    const DOMNode* const released = clone;
    clone = NULL;
    bool isUsedAgain = false;
    for (int i = 0; i < kDepth && !isUsedAgain; ++i) {
        isUsedAgain = static_cast<const DOMNode*>(document.createElement("n")) == released;
    }
    EXPECT_TRUE(isUsedAgain);
}

/// An entity whose content is that deep, referred to in the document element.
std::string deepEntity(int levels)
{
    std::string content;
    for (int i = 0; i < levels; ++i) {
        content += "<e>";
    }
    for (int i = 0; i < levels; ++i) {
        content += "</e>";
    }
    return "<!DOCTYPE r [<!ENTITY deep '" + content + "'>]><r>&deep;";
}

TEST(DeepTreeOperations, ParseReferencesToDeepContentAndCopyThem)
{
    constexpr int kLevels = 70000; // where Xerces' parser overflows the stack; it takes quadratic time
    QRMIDOM_Document document = documentOf(deepEntity(kLevels) + "</r>");
    const QRMIDOM_Node reference = document.getDocumentElement().getFirstChild();
    EXPECT_EQ(reference.getNodeType(), 5);
    EXPECT_EQ(depthOf(reference, ""), kLevels + 1);
    const QRMIDOM_Node entity = document.getDoctype().getEntities().item(0);
    EXPECT_EQ(depthOf(entity, ""), kLevels + 1);
    EXPECT_EQ(depthOf(entity.cloneNode(1), ""), kLevels + 1);
    EXPECT_EQ(depthOf(entity.cloneNode(0), ""), kLevels + 1) << "an entity always has its content";
    EXPECT_EQ(depthOf(document.createEntityReference("deep"), ""), kLevels + 1);
    const QRMIDOM_Document copy = document.cloneNode(1);
    EXPECT_EQ(depthOf(copy.getDoctype().getEntities().getNamedItem("deep"), ""), kLevels + 1);
    EXPECT_EQ(depthOf(copy.getDocumentElement().getFirstChild(), ""), 1) << "as in a clone by Xerces";
}

TEST(DeepTreeOperations, GiveEntitiesTheirContentInAPartialTree)
{
    constexpr int kLevels = 70000;
    const std::string text = deepEntity(kLevels) + "</wrong>";
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(text.data(), static_cast<int>(text.size()), document), 0);
    EXPECT_EQ(depthOf(document.getDoctype().getEntities().item(0), ""), kLevels + 1);
}

TEST(DeepTreeOperations, ParseAChainOfReferences)
{
    constexpr int kEntities = 2000;
    std::string text = "<!DOCTYPE r [<!ENTITY e0 'end'>";
    for (int i = 1; i < kEntities; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '&#38;e" + std::to_string(i - 1) + ";'>";
    }
    const QRMIDOM_Document document = documentOf(text + "]><r>&e" + std::to_string(kEntities - 1) + ";</r>");
    EXPECT_EQ(depthOf(document.getDocumentElement(), "end"), kEntities + 2);
}

} // namespace
