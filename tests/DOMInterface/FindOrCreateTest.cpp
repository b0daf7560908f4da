#include <algorithm>

#include "tests/support/RandomTrees.h"
#include "tests/support/TestDocument.h"

namespace {

class FindOrCreate : public testing::Test
{
protected:
    void use(const char* xml)
    {
        document = documentOf(xml);
        cfg = document.getDocumentElement();
    }
    std::string tree() { return written(document.getDocumentElement()); }

    QRMIDOM_Document document;
    QRMIDOM_Element cfg;
};

TEST_F(FindOrCreate, MakesEveryMissingStepOnce)
{
    use("<cfg/>");
    const QRMIDOM_Element c = QRMIDOM_Helper::findOrCreateElement(document, "a/b/c");
    EXPECT_EQ(tree(), "<cfg><a><b><c/></b></a></cfg>");
    EXPECT_EQ(c.getTagName(), "c");
    EXPECT_EQ(c.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(document, "a/b/c"), c);
    EXPECT_EQ(tree(), "<cfg><a><b><c/></b></a></cfg>");
}

TEST_F(FindOrCreate, MakesWhatIsMissingBelowWhatIsThere)
{
    use("<cfg><a><x/></a></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(cfg, "a/b/c").getTagName(), "c");
    EXPECT_EQ(tree(), "<cfg><a><x/><b><c/></b></a></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(cfg, "a/b/c/d").getTagName(), "d");
    EXPECT_EQ(tree(), "<cfg><a><x/><b><c><d/></c></b></a></cfg>");
}

TEST_F(FindOrCreate, TakesManySeparatorsForOne)
{
    use("<cfg/>");
    const QRMIDOM_Element b = QRMIDOM_Helper::findOrCreateElement(document, "//a//b/");
    EXPECT_EQ(tree(), "<cfg><a><b/></a></cfg>");
    for (const char* const path : {"a/b", "/a/b", "a//b", "a/b/", "a/b//", "///a///b///"}) {
        EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(document, path), b) << path;
    }
    const QRMIDOM_Element n = QRMIDOM_Helper::findOrCreateElement(document, "n//");
    EXPECT_EQ(n.getTagName(), "n");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(document, "n//"), n);
    EXPECT_EQ(tree(), "<cfg><a><b/></a><n/></cfg>");
}

TEST_F(FindOrCreate, FindsEveryStepOnAnyLevel)
{
    use("<cfg><x><b/></x></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(cfg, "b"), cfg.getFirstChild().getFirstChild());
    EXPECT_EQ(tree(), "<cfg><x><b/></x></cfg>");
    QRMIDOM_Helper::findOrCreateElement(cfg, "b/c");
    EXPECT_EQ(tree(), "<cfg><x><b><c/></b></x></cfg>");
}

TEST_F(FindOrCreate, NeverFindsTheDocumentElement)
{
    use("<cfg/>");
    const QRMIDOM_Element inner = QRMIDOM_Helper::findOrCreateElement(document, "cfg");
    EXPECT_EQ(tree(), "<cfg><cfg/></cfg>");
    EXPECT_EQ(inner, cfg.getFirstChild());
}

TEST_F(FindOrCreate, ComparesQualifiedNamesAndMakesElementsWithoutNamespaces)
{
    use("<cfg xmlns='u' xmlns:p='u'><p:a/></cfg>");
    const QRMIDOM_Element a = QRMIDOM_Helper::findOrCreateElement(document, "a");
    EXPECT_EQ(a, cfg.getLastChild());
    EXPECT_TRUE(a.getNamespaceURI().empty());
    EXPECT_TRUE(a.getLocalName().empty());
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(document, "p:a"), cfg.getFirstChild());
}

TEST_F(FindOrCreate, GivesTheNullHandleForPathsThatSayNothing)
{
    use("<cfg/>");
    for (const char* const path : {"", "/", "///"}) {
        for (const QRMIDOM_Node& start : {QRMIDOM_Node(document), QRMIDOM_Node(cfg), QRMIDOM_Node()}) {
            EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElement(start, path).isNull()) << path;
            EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElementWithAttribute(start, path, "k", "v").isNull());
            EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElementWithText(start, path, "t").isNull());
        }
    }
    EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElement(QRMIDOM_Node(), "a/b").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElementWithAttribute(QRMIDOM_Node(), "a/b", "k", "v").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findOrCreateElementWithText(QRMIDOM_Node(), "a/b", "t").isNull());
    EXPECT_EQ(tree(), "<cfg/>");
}

TEST_F(FindOrCreate, KeepsWhatItMadeBeforeAnInvalidName)
{
    use("<cfg/>");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(document, "a/b/1x/c"); }), 5);
    EXPECT_EQ(tree(), "<cfg><a><b/></a></cfg>");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "p/q r", "k", "v"); }),
              5);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithText(cfg, "q/a b", "t"); }), 5);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "m", "1", "v"); }), 5);
    EXPECT_EQ(tree(), "<cfg><a><b/></a><p/><q/></cfg>");
}

TEST_F(FindOrCreate, FailsAnAssertionWithoutADocumentElement)
{
    const QRMIDOM_Document empty = emptyDocument();
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::findOrCreateElement(empty, "a"); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::findOrCreateElementWithAttribute(empty, "a/b", "k", "v"); }),
              kNullHandle);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::findOrCreateElementWithText(empty, "a/b", "t"); }),
              kNullHandle);
    EXPECT_FALSE(empty.hasChildNodes());
}

TEST_F(FindOrCreate, RefusesWhatTheTreeRefuses)
{
    use("<!DOCTYPE cfg [<!ENTITY e '<i/>'>]><cfg at='v'>text&e;</cfg>");
    const QRMIDOM_Node text = cfg.getFirstChild();
    const QRMIDOM_Node inside = cfg.getLastChild().getFirstChild();
    ASSERT_EQ(inside.getNodeName(), "i");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(text, "a"); }), 3);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(cfg.getAttributeNode("at"), "a"); }), 3);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(inside, "a"); }), 7);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(cfg.getLastChild(), "a"); }), 7);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithText(inside, "a", "t"); }), 7);
    const QRMIDOM_DocumentType loose =
        QRMIDOM_DOMImplementation::getInstance().createDocumentType("d", "", "");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElement(loose, "a"); }), 9);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithAttribute(loose, "a", "k", "v"); }), 9);
    loose.getDOM_NodeImpl()->release();
    EXPECT_EQ(tree(), "<cfg at=\"v\">text&e;</cfg>");
}

TEST_F(FindOrCreate, WorksInAFragment)
{
    use("<cfg/>");
    const QRMIDOM_DocumentFragment fragment = document.createDocumentFragment();
    const QRMIDOM_Element b = QRMIDOM_Helper::findOrCreateElement(fragment, "a/b");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(fragment, "a/b"), b);
    EXPECT_EQ(written(fragment.getFirstChild()), "<a><b/></a>");
}

TEST_F(FindOrCreate, WithAttributeTakesAChildOfThatValue)
{
    use("<cfg><item id='1'/></cfg>");
    const QRMIDOM_Element made = QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "item", "id", "2");
    EXPECT_EQ(tree(), "<cfg><item id=\"1\"/><item id=\"2\"/></cfg>");
    EXPECT_EQ(made, cfg.getLastChild());
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "item", "id", "2"), made);
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "item", "id", "1"), cfg.getFirstChild());
    EXPECT_EQ(tree(), "<cfg><item id=\"1\"/><item id=\"2\"/></cfg>");
}

TEST_F(FindOrCreate, WithAttributeLooksAtChildrenForTheLastStepOnly)
{
    use("<cfg><x><a><y><item id='1'/></y></a></x></cfg>");
    QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "/a/item/", "id", "1");
    EXPECT_EQ(tree(), "<cfg><x><a><y><item id=\"1\"/></y><item id=\"1\"/></a></x></cfg>");
}

TEST_F(FindOrCreate, WithAttributeTakesAnAbsentAttributeForAnEmptyOne)
{
    use("<cfg><item/></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "item", "id", ""), cfg.getFirstChild());
    QRMIDOM_Helper::findOrCreateElementWithAttribute(cfg, "n", "id", "");
    EXPECT_EQ(tree(), "<cfg><item/><n id=\"\"/></cfg>");
}

TEST_F(FindOrCreate, WithAttributeMakesTheStepsBefore)
{
    use("<cfg/>");
    const QRMIDOM_Element made =
        QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "//a//b//c//", "k", "v");
    EXPECT_EQ(tree(), "<cfg><a><b><c k=\"v\"/></b></a></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "a/b/c", "k", "v"), made);
}

TEST_F(FindOrCreate, ASingleStepStartsAtTheDocumentItself)
{
    use("<cfg k='v'>t</cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "cfg", "k", "v"), cfg);
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithText(document, "/cfg", "t"), cfg);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "n", "k", "v"); }),
              3);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateElementWithText(document, "n/", "t"); }), 3);
    EXPECT_EQ(tree(), "<cfg k=\"v\">t</cfg>");

    QRMIDOM_Document empty = emptyDocument();
    const QRMIDOM_Element made = QRMIDOM_Helper::findOrCreateElementWithAttribute(empty, "n", "k", "v");
    EXPECT_EQ(made, empty.getDocumentElement());
    EXPECT_EQ(written(empty.getDocumentElement()), "<n k=\"v\"/>");
}

TEST_F(FindOrCreate, WithTextMakesAnElementWithThatText)
{
    use("<cfg/>");
    const QRMIDOM_Element name = QRMIDOM_Helper::findOrCreateElementWithText(cfg, "a/name", "x");
    EXPECT_EQ(tree(), "<cfg><a><name>x</name></a></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithText(cfg, "a/name", "x"), name);
    EXPECT_NE(QRMIDOM_Helper::findOrCreateElementWithText(cfg, "a/name", "y"), name);
    EXPECT_EQ(tree(), "<cfg><a><name>x</name><name>y</name></a></cfg>");
    const QRMIDOM_Element empty = QRMIDOM_Helper::findOrCreateElementWithText(cfg, "e", "");
    EXPECT_EQ(empty.getFirstChild().getNodeType(), 3);
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithText(cfg, "e", ""), empty);
}

TEST_F(FindOrCreate, WithTextFindsTheLastStepOnAnyLevel)
{
    use("<cfg><a><x><name>t</name></x></a></cfg>");
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElementWithText(cfg, "a/name", "t"),
              cfg.getFirstChild().getFirstChild().getFirstChild());
    EXPECT_EQ(tree(), "<cfg><a><x><name>t</name></x></a></cfg>");
}

TEST_F(FindOrCreate, ChildMakesAChildWhatEverIsFurtherBelow)
{
    use("<cfg><x><b/></x></cfg>");
    const QRMIDOM_Element made = QRMIDOM_Helper::findOrCreateChildElement(cfg, "b");
    EXPECT_EQ(tree(), "<cfg><x><b/></x><b/></cfg>");
    EXPECT_EQ(made, cfg.getLastChild());
    EXPECT_EQ(made.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    const QRMIDOM_Element again = QRMIDOM_Helper::findOrCreateChildElement(cfg, "b");
    EXPECT_EQ(again, made);
    EXPECT_EQ(again.getRefCountedNodeImpl(), nullptr) << "as the search for it gives it";
    EXPECT_EQ(tree(), "<cfg><x><b/></x><b/></cfg>");
}

TEST_F(FindOrCreate, ChildKnowsNoPaths)
{
    use("<cfg><a><b/></a></cfg>");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateChildElement(cfg, "a/b"); }), 5);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateChildElement(cfg, "/a"); }), 5);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::findOrCreateChildElement(cfg, ""); }), 5);
    EXPECT_EQ(assertionOf([] { QRMIDOM_Helper::findOrCreateChildElement(QRMIDOM_Element(), "a"); }),
              kNullHandle);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::findOrCreateChildElement(QRMIDOM_Element(document), "n"); }),
              kNullHandle)
        << "a document has no owner to make elements";
    EXPECT_EQ(tree(), "<cfg><a><b/></a></cfg>");
}

TEST_F(FindOrCreate, TwiceIsOnceInAnyTreeAndNothingFoundIsChanged)
{
    RandomNamespaceTrees trees(4711);
    int found = 0;
    for (int tree = 0; tree < 2000; ++tree) {
        document = trees.next();
        const QRMIDOM_Node start = trees.below(3) == 0 ? QRMIDOM_Node(document) : QRMIDOM_Node(trees.any());
        I18NString path;
        for (unsigned steps = 1 + trees.below(3); steps > 0; --steps) {
            path += trees.oneOf({u"a", u"b", u"p:a", u"q:c", u"new"});
            path += trees.oneOf({u"/", u"//"});
        }
        const std::string before = written(document);
        const QRMIDOM_Element first = QRMIDOM_Helper::findOrCreateElement(start, path);
        const std::string after = written(document);
        ASSERT_FALSE(first.isNull());
        ASSERT_EQ(QRMIDOM_Helper::findOrCreateElement(start, path), first) << "tree " << tree;
        ASSERT_EQ(written(document), after) << "tree " << tree;
        found += before == after ? 1 : 0;
        if (before != after) {
            // Taking out the topmost of what was made gives back the tree as it was, except that an element which had
            // nothing in it is written in the short form again.
            QRMIDOM_Node made = first;
            const auto isOld = [&](const QRMIDOM_Node& node) {
                return std::find(trees.elements.begin(), trees.elements.end(), node) != trees.elements.end();
            };
            while (!isOld(made.getParentNode())) {
                made = made.getParentNode();
            }
            made.getParentNode().removeChild(made);
            ASSERT_EQ(written(document), before) << "tree " << tree;
        }
    }
    EXPECT_GT(found, 100);
}

} // namespace
