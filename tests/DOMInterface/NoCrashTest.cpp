// Xerces follows null pointers in many places; nothing that a caller passes may get there.

#include <climits>
#include <vector>

#include <xercesc/util/XMLException.hpp>

#include "tests/support/TestDocument.h"

namespace {

/// Runs the call and allows it every documented way to fail.
template <class Call>
void endsOrderly(Call&& call)
{
    try {
        call();
    } catch (const QRMIDOM_DOMException& error) {
        EXPECT_GE(error.getCode(), 1);
        EXPECT_LE(error.getCode(), 16);
    } catch (const QRMThrowable&) {
    } catch (const xercesc::DOMException&) {
    }
}

TEST(NoCrash, EveryPairOfNodesMayBePutTogether)
{
    const char* const text = "<!DOCTYPE a [<!ENTITY e '<x/>'><!NOTATION n SYSTEM 's'>]>"
                             "<a n='v'>t<![CDATA[c]]><!--k--><?p d?>&e;<b/></a>";
    const auto nodesOf = [](QRMIDOM_Document& document) {
        const QRMIDOM_Element root = document.getDocumentElement();
        std::vector<QRMIDOM_Node> nodes = {QRMIDOM_Node(),
                                           document,
                                           document.getDoctype(),
                                           document.getDoctype().getEntities().item(0),
                                           document.getDoctype().getNotations().item(0),
                                           root,
                                           root.getAttributeNode("n"),
                                           document.createDocumentFragment(),
                                           document.createElement("loose"),
                                           document.createAttribute("loose")};
        for (QRMIDOM_Node child = root.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
            nodes.push_back(child);
        }
        return nodes;
    };
    QRMIDOM_Document counting = documentOf(text);
    const std::size_t count = nodesOf(counting).size();
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            for (int operation = 0; operation < 14; ++operation) {
                QRMIDOM_Document document = documentOf(text);
                QRMIDOM_Document other = documentOf(text);
                std::vector<QRMIDOM_Node> own = nodesOf(document);
                std::vector<QRMIDOM_Node> foreign = nodesOf(other);
                QRMIDOM_Node target = own[i];
                QRMIDOM_Node argument = operation < 7 ? own[j] : foreign[j];
                QRMIDOM_Element root = document.getDocumentElement();
                endsOrderly([&] {
                    switch (operation % 7) {
                    case 0: target.appendChild(argument); break;
                    case 1: target.insertBefore(argument, target.getFirstChild()); break;
                    case 2: target.replaceChild(argument, target.getLastChild()); break;
                    case 3: target.removeChild(argument); break;
                    case 4: document.renameNode(argument, "urn:u", "p:r"); break;
                    case 5: document.importNode(argument, 1); break;
                    case 6:
                        if (j == 0 || argument.getNodeType() == 2) {
                            root.setAttributeNode(argument);
                        }
                        break;
                    default: break;
                    }
                });
                endsOrderly([&] { target.cloneNode(1); });
                endsOrderly([&] { document.normalize(); });
                // Some changes make a tree that cannot be written out, such as a fragment in a notation; none may
                // break the library.
                endsOrderly([&] { written(document); });
            }
        }
    }
}

TEST(NoCrash, EveryStringMayBeEmptyOrStrange)
{
    const I18NString strings[] = {"",
                                  " ",
                                  "1",
                                  ":",
                                  "a:",
                                  ":a",
                                  "a:b:c",
                                  "xmlns",
                                  "xmlns:p",
                                  "xml:a",
                                  "\x01",
                                  I18NString(std::u16string{0xD800}.c_str()),
                                  I18NString(std::u16string(5000, u'x').c_str())};
    for (const I18NString& a : strings) {
        for (const I18NString& b : strings) {
            QRMIDOM_Document document = documentOf("<r n='v'>text</r>");
            QRMIDOM_Element root = document.getDocumentElement();
            QRMIDOM_Text text = root.getFirstChild();
            const auto implementation = document.getDOMImplementation();
            I18NString uri = a;
            I18NString local = b;
            QRMIDOM_NamedNodeMap map = root.getAttributes();
            endsOrderly([&] { document.createElement(a); });
            endsOrderly([&] { document.createTextNode(a); });
            endsOrderly([&] { document.createComment(a); });
            endsOrderly([&] { document.createCDATASection(a); });
            endsOrderly([&] { document.createProcessingInstruction(a, b); });
            endsOrderly([&] { document.createAttribute(a); });
            endsOrderly([&] { document.createEntityReference(a); });
            endsOrderly([&] { document.createElementNS(a, b); });
            endsOrderly([&] { document.createAttributeNS(a, b); });
            endsOrderly([&] { document.getElementsByTagName(a); });
            endsOrderly([&] { document.getElementsByTagNameNS(a, b); });
            endsOrderly([&] { document.getElementById(a); });
            endsOrderly([&] { implementation.createDocument(a, b); });
            endsOrderly([&] { implementation.createDocumentType(a, b, a).getDOM_NodeImpl()->release(); });
            endsOrderly([&] { implementation.hasFeature(a, b); });
            endsOrderly([&] { root.supports(a, b); });
            endsOrderly([&] { root.setAttribute(a, b); });
            endsOrderly([&] { root.setAttributeNS(a, b, a); });
            endsOrderly([&] { root.removeAttribute(a); });
            endsOrderly([&] { root.removeAttributeNS(a, b); });
            endsOrderly([&] { root.getAttributeNS(a, b); });
            endsOrderly([&] { map.getNamedItem(a); });
            endsOrderly([&] { map.removeNamedItem(a); });
            endsOrderly([&] { map.getNamedItemNS(uri, local); });
            endsOrderly([&] { map.removeNamedItemNS(a, b); });
            endsOrderly([&] { text.setNodeValue(a); });
            endsOrderly([&] { text.appendData(b); });
            endsOrderly([&] { text.insertData(0, a); });
            endsOrderly([&] { text.replaceData(0, 1, a); });
            QRMIDOM_Node renamed = root;
            endsOrderly([&] { document.renameNode(renamed, a, b); });
            endsOrderly([&] { written(document); });
        }
    }
}

TEST(NoCrash, EveryOffsetMayBeHuge)
{
    QRMIDOM_Document document = documentOf("<r>text</r>");
    QRMIDOM_Text text = document.getDocumentElement().getFirstChild();
    for (const unsigned long offset : {0UL, 4UL, 5UL, 0x80000000UL, ULONG_MAX}) {
        for (const unsigned long count : {0UL, 4UL, 5UL, 0x80000000UL, ULONG_MAX}) {
            endsOrderly([&] { text.substringData(offset, count); });
            endsOrderly([&] { text.replaceData(offset, count, "text"); });
            endsOrderly([&] { text.deleteData(offset, count); });
            endsOrderly([&] { text.splitText(offset); });
            text.setNodeValue("text");
        }
    }
    EXPECT_EQ(text.getData(), I18NString("text"));
}

TEST(NoCrash, EveryTextThatIsWrittenMayBeNull)
{
    std::ostringstream stream;
    const char* const none = nullptr;
    QRMIDOM_Helper::writeNoEscape(stream, none, none);
    EXPECT_EQ(stream.str(), "");
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar(none, 0, 10), -1);
    std::FILE* const noFile = nullptr;
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::write(noFile, "x", "UTF-8"); }), "QRM_ASSERT(file != NULL);");
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::writeNoEscape(noFile, "x", "UTF-8"); }),
              "QRM_ASSERT(file != NULL);");
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::write(QRMIDOM_Node(), noFile, "UTF-8"); }),
              "QRM_ASSERT(file != NULL);");
    EXPECT_THROW(QRMIDOM_Helper::write(QRMIDOM_Node(), none, "UTF-8"), QRMSystemError);
}

} // namespace
