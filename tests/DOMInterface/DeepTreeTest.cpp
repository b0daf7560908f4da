#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "tests/support/TestDocument.h"

namespace {

constexpr int kDepth = 1000000;

/// Built from the innermost element outwards, so that no step has to look up or down the tree.
QRMIDOM_Document deepDocument()
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element inner = document.createElement("e");
    for (int i = 1; i < kDepth; ++i) {
        QRMIDOM_Element outer = document.createElement("e");
        outer.appendChild(inner);
        inner = outer;
    }
    document.appendChild(inner);
    return document;
}

class CountingWriter : public DomWriter
{
public:
    void write(const char* data, int length) override
    {
        bytes += length;
        opened += length == 1 && *data == '<' ? 1 : 0;
        closed += length == 2 && std::memcmp(data, "</", 2) == 0 ? 1 : 0;
    }
    void endline() override { ++lines; }
    long bytes = 0;
    long opened = 0;
    long closed = 0;
    long lines = 0;
};

TEST(DeepTree, IsWalkedWrittenAndReleased)
{
    QRMIDOM_Document document = deepDocument();
    long depth = 0;
    for (QRMIDOM_Node node = document.getFirstChild(); !node.isNull(); node = node.getFirstChild()) {
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);

    CountingWriter writer;
    writer << document;
    EXPECT_EQ(writer.opened, kDepth);
    EXPECT_EQ(writer.closed, kDepth - 1);
    EXPECT_EQ(writer.lines, 1);
    EXPECT_EQ(writer.bytes, 39L + 3L * (kDepth - 1) + 4L + 4L * (kDepth - 1));
    document = NULL;
}

TEST(DeepTree, IsSearchedAndWrittenWithNamespaces)
{
    QRMIDOM_Document document = deepDocument();
    QRMIDOM_Element innermost = document.getDocumentElement();
    for (QRMIDOM_Node child = innermost.getFirstChild(); !child.isNull(); child = child.getFirstChild()) {
        innermost = child;
    }
    QRMIDOM_Element leaf = innermost.appendChild(document.createElementNS("urn:x", "p:leaf"));
    leaf.appendChild(document.createTextNode("text"));
    leaf.setAttribute("k", "v");
    EXPECT_EQ(QRMIDOM_Helper::findFirstElement(document, "p:leaf"), leaf);
    EXPECT_EQ(QRMIDOM_Helper::findElementWithAttribute(document, "p:leaf", "k", "v"), leaf);
    EXPECT_EQ(QRMIDOM_Helper::findFirstElementNS(document, "urn:x", "leaf"), leaf);
    EXPECT_EQ(QRMIDOM_Helper::findFirstElementWithName(document, "leaf"), leaf);
    EXPECT_EQ(QRMIDOM_Helper::findChildElementWithText(document, "p:leaf", "text"), leaf);
    std::vector<QRMIDOM_Node> out;
    QRMIDOM_Helper::findChildElementsWithAttribute(document, "e", "k", "", out);
    EXPECT_EQ(out.size(), static_cast<std::size_t>(kDepth));
    out.clear();
    EXPECT_EQ(QRMIDOM_Helper::findOrCreateElement(document, "p:leaf"), leaf);
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(leaf, "urn:x"), "");

    CountingWriter writer;
    QRMIDOM_Helper::writeNS(document, writer);
    EXPECT_EQ(writer.opened, kDepth + 1);
    EXPECT_EQ(writer.closed, kDepth + 1);
    const long leafBytes = static_cast<long>(std::strlen("<p:leaf xmlns:p=\"urn:x\" k=\"v\">text</p:leaf>")
                                             - std::strlen("<e/>") + std::strlen("<e></e>"));
    EXPECT_EQ(writer.bytes,
              39L + static_cast<long>(std::strlen(" xmlns=\"\"")) + 7L * (kDepth - 1) + 4L + leafBytes);
}

TEST(DeepTree, ParsesTenThousandLevels)
{
    std::string text;
    for (int i = 0; i < 10000; ++i) {
        text += "<e>";
    }
    for (int i = 0; i < 10000; ++i) {
        text += "</e>";
    }
    const QRMIDOM_Document document = documentOf(text);
    EXPECT_EQ(document.getElementsByTagName("e").getLength(), 10000u);
}

} // namespace
