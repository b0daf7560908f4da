#include <functional>

#include "tests/support/TestDocument.h"

namespace {

struct Site
{
    const char* operation;
    const char* file;
    int number;
    const char* text;
    std::function<void()> provoke;
};

template <class Handle>
Handle null()
{
    return Handle();
}

I18NString string;

QRMIDOM_Node someNode()
{
    return documentOf("<a/>").getDocumentElement();
}

template <class Handle>
void assignSomeNode()
{
    QRMIDOM_Node node = someNode();
    Handle handle;
    handle = &node;
}

const Site kSites[] = {
    {"CharacterData operator=", "QRMIDOM_CharacterData.cpp", 198, kNotNull,
     assignSomeNode<QRMIDOM_CharacterData>},
    {"CharacterData getLength", "QRMIDOM_CharacterData.cpp", 74, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().getLength(); }},
    {"CharacterData getData", "QRMIDOM_CharacterData.cpp", 81, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().getData(); }},
    {"CharacterData getData filling", "QRMIDOM_CharacterData.cpp", 206, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().getData(string); }},
    {"CharacterData substringData", "QRMIDOM_CharacterData.cpp", 91, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().substringData(0, 0); }},
    {"CharacterData substringData filling", "QRMIDOM_CharacterData.cpp", 212, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().substringData(0, 0, string); }},
    {"CharacterData appendData", "QRMIDOM_CharacterData.cpp", 111, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().appendData(string); }},
    {"CharacterData insertData", "QRMIDOM_CharacterData.cpp", 132, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().insertData(0, string); }},
    {"CharacterData deleteData", "QRMIDOM_CharacterData.cpp", 153, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().deleteData(0, 0); }},
    {"CharacterData replaceData", "QRMIDOM_CharacterData.cpp", 172, kNullHandle,
     [] { null<QRMIDOM_CharacterData>().replaceData(0, 0, string); }},
    {"Text operator=", "QRMIDOM_Text.cpp", 97, kNotNull, assignSomeNode<QRMIDOM_Text>},
    {"Text splitText", "QRMIDOM_Text.cpp", 70, kNullHandle, [] { null<QRMIDOM_Text>().splitText(0); }},
    {"CDATASection operator=", "QRMIDOM_CDATASection.cpp", 94, kNotNull,
     assignSomeNode<QRMIDOM_CDATASection>},
    {"Comment operator=", "QRMIDOM_Comment.cpp", 84, kNotNull, assignSomeNode<QRMIDOM_Comment>},
    {"DocumentType operator=", "QRMIDOM_DocumentType.cpp", 144, kNotNull,
     assignSomeNode<QRMIDOM_DocumentType>},
    {"DocumentType getName", "QRMIDOM_DocumentType.cpp", 71, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getName(); }},
    {"DocumentType getName filling", "QRMIDOM_DocumentType.cpp", 152, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getName(string); }},
    {"DocumentType getEntities", "QRMIDOM_DocumentType.cpp", 81, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getEntities(); }},
    {"DocumentType getNotations", "QRMIDOM_DocumentType.cpp", 95, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getNotations(); }},
    {"DocumentType getPublicId", "QRMIDOM_DocumentType.cpp", 109, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getPublicId(); }},
    {"DocumentType getPublicId filling", "QRMIDOM_DocumentType.cpp", 158, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getPublicId(string); }},
    {"DocumentType getSystemId", "QRMIDOM_DocumentType.cpp", 119, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getSystemId(); }},
    {"DocumentType getSystemId filling", "QRMIDOM_DocumentType.cpp", 164, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getSystemId(string); }},
    {"DocumentType getInternalSubset", "QRMIDOM_DocumentType.cpp", 129, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getInternalSubset(); }},
    {"DocumentType getInternalSubset filling", "QRMIDOM_DocumentType.cpp", 170, kNullHandle,
     [] { null<QRMIDOM_DocumentType>().getInternalSubset(string); }},
    {"Entity operator=", "QRMIDOM_Entity.cpp", 106, kNotNull, assignSomeNode<QRMIDOM_Entity>},
    {"Entity getSystemId", "QRMIDOM_Entity.cpp", 71, kNullHandle,
     [] { null<QRMIDOM_Entity>().getSystemId(); }},
    {"Entity getSystemId filling", "QRMIDOM_Entity.cpp", 114, kNullHandle,
     [] { null<QRMIDOM_Entity>().getSystemId(string); }},
    {"Entity getPublicId", "QRMIDOM_Entity.cpp", 81, kNullHandle,
     [] { null<QRMIDOM_Entity>().getPublicId(); }},
    {"Entity getPublicId filling", "QRMIDOM_Entity.cpp", 120, kNullHandle,
     [] { null<QRMIDOM_Entity>().getPublicId(string); }},
    {"Entity getNotationName", "QRMIDOM_Entity.cpp", 91, kNullHandle,
     [] { null<QRMIDOM_Entity>().getNotationName(); }},
    {"Entity getNotationName filling", "QRMIDOM_Entity.cpp", 126, kNullHandle,
     [] { null<QRMIDOM_Entity>().getNotationName(string); }},
    {"EntityReference operator=", "QRMIDOM_EntityReference.cpp", 75, kNotNull,
     assignSomeNode<QRMIDOM_EntityReference>},
    {"Notation operator=", "QRMIDOM_Notation.cpp", 96, kNotNull, assignSomeNode<QRMIDOM_Notation>},
    {"Notation getPublicId", "QRMIDOM_Notation.cpp", 71, kNullHandle,
     [] { null<QRMIDOM_Notation>().getPublicId(); }},
    {"Notation getPublicId filling", "QRMIDOM_Notation.cpp", 104, kNullHandle,
     [] { null<QRMIDOM_Notation>().getPublicId(string); }},
    {"Notation getSystemId", "QRMIDOM_Notation.cpp", 81, kNullHandle,
     [] { null<QRMIDOM_Notation>().getSystemId(); }},
    {"Notation getSystemId filling", "QRMIDOM_Notation.cpp", 110, kNullHandle,
     [] { null<QRMIDOM_Notation>().getSystemId(string); }},
    {"ProcessingInstruction operator=", "QRMIDOM_ProcessingInstruction.cpp", 97, kNotNull,
     assignSomeNode<QRMIDOM_ProcessingInstruction>},
    {"ProcessingInstruction getTarget", "QRMIDOM_ProcessingInstruction.cpp", 72, kNullHandle,
     [] { null<QRMIDOM_ProcessingInstruction>().getTarget(); }},
    {"ProcessingInstruction getTarget filling", "QRMIDOM_ProcessingInstruction.cpp", 105, kNullHandle,
     [] { null<QRMIDOM_ProcessingInstruction>().getTarget(string); }},
    {"ProcessingInstruction getData", "QRMIDOM_ProcessingInstruction.cpp", 82, kNullHandle,
     [] { null<QRMIDOM_ProcessingInstruction>().getData(); }},
    {"ProcessingInstruction getData filling", "QRMIDOM_ProcessingInstruction.cpp", 111, kNullHandle,
     [] { null<QRMIDOM_ProcessingInstruction>().getData(string); }},
    {"DocumentFragment operator=", "QRMIDOM_DocumentFragment.cpp", 74, kNotNull,
     assignSomeNode<QRMIDOM_DocumentFragment>},
    {"NodeList operator==", "QRMIDOM_NodeList.cpp", 99, kNotNullPtr,
     [] {
         QRMIDOM_NodeList list;
         (void)(list == &list);
     }},
    {"NodeList operator!=", "QRMIDOM_NodeList.cpp", 106, kNotNullPtr,
     [] {
         QRMIDOM_NodeList list;
         (void)(list != &list);
     }},
    {"NodeList item", "QRMIDOM_NodeList.cpp", 113, kNullHandle, [] { null<QRMIDOM_NodeList>().item(0); }},
    {"NodeList getLength", "QRMIDOM_NodeList.cpp", 127, kNullHandle,
     [] { null<QRMIDOM_NodeList>().getLength(); }},
    {"NodeList setRefCountedNodeImpl", "QRMIDOM_NodeList.cpp", 139, "QRM_ASSERT(refCountedNodeImpl);",
     [] { null<QRMIDOM_NodeList>().setRefCountedNodeImpl(nullptr); }},
    {"NamedNodeMap operator==", "QRMIDOM_NamedNodeMap.cpp", 85, kNotNullPtr,
     [] {
         QRMIDOM_NamedNodeMap map;
         (void)(map == &map);
     }},
    {"NamedNodeMap operator!=", "QRMIDOM_NamedNodeMap.cpp", 92, kNotNullPtr,
     [] {
         QRMIDOM_NamedNodeMap map;
         (void)(map != &map);
     }},
    {"NamedNodeMap getNamedItem", "QRMIDOM_NamedNodeMap.cpp", 99, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().getNamedItem(string); }},
    {"NamedNodeMap setNamedItem", "QRMIDOM_NamedNodeMap.cpp", 113, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().setNamedItem(QRMIDOM_Node()); }},
    {"NamedNodeMap removeNamedItem", "QRMIDOM_NamedNodeMap.cpp", 136, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().removeNamedItem(string); }},
    {"NamedNodeMap item", "QRMIDOM_NamedNodeMap.cpp", 160, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().item(0); }},
    {"NamedNodeMap getLength", "QRMIDOM_NamedNodeMap.cpp", 174, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().getLength(); }},
    {"NamedNodeMap getNamedItemNS", "QRMIDOM_NamedNodeMap.cpp", 181, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().getNamedItemNS(string, string); }},
    {"NamedNodeMap setNamedItemNS", "QRMIDOM_NamedNodeMap.cpp", 196, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().setNamedItemNS(QRMIDOM_Node()); }},
    {"NamedNodeMap removeNamedItemNS", "QRMIDOM_NamedNodeMap.cpp", 219, kNullHandle,
     [] { null<QRMIDOM_NamedNodeMap>().removeNamedItemNS(string, string); }},
    {"NamedNodeMap setRefCountedNodeImpl", "QRMIDOM_NamedNodeMap.cpp", 250, "QRM_ASSERT(refCountedNodeImpl);",
     [] { null<QRMIDOM_NamedNodeMap>().setRefCountedNodeImpl(nullptr); }},
    {"NodeIterator getRoot", "QRMIDOM_NodeIterator.cpp", 98, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().getRoot(); }},
    {"NodeIterator getWhatToShow", "QRMIDOM_NodeIterator.cpp", 105, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().getWhatToShow(); }},
    {"NodeIterator getExpandEntityReference", "QRMIDOM_NodeIterator.cpp", 112, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().getExpandEntityReference(); }},
    {"NodeIterator nextNode", "QRMIDOM_NodeIterator.cpp", 119, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().nextNode(); }},
    {"NodeIterator previousNode", "QRMIDOM_NodeIterator.cpp", 142, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().previousNode(); }},
    {"NodeIterator detach", "QRMIDOM_NodeIterator.cpp", 165, kNullHandle,
     [] { null<QRMIDOM_NodeIterator>().detach(); }},
    {"NodeFilter adapter acceptNode", "QRMIDOM_NodeFilter.cpp", 28, "QRM_ASSERT(m_filter);",
     [] { QRMIDOM_NodeFilter::NodeFilterAdapter().acceptNode(nullptr); }},
    {"TreeWalker getRoot", "QRMIDOM_TreeWalker.cpp", 102, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().getRoot(); }},
    {"TreeWalker getWhatToShow", "QRMIDOM_TreeWalker.cpp", 109, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().getWhatToShow(); }},
    {"TreeWalker getExpandEntityReferences", "QRMIDOM_TreeWalker.cpp", 116, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().getExpandEntityReferences(); }},
    {"TreeWalker getCurrentNode", "QRMIDOM_TreeWalker.cpp", 123, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().getCurrentNode(); }},
    {"TreeWalker parentNode", "QRMIDOM_TreeWalker.cpp", 147, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().parentNode(); }},
    {"TreeWalker firstChild", "QRMIDOM_TreeWalker.cpp", 162, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().firstChild(); }},
    {"TreeWalker lastChild", "QRMIDOM_TreeWalker.cpp", 177, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().lastChild(); }},
    {"TreeWalker previousSibling", "QRMIDOM_TreeWalker.cpp", 192, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().previousSibling(); }},
    {"TreeWalker nextSibling", "QRMIDOM_TreeWalker.cpp", 207, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().nextSibling(); }},
    {"TreeWalker previousNode", "QRMIDOM_TreeWalker.cpp", 222, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().previousNode(); }},
    {"TreeWalker nextNode", "QRMIDOM_TreeWalker.cpp", 237, kNullHandle,
     [] { null<QRMIDOM_TreeWalker>().nextNode(); }},
};

class GuardSite : public testing::TestWithParam<Site>
{
};

INSTANTIATE_TEST_SUITE_P(Assertions, GuardSite, testing::ValuesIn(kSites), [](const auto& site) {
    std::string name = site.param.operation;
    std::string words;
    for (const char c : name) {
        words += std::isalnum(static_cast<unsigned char>(c)) ? std::string(1, c)
                 : c == '='                                  ? "Is"
                 : c == '!'                                  ? "Not"
                                                             : "";
    }
    return words;
});

TEST_P(GuardSite, IsWhereLogReadersLookForIt)
{
    try {
        GetParam().provoke();
        FAIL() << "no assertion failed";
    } catch (const QRMAssertError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_STREQ(error.getText(), GetParam().text);
        ASSERT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace()[0].fileName, GetParam().file);
        EXPECT_EQ(error.getBackTrace()[0].lineNumber, GetParam().number);
        EXPECT_EQ(error.getBackTrace()[0].context, "");
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
    }
}

} // namespace
