// Callers are compiled against the order of fields and of virtual operations, so both are part of the interface. The
// checks read memory as the platform's C++ ABI lays it out: the table pointer first, then the fields; two slots for the
// destructor, then one each.

#include <array>
#include <cstddef>

#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"
#include "tests/support/TestDocument.h"

namespace {

template <std::size_t N, class Object>
std::array<const void*, N> wordsOf(const Object& object)
{
    static_assert(sizeof(Object) >= N * sizeof(void*));
    std::array<const void*, N> words;
    std::memcpy(words.data(), static_cast<const void*>(&object), sizeof words);
    return words;
}

void* const* slotsOf(const void* object)
{
    void* const* slots = nullptr;
    std::memcpy(&slots, object, sizeof slots);
    return slots;
}

TEST(Layout, AHolderIsItsCountAndItsNode)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    const RefCounted_DOMNode& holder = *document.getRefCountedNodeImpl();
    static_assert(sizeof(RefCounted_DOMNode) == 2 * sizeof(void*));
    unsigned int count = 0;
    std::memcpy(&count, static_cast<const void*>(&holder), sizeof count);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ((wordsOf<2>(holder)[1]), document.getDOM_NodeImpl());
}

TEST(Layout, AHandleIsItsNodeAndItsHolder)
{
    const QRMIDOM_Document document = documentOf("<a n='v'><b/></a>");
    const QRMIDOM_Element element = document.getDocumentElement();
    const void* const holder = document.getRefCountedNodeImpl();
    EXPECT_EQ((wordsOf<3>(element)[1]), element.getDOM_NodeImpl());
    EXPECT_EQ((wordsOf<3>(element)[2]), holder);
    EXPECT_EQ((wordsOf<3>(document)[1]), document.getDOM_NodeImpl());
    EXPECT_EQ((wordsOf<3>(document)[2]), holder);

    const QRMIDOM_NodeList list = element.getChildNodes();
    EXPECT_EQ((wordsOf<3>(list)),
              (std::array<const void*, 3>{slotsOf(&list), static_cast<xercesc::DOMNodeList*>(list), holder}));
    const QRMIDOM_NamedNodeMap map = element.getAttributes();
    EXPECT_EQ((wordsOf<3>(map)[1]), static_cast<xercesc::DOMNamedNodeMap*>(map));
    EXPECT_EQ((wordsOf<3>(map)[2]), holder);
    QRMIDOM_Document factory = document;
    const QRMIDOM_NodeIterator iterator = factory.createNodeIterator(element, 1, nullptr, 0);
    EXPECT_EQ((wordsOf<3>(iterator)[1]), static_cast<xercesc::DOMNodeIterator*>(iterator));
    EXPECT_EQ((wordsOf<3>(iterator)[2]), holder);
    const QRMIDOM_TreeWalker walker = factory.createTreeWalker(element, 1, nullptr, 0);
    EXPECT_EQ((wordsOf<3>(walker)[1]), static_cast<xercesc::DOMTreeWalker*>(walker));
    EXPECT_EQ((wordsOf<3>(walker)[2]), holder);
    static_assert(sizeof(QRMIDOM_NodeList) == 3 * sizeof(void*));
    static_assert(sizeof(QRMIDOM_NamedNodeMap) == 3 * sizeof(void*));
    static_assert(sizeof(QRMIDOM_NodeIterator) == 3 * sizeof(void*));
    static_assert(sizeof(QRMIDOM_TreeWalker) == 3 * sizeof(void*));
    const auto implementation = QRMIDOM_DOMImplementation::getInstance();
    EXPECT_EQ((wordsOf<2>(implementation)[1]), static_cast<xercesc::DOMImplementation*>(implementation));
    static_assert(sizeof(QRMIDOM_DOMImplementation) == 2 * sizeof(void*));
}

TEST(Layout, ADOMExceptionIsItsCode)
{
    const QRMIDOM_DOMException error(7);
    unsigned short code = 0;
    std::memcpy(&code, reinterpret_cast<const char*>(&error) + sizeof(void*), sizeof code);
    EXPECT_EQ(code, 7);
    EXPECT_EQ(QRMIDOM_DOMException().getCode(), 0);
    QRMIDOM_DOMException assigned;
    assigned = error;
    EXPECT_EQ(assigned.getCode(), 7);
    EXPECT_EQ(QRMIDOM_DOMException(assigned).getCode(), 7);
}

TEST(Layout, AParserKeepsTheOrderOfItsFields)
{
    QRMIDOM_Parser parser(17);
    QRMIDOM_Document document;
    const char text[] = "<a>\n<b/>\nabcd & x</a>";
    EXPECT_EQ(parser.parse(text, sizeof text - 1, document), 0);
    struct Fields
    {
        const void* slots;
        const void* parserImpl;
        int mode;
        const void* errorHandler;
        int code;
        int line;
        int column;
        I18NString text;
    };
    static_assert(sizeof(Fields) == sizeof(QRMIDOM_Parser));
    const auto* const bytes = reinterpret_cast<const char*>(&parser);
    const auto intAt = [bytes](std::size_t offset) {
        int value = 0;
        std::memcpy(&value, bytes + offset, sizeof value);
        return value;
    };
    EXPECT_NE((wordsOf<2>(parser)[1]), nullptr);
    EXPECT_EQ(intAt(offsetof(Fields, mode)), 17);
    EXPECT_NE((wordsOf<4>(parser)[3]), nullptr);
    EXPECT_EQ(intAt(offsetof(Fields, code)), -1);
    EXPECT_EQ(intAt(offsetof(Fields, line)), 3);
    EXPECT_EQ(intAt(offsetof(Fields, column)), 7);
    EXPECT_EQ(*reinterpret_cast<const I18NString*>(bytes + offsetof(Fields, text)), parser.errorString());
}

TEST(Layout, AWriterKeepsTheOrderOfItsOperations)
{
    class Recorder : public DomWriter
    {
    public:
        void write(const char*, int) override { slot = 2; }
        void endline() override { slot = 3; }
        const char* getOutputEncoding() override
        {
            slot = 4;
            return nullptr;
        }
        int slot = 0;
    };
    Recorder recorder;
    for (int index = 2; index <= 4; ++index) {
        void (*operation)(void*, const char*, int) = nullptr;
        std::memcpy(&operation, slotsOf(&recorder) + index, sizeof operation);
        operation(&recorder, nullptr, 0);
        EXPECT_EQ(recorder.slot, index);
    }
}

TEST(Layout, AParserHasItsVirtualParseAfterTheDestructor)
{
    class Recorder : public QRMIDOM_Parser
    {
    public:
        using QRMIDOM_Parser::parse;
        int parse(xercesc::InputSource&, QRMIDOM_Document&) override { return 42; }
    };
    Recorder recorder;
    int (*operation)(void*, void*, void*) = nullptr;
    std::memcpy(&operation, slotsOf(&recorder) + 2, sizeof operation);
    EXPECT_EQ(operation(&recorder, nullptr, nullptr), 42);
}

TEST(Layout, AFilterHasAcceptNodeAfterTheDestructorAndThenItsAdapter)
{
    class Recorder : public QRMIDOM_NodeFilter
    {
    public:
        short acceptNode(QRMIDOM_Node) override { return 3; }
    };
    Recorder recorder;
    EXPECT_EQ((wordsOf<2>(recorder)[1]), recorder.getNodeFilter());
    static_assert(sizeof(QRMIDOM_NodeFilter) == 2 * sizeof(void*));
    QRMIDOM_Node node;
    short (*operation)(void*, QRMIDOM_Node*) = nullptr; // handles are passed by address
    std::memcpy(&operation, slotsOf(&recorder) + 2, sizeof operation);
    EXPECT_EQ(operation(&recorder, &node), 3);
}

TEST(Layout, ADocumentHasItsFactoriesAfterTheDestructor)
{
    class Recorder : public QRMIDOM_Document
    {
    public:
        QRMIDOM_NodeIterator createNodeIterator(QRMIDOM_Node, unsigned long, QRMIDOM_NodeFilter*,
                                                int) override
        {
            slot = 2;
            return QRMIDOM_NodeIterator();
        }
        QRMIDOM_TreeWalker createTreeWalker(QRMIDOM_Node, unsigned long, QRMIDOM_NodeFilter*, int) override
        {
            slot = 3;
            return QRMIDOM_TreeWalker();
        }
        int slot = 0;
    };
    Recorder recorder;
    QRMIDOM_Node node;
    for (int index = 2; index <= 3; ++index) {
        alignas(void*) unsigned char result[3 * sizeof(void*)];
        void (*operation)(void*, void*, QRMIDOM_Node*, unsigned long, void*, int) = nullptr;
        std::memcpy(&operation, slotsOf(&recorder) + index, sizeof operation);
        operation(result, &recorder, &node, 0, nullptr, 0);
        EXPECT_EQ(recorder.slot, index);
    }
}

} // namespace
