#include <functional>
#include <vector>

#include <xercesc/util/OutOfMemoryException.hpp>

#include "QRMCore/QRMThrowable.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/TestDocument.h"

namespace {

constexpr unsigned long kAll = xercesc::DOMNodeFilter::SHOW_ALL;
constexpr unsigned long kElements = xercesc::DOMNodeFilter::SHOW_ELEMENT;

class Filter : public QRMIDOM_NodeFilter
{
public:
    explicit Filter(std::function<short(const QRMIDOM_Node&)> decide) : m_decide(std::move(decide)) {}
    short acceptNode(QRMIDOM_Node node) override { return m_decide(node); }

private:
    std::function<short(const QRMIDOM_Node&)> m_decide;
};

Filter answering(const char* name, short answer)
{
    return Filter([=](const QRMIDOM_Node& node) { return node.matchNodeName(name) ? answer : short(1); });
}

template <class Traversal>
std::string names(Traversal traversal)
{
    std::string all;
    for (QRMIDOM_Node node = traversal.nextNode(); !node.isNull(); node = traversal.nextNode()) {
        all += node.getNodeName().toUtf8() + " ";
    }
    return all;
}

class Traversal : public testing::Test
{
protected:
    QRMIDOM_Document document = documentOf("<a><b><c/>t</b><d/></a>");
    QRMIDOM_Node root = document.getDocumentElement();
};

TEST_F(Traversal, IteratesOverASubtreeInDocumentOrder)
{
    EXPECT_EQ(names(document.createNodeIterator(root, kAll, nullptr, 0)), "a b c #text d ");
    EXPECT_EQ(names(document.createNodeIterator(document, kElements, nullptr, 0)), "a b c d ");
    EXPECT_EQ(names(document.createNodeIterator(root.getFirstChild(), kElements, nullptr, 0)), "b c ");
}

TEST_F(Traversal, GoesBackFromTheEndAndStopsAtTheStart)
{
    QRMIDOM_NodeIterator iterator = document.createNodeIterator(root, kElements, nullptr, 0);
    EXPECT_TRUE(iterator.previousNode().isNull());
    EXPECT_EQ(names(iterator), "a b c d ");
    EXPECT_TRUE(iterator.nextNode().isNull());
    EXPECT_EQ(iterator.previousNode().getNodeName(), I18NString("d"));
    EXPECT_EQ(iterator.previousNode().getNodeName(), I18NString("c"));
}

TEST_F(Traversal, WalksInEveryDirection)
{
    QRMIDOM_TreeWalker walker = document.createTreeWalker(root, kElements, nullptr, 0);
    EXPECT_TRUE(walker.getCurrentNode() == root);
    EXPECT_EQ(walker.firstChild().getNodeName(), I18NString("b"));
    EXPECT_EQ(walker.nextSibling().getNodeName(), I18NString("d"));
    EXPECT_TRUE(walker.nextSibling().isNull());
    EXPECT_EQ(walker.getCurrentNode().getNodeName(), I18NString("d")) << "it stays where it is";
    EXPECT_EQ(walker.previousSibling().getNodeName(), I18NString("b"));
    EXPECT_EQ(walker.lastChild().getNodeName(), I18NString("c")) << "text is not shown";
    EXPECT_EQ(walker.parentNode().getNodeName(), I18NString("b"));
    EXPECT_EQ(walker.previousNode().getNodeName(), I18NString("a"));
    EXPECT_TRUE(walker.previousNode().isNull());
    EXPECT_TRUE(walker.parentNode().isNull());
    EXPECT_EQ(names(walker), "b c d ");
}

TEST_F(Traversal, KeepsTheRootToItself)
{
    EXPECT_TRUE(document.createNodeIterator(root, kAll, nullptr, 0).getRoot().isNull());
    EXPECT_TRUE(document.createTreeWalker(root, kAll, nullptr, 0).getRoot().isNull());
    EXPECT_EQ(document.createTreeWalker(root, kAll, nullptr, 0).getRoot().getRefCountedNodeImpl(), nullptr);
}

TEST_F(Traversal, TellsWhatItWasMadeWith)
{
    for (const unsigned long mask : {kAll, kElements, 0x80UL, 0UL}) {
        for (const int expand : {0, 7}) {
            EXPECT_EQ(document.createNodeIterator(root, mask, nullptr, expand).getWhatToShow(), mask);
            EXPECT_EQ(document.createTreeWalker(root, mask, nullptr, expand).getWhatToShow(), mask);
            EXPECT_EQ(document.createNodeIterator(root, mask, nullptr, expand).getExpandEntityReference(),
                      expand != 0);
            EXPECT_EQ(document.createTreeWalker(root, mask, nullptr, expand).getExpandEntityReferences(),
                      expand != 0);
        }
    }
}

TEST_F(Traversal, AFilterSkipsANodeOrRejectsASubtree)
{
    Filter skip = answering("b", 3);
    Filter reject = answering("b", 2);
    EXPECT_EQ(names(document.createTreeWalker(root, kElements, &skip, 0)), "c d ");
    EXPECT_EQ(names(document.createTreeWalker(root, kElements, &reject, 0)), "d ");
    EXPECT_EQ(names(document.createNodeIterator(root, kElements, &skip, 0)), "a c d ");
    EXPECT_EQ(names(document.createNodeIterator(root, kElements, &reject, 0)), "a c d ");
}

TEST_F(Traversal, PassesOnWhateverAFilterAnswers)
{
    for (const short odd : {short(0), short(7), short(-1)}) {
        Filter filter = answering("b", odd);
        EXPECT_EQ(int{filter.getNodeFilter()->acceptNode(root.getFirstChild().getDOM_NodeImpl())}, odd);
        EXPECT_EQ(names(document.createNodeIterator(root, kElements, &filter, 0)), "a c d ");
    }
}

TEST_F(Traversal, GivesAFilterHandlesThatShareNothing)
{
    std::vector<QRMIDOM_Node> seen;
    Filter filter([&](const QRMIDOM_Node& node) {
        seen.push_back(node);
        return short(1);
    });
    names(document.createTreeWalker(root, kElements, &filter, 0));
    ASSERT_FALSE(seen.empty());
    for (const QRMIDOM_Node& node : seen) {
        EXPECT_EQ(node.getRefCountedNodeImpl(), nullptr);
    }
}

TEST_F(Traversal, SurvivesAFilterThatIsShownTheDocument)
{
    std::vector<QRMIDOM_Node> kept;
    Filter filter([&](const QRMIDOM_Node& node) {
        kept.push_back(node);
        return short(1);
    });
    EXPECT_EQ(names(document.createNodeIterator(document, kAll, &filter, 0)), "#document a b c #text d ");
    EXPECT_EQ(names(document.createTreeWalker(document, kElements, &filter, 0)), "a b c d ");
    kept.clear();
    EXPECT_EQ(written(root), "<a><b><c/>t</b><d/></a>");
}

TEST_F(Traversal, LetsTheExceptionOfAFilterThrough)
{
    Filter filter([&](const QRMIDOM_Node& node) -> short {
        if (node.getNodeType() == 9) {
            throw 42;
        }
        return 1;
    });
    EXPECT_THROW(document.createNodeIterator(document, kAll, &filter, 0), int);
    EXPECT_EQ(sharesOf(document), 2u);
    EXPECT_EQ(written(root), "<a><b><c/>t</b><d/></a>");
}

TEST_F(Traversal, RefusesToMoveADetachedIterator)
{
    QRMIDOM_NodeIterator iterator = document.createNodeIterator(root, kElements, nullptr, 0);
    iterator.nextNode();
    iterator.detach();
    iterator.detach();
    EXPECT_EQ(domCodeOf([&] { iterator.nextNode(); }), 11);
    EXPECT_EQ(domCodeOf([&] { iterator.previousNode(); }), 11);
    EXPECT_EQ(iterator.getWhatToShow(), kElements);
}

TEST_F(Traversal, RefusesANullRoot)
{
    EXPECT_EQ(domCodeOf([&] { document.createNodeIterator(QRMIDOM_Node(), kAll, nullptr, 0); }), 9);
    EXPECT_EQ(domCodeOf([&] { document.createTreeWalker(QRMIDOM_Node(), kAll, nullptr, 0); }), 9);
}

TEST_F(Traversal, FollowsRemovalsBeforeItsFirstStep)
{
    QRMIDOM_NodeIterator iterator = document.createNodeIterator(root, kElements, nullptr, 0);
    root.removeChild(root.getFirstChild());
    EXPECT_EQ(names(iterator), "a d ");
}

TEST_F(Traversal, FollowsRemovalsWhereNothingIsAccepted)
{
    Filter none([](const QRMIDOM_Node&) { return short(3); });
    QRMIDOM_NodeIterator byMask =
        document.createNodeIterator(root, xercesc::DOMNodeFilter::SHOW_COMMENT, nullptr, 0);
    QRMIDOM_NodeIterator byFilter = document.createNodeIterator(root, kAll, &none, 0);
    QRMIDOM_NodeIterator byNothing = document.createNodeIterator(root, 0, nullptr, 0);
    for (QRMIDOM_NodeIterator* iterator : {&byMask, &byFilter, &byNothing}) {
        EXPECT_TRUE(iterator->nextNode().isNull());
        EXPECT_TRUE(iterator->previousNode().isNull());
        EXPECT_TRUE(iterator->nextNode().isNull());
    }
    root.removeChild(root.getFirstChild());
    root.appendChild(document.createComment("new"));
    EXPECT_EQ(names(byMask), "#comment ");
    EXPECT_TRUE(byFilter.nextNode().isNull());
    EXPECT_TRUE(byNothing.nextNode().isNull());
    document.removeChild(root);
}

TEST_F(Traversal, GoesIntoEntityReferencesWhereAsked)
{
    QRMIDOM_Document entities = documentOf("<!DOCTYPE a [<!ENTITY e '<x/>'>]><a>t&e;<d/></a>");
    EXPECT_EQ(names(entities.createNodeIterator(entities.getDocumentElement(), kElements, nullptr, 0)),
              "a d ");
    EXPECT_EQ(names(entities.createNodeIterator(entities.getDocumentElement(), kElements, nullptr, 1)),
              "a x d ");
}

TEST_F(Traversal, KeepsTheDocument)
{
    QRMIDOM_NodeIterator iterator = document.createNodeIterator(root, kElements, nullptr, 0);
    QRMIDOM_NodeIterator copy(iterator);
    QRMIDOM_NodeIterator assigned;
    assigned = copy;
    EXPECT_EQ(sharesOf(document), 5u);
    EXPECT_EQ(iterator.nextNode().getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    const QRMIDOM_NodeIterator bare(static_cast<xercesc::DOMNodeIterator*>(iterator));
    EXPECT_EQ(sharesOf(document), 5u);
}

TEST_F(Traversal, FailsOnNullHandlesAndComparesWithNullOnly)
{
    QRMIDOM_NodeIterator iterator;
    QRMIDOM_TreeWalker walker;
    EXPECT_TRUE(iterator == nullptr);
    EXPECT_FALSE(iterator != NULL);
    EXPECT_TRUE(walker == nullptr);
    EXPECT_FALSE(walker != NULL);
    EXPECT_EQ(assertionOf([&] { (void)(iterator == &iterator); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(iterator != &iterator); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(walker == &walker); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { (void)(walker != &walker); }), kNotNullPtr);
    EXPECT_EQ(assertionOf([&] { walker.setRefCountedNodeImpl(nullptr); }), "QRM_ASSERT(refCountedNodeImpl);");
    QRMIDOM_Document null;
    EXPECT_EQ(assertionOf([&] { null.createNodeIterator(root, kAll, nullptr, 0); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createTreeWalker(root, kAll, nullptr, 0); }), kNullHandle);
}

TEST(NodeFilter, IsKnownToItsAdapter)
{
    Filter filter([](const QRMIDOM_Node&) { return short(1); });
    const auto* const adapter = dynamic_cast<QRMIDOM_NodeFilter::NodeFilterAdapter*>(filter.getNodeFilter());
    ASSERT_NE(adapter, nullptr);
    EXPECT_EQ(adapter->getNodeFilter(), &filter);
    EXPECT_EQ(QRMIDOM_NodeFilter::NodeFilterAdapter().getNodeFilter(), nullptr);
}

TEST_F(Traversal, TurnsXercesRunningOutOfMemoryIntoTheErrorOfTheFamily)
{
    bool failing = false;
    Filter filter([&failing](const QRMIDOM_Node&) -> short {
        if (failing) {
            throw xercesc::OutOfMemoryException();
        }
        return 1;
    });
    QRMIDOM_NodeIterator iterator = document.createNodeIterator(root, kAll, &filter, 0);
    failing = true;
    const auto expectError = [](auto&& call, int number) {
        try {
            call();
            ADD_FAILURE() << "it worked";
        } catch (const QRMOutOfMemoryError& error) {
            EXPECT_EQ(error.getCode(), 300);
            EXPECT_STREQ(error.getText(), "Out of memory");
            ASSERT_EQ(error.getBackTrace().size(), 1u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_NodeIterator.cpp");
            EXPECT_EQ(error.getBackTrace()[0].lineNumber, number);
            EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM -> Xerces");
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
        }
    };
    expectError([&] { iterator.nextNode(); }, 136);
    failing = false;
    iterator.nextNode();
    failing = true;
    expectError([&] { iterator.previousNode(); }, 159);
}

TEST(NodeFilter, NamesItsPlaceWhenThereIsNoMemory)
{
    try {
        const failing_allocator::FailNth fail(1);
        // An empty function needs no memory of its own.
        const Filter filter(nullptr);
        FAIL() << "it was made";
    } catch (const QRMOutOfMemoryError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_EQ(error.getText(), nullptr);
        ASSERT_EQ(error.getBackTrace().size(), 2u);
        for (const auto& entry : error.getBackTrace()) {
            EXPECT_EQ(entry.fileName, "QRMIDOM_NodeFilter.cpp");
            EXPECT_EQ(entry.lineNumber, 42);
        }
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
        EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
    }
}

} // namespace
