// Memory runs out at every allocation in turn, on every road through the library: for operator new, where one allocation
// fails, and for Xerces' memory manager, where all fail from one on. What comes out is an error that is told of, handles
// share what they shared before, nothing leaks, and the same works right afterwards.

#include <fstream>
#include <functional>
#include <memory>
#include <optional>

#include <unistd.h>

#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeIterator.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TreeWalker.h"
#include "QRMUtils/XML/DOMInterface/XmlUrl.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/RecordingParser.h"
#include "tests/support/RecordingWriter.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"
#include "tests/support/XercesMemory.h"

namespace {

constexpr const char* kText =
    "<!DOCTYPE r [<!ENTITY e 'x<i/>'><!ATTLIST c d CDATA 'default'>]>"
    "<r xmlns='urn:r' xmlns:p='urn:p'><c id='1' p:k='a value longer than what a string keeps in itself'>"
    "text that is longer than a string keeps in itself "
    "&lt;&#1046;</c><!--comment--><p:c>t<![CDATA[u]]></p:c>&e;"
    "<c id='2'>y</c><?t d?></r>";

std::string longText(char letter)
{
    return std::string(3000, letter); // more than what a document has in store
}

/// What a scenario works with, made while memory is there.
struct Fixture
{
    QRMIDOM_Parser parser;
    RecordingParser events;
    QRMIDOM_Document document = documentOf(kText);
    QRMIDOM_Element root = document.getDocumentElement();
    QRMIDOM_Document other = documentOf("<o><inner a='b'>t</inner></o>");
    I18NString longString{longText('s').c_str()};
};

struct Scenario
{
    const char* name;
    std::function<std::string(Fixture&)> run; // gives the same whenever it works
    bool passesXercesErrors = false;          // as operations do that translate nothing
    const char* otherError = nullptr;         // that memory running out may be told as
};

/// The node as it is written to a sink of our own: a std::ostream keeps running out of memory to itself.
std::string serialized(const QRMIDOM_Node& node)
{
    struct Sink : DomWriter
    {
        std::string text;
        void write(const char* data, int length) override
        {
            text.append(data, static_cast<std::size_t>(length));
        }
        void endline() override { text += "\n"; }
    } sink;
    QRMIDOM_Helper::write(node, sink);
    return sink.text;
}

/// Running out of memory for the stream of a source counts as an error of the source.
void throwIfRecorded(const QRMIDOM_Parser& parser, int result)
{
    if (result == 0 && parser.getErrorCode() == -1 && parser.errorString().empty()) {
        throw std::bad_alloc();
    }
}

std::string countOf(const std::vector<QRMIDOM_Node>& nodes)
{
    return std::to_string(nodes.size());
}

std::string calls(const RecordingWriter& writer)
{
    std::string all;
    for (const std::string& call : writer.calls) {
        all += call + "\n";
    }
    return all;
}

/// A file that is there while the program runs.
const std::string& filePath()
{
    static const struct File
    {
        std::string path = testing::TempDir() + "qrm-fault-" + std::to_string(::getpid()) + ".xml";
        File() { std::ofstream(path) << kText; }
        ~File() { ::unlink(path.c_str()); }
    } file;
    return file.path;
}

const Scenario kScenarios[] = {
    {"ParseABuffer",
     [](Fixture& fixture) {
         QRMIDOM_Document document;
         const int result = fixture.parser.parse(kText, static_cast<int>(std::strlen(kText)), document);
         return std::to_string(result) + serialized(document.getDocumentElement());
     }},
    {"ParseAFile",
     [](Fixture& fixture) {
         QRMIDOM_Document document;
         const int result = fixture.parser.parse(filePath().c_str(), document);
         throwIfRecorded(fixture.parser, result);
         return std::to_string(result) + serialized(document.getDocumentElement());
     }},
    {"ParseAStream",
     [](Fixture& fixture) {
         QRMIDOM_Document document;
         std::istringstream stream(kText);
         const int result = fixture.parser.parse(stream, document);
         throwIfRecorded(fixture.parser, result);
         return std::to_string(result) + serialized(document.getDocumentElement());
     }},
    {"FailToParse",
     [](Fixture& fixture) {
         QRMIDOM_Document document;
         const int result = fixture.parser.parse("<a><b></a>", 10, document);
         return std::to_string(result) + fixture.parser.errorString().toUtf8();
     }},
    {"CloneATree", [](Fixture& fixture) { return serialized(fixture.root.cloneNode(1)); }},
    {"CloneADocument",
     [](Fixture& fixture) {
         return serialized(fixture.document.cloneNode(1).getFirstChild().getNextSibling());
     }},
    {"CloneAnUnsharedTree",
     [](Fixture& fixture) {
         const QRMIDOM_Node plain(static_cast<xercesc::DOMNode*>(fixture.root));
         return serialized(plain.cloneNode(1));
     }},
    {"Import",
     [](Fixture& fixture) {
         QRMIDOM_Element source = fixture.other.getDocumentElement();
         return serialized(fixture.document.importNode(source, 1));
     }},
    {"Build",
     [](Fixture& fixture) {
         QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument();
         QRMIDOM_Element root = document.createElementNS("urn:b", "p:root");
         document.appendChild(root);
         root.setAttributeNS("urn:k", "q:k", "v");
         root.setAttribute("long", fixture.longString);
         QRMIDOM_Node child = root.appendChild(document.createElement("child"));
         child.appendChild(document.createTextNode(fixture.longString));
         child.appendChild(document.createComment("c"));
         root.insertBefore(document.createCDATASection("d"), child);
         document.createDocumentFragment().appendChild(document.createProcessingInstruction("t", "d"));
         return serialized(document);
     }},
    {"Edit",
     [](Fixture& fixture) {
         QRMIDOM_Text text = fixture.document.createTextNode("0123456789");
         text.appendData(fixture.longString);
         text.deleteData(0, 2);
         text.insertData(1, fixture.longString);
         text.replaceData(0, 1, "x");
         return text.substringData(0, 10).toUtf8() + std::to_string(text.splitText(5).getLength());
     }},
    {"Normalize",
     [](Fixture& fixture) {
         QRMIDOM_Document copy = fixture.document.cloneNode(1);
         copy.normalize();
         copy.normalizeDocument();
         return serialized(copy.getDocumentElement());
     },
     true},
    {"Traverse",
     [](Fixture& fixture) {
         std::string names;
         QRMIDOM_TreeWalker walker = fixture.document.createTreeWalker(fixture.root, 0xFFFF, nullptr, 1);
         for (QRMIDOM_Node node = walker.nextNode(); !node.isNull(); node = walker.nextNode()) {
             names += node.getNodeName().toUtf8() + " ";
         }
         QRMIDOM_NodeIterator iterator = fixture.document.createNodeIterator(fixture.root, 1, nullptr, 1);
         for (QRMIDOM_Node node = iterator.nextNode(); !node.isNull(); node = iterator.nextNode()) {
             names += node.getNodeName().toUtf8() + " ";
         }
         return names + std::to_string(fixture.document.getElementsByTagName("c").getLength());
     },
     true},
    {"ReadStrings",
     [](Fixture& fixture) {
         std::string all;
         const QRMIDOM_Element c = fixture.root.getFirstChild();
         const QRMIDOM_NamedNodeMap attributes = c.getAttributes();
         for (unsigned long i = 0; i < attributes.getLength(); ++i) {
             all += attributes.item(i).getNodeValue().toUtf8();
         }
         return all + c.getNamespaceURI().toUtf8() + c.getFirstChild().getNodeValue().toUtf8();
     },
     true},
    {"WriteToAStream",
     [](Fixture& fixture) {
         std::ostringstream stream;
         QRMIDOM_Helper::write(fixture.document, stream, "UTF-8");
         if (stream.bad()) {
             throw std::bad_alloc(); // which the stream has told so
         }
         return stream.str();
     },
     true},
    {"WriteToASink",
     [](Fixture& fixture) {
         RecordingWriter writer("US-ASCII");
         QRMIDOM_Helper::write(fixture.document, writer);
         return calls(writer);
     },
     true},
    {"WriteThroughICU",
     [](Fixture& fixture) {
         RecordingWriter writer("KOI8-R");
         QRMIDOM_Helper::write(fixture.document, writer);
         return calls(writer);
     },
     true},
    {"WriteToAFile",
     [](Fixture& fixture) {
         const TemporaryFile target("");
         QRMIDOM_Helper::write(fixture.document, target.name(), "UTF-8");
         std::ifstream stream(target.name());
         return std::string(std::istreambuf_iterator<char>(stream), {});
     },
     false, "Unknown error occured while doing QRMIDOM_Helper::write"},
    {"WriteWithNamespaces",
     [](Fixture& fixture) {
         QRMIDOM_Element made = fixture.document.createElementNS("urn:new", "n:made");
         fixture.root.appendChild(made);
         RecordingWriter writer;
         QRMIDOM_Helper::writeNS(made, writer);
         fixture.root.removeChild(made);
         return calls(writer);
     },
     true},
    {"Find",
     [](Fixture& fixture) {
         const QRMIDOM_Document& document = fixture.document;
         std::string found;
         found += QRMIDOM_Helper::findFirstElement(document, "p:c").getTagName().toUtf8();
         found += QRMIDOM_Helper::findElementWithAttribute(document, "c", "id", "2").getTagName().toUtf8();
         found += QRMIDOM_Helper::findFirstElementNS(document, "urn:p", "c").getTagName().toUtf8();
         found += QRMIDOM_Helper::findFirstElementWithName(document, "c").getTagName().toUtf8();
         found += QRMIDOM_Helper::findChildElementWithText(document, "c", "y").getTagName().toUtf8();
         found += QRMIDOM_Helper::findChildElement(fixture.root, "c").getTagName().toUtf8();
         found += QRMIDOM_Helper::findChildElementWithAttribute(fixture.root, "c", "id", "2")
                      .getTagName()
                      .toUtf8();
         std::vector<QRMIDOM_Node> out;
         QRMIDOM_Helper::findChildElementsWithAttribute(document, "c", "d", "default", out);
         return found + countOf(out) + QRMIDOM_Helper::getElementText(fixture.root.getFirstChild()).toUtf8();
     },
     true},
    {"FindOrCreate",
     [](Fixture& fixture) {
         const QRMIDOM_Document document = fixture.other;
         std::string made;
         made += QRMIDOM_Helper::findOrCreateElement(document, "a/b/c").getTagName().toUtf8();
         made += QRMIDOM_Helper::findOrCreateElementWithAttribute(document, "a/b/d", "k", "v")
                     .getAttribute("k")
                     .toUtf8();
         made += QRMIDOM_Helper::getElementText(
                     QRMIDOM_Helper::findOrCreateElementWithText(document, "a/e", fixture.longString))
                     .toUtf8();
         return made
                + QRMIDOM_Helper::findOrCreateChildElement(document.getDocumentElement(), "f")
                      .getTagName()
                      .toUtf8();
     },
     true},
    {"CopyIntoATree",
     [](Fixture& fixture) {
         QRMIDOM_Node copy = QRMIDOM_Helper::appendChild(fixture.root, fixture.other.getDocumentElement());
         QRMIDOM_Node second =
             QRMIDOM_Helper::insertBefore(fixture.root, copy, fixture.other.getDocumentElement());
         const std::string result = serialized(copy) + serialized(second);
         fixture.root.removeChild(copy);
         fixture.root.removeChild(second);
         return result;
     },
     true},
    {"NamespacesInScope",
     [](Fixture& fixture) {
         std::map<I18NString, I18NString> namespaces;
         QRMIDOM_Helper::getNamespaces(fixture.root.getFirstChild(), namespaces);
         return std::to_string(namespaces.size())
                + QRMIDOM_Helper::getNamespacePrefix(fixture.root, "urn:p").toUtf8();
     }},
    {"Events",
     [](Fixture& fixture) {
         std::string all = std::to_string(fixture.events.parseText(kText));
         for (const std::string& event : fixture.events.events) {
             all += event + "\n";
         }
         return all;
     }},
    {"EventsOfAFile",
     [](Fixture& fixture) {
         fixture.events.events.clear();
         const int result = fixture.events.parse(filePath().c_str());
         return std::to_string(result) + std::to_string(fixture.events.events.size());
     }},
    {"FailingEvents",
     [](Fixture& fixture) {
         const int result = fixture.events.parseText("<a><b></a>");
         return std::to_string(result) + fixture.events.errorString();
     }},
    {"AUrl",
     [](Fixture&) {
         XmlUrl url("http://user:pw@host:8080/p/q?query#fragment");
         const XmlUrl resolved(url.getUrlText(), "../a/rather/long/relative/reference");
         XmlUrl copy(resolved);
         copy = url;
         return copy.getUrlText().toUtf8() + resolved.getPath().toUtf8() + url.getUser().toUtf8();
     },
     true},
    {"AUrlStream",
     [](Fixture&) {
         const std::unique_ptr<UrlInputStream> stream(
             XmlUrl(("file://" + filePath()).c_str()).makeNewStream());
         if (stream == nullptr) {
             return std::string("none");
         }
         QRMByteBuffer buffer;
         std::string all;
         while (stream->read(buffer, 100) > 0) {
             all += std::to_string(buffer.length()) + " ";
         }
         return all;
     },
     true},
    {"Strings",
     [](Fixture& fixture) {
         I18NString text("short");
         text += fixture.longString;
         text = text + I18NString("\u0416") + text.substring(3);
         int length = 0;
         std::string all;
         for (const char* const encoding : {"UTF-8", "KOI8-R", "UTF-16", "GB18030"}) {
             const std::unique_ptr<char[]> bytes(
                 text.toBytes(encoding, &length, QRMI18NStringAllocator, nullptr));
             all += std::to_string(length) + " ";
             all += std::to_string(I18NString(bytes.get(), length, encoding).length()) + " ";
         }
         return all + std::to_string(I18NConverter("Shift_JIS").firstUnexpressible(text));
     }},
    {"ErrorPaths",
     [](Fixture& fixture) {
         std::string all = std::to_string(domCodeOf([&] { fixture.document.createElement("1x"); }))
                           + std::to_string(domCodeOf([&] { fixture.root.appendChild(fixture.document); }))
                           + assertionOf([] { QRMIDOM_Node().getNodeName(); });
         try {
             I18NString("\xff");
         } catch (const I18NConversionError& error) {
             all += error.getText();
         }
         return all;
     }},
};

/// Takes what memory the document has in store, so that it has to ask for more.
void useUp(XercesMemory& memory, QRMIDOM_Document& document)
{
    memory.failFrom(1);
    try {
        for (;;) {
            document.createElement("x");
        }
    } catch (const QRMOutOfMemoryError&) {
        memory.failFrom(0);
    }
}

enum class Fault
{
    OperatorNew,
    Xerces
};

class MemoryFault : public testing::TestWithParam<std::tuple<Scenario, Fault>>
{
protected:
    /// Runs the scenario with the n-th allocation failing.
    /// @return whether it worked, since there was no such allocation
    bool runWithFault(long n, const std::string& expected)
    {
        const auto& [scenario, fault] = GetParam();
        std::optional<XercesMemory> memory;
        if (fault == Fault::Xerces) {
            memory.emplace();
        }
        Fixture fixture;
        const unsigned int shares = sharesOf(fixture.document);
        const unsigned int otherShares = sharesOf(fixture.other);
        std::optional<std::string> result;
        std::string error;
        bool failed = false;
        const auto attempt = [&, &scenario_ = scenario] {
            try {
                result = scenario_.run(fixture);
            } catch (const QRMOutOfMemoryError&) {
                error = "out of memory";
            } catch (const std::bad_alloc&) {
                error = "bad_alloc";
            } catch (const xercesc::OutOfMemoryException&) {
                error = scenario_.passesXercesErrors ? "out of memory in Xerces" : "";
                EXPECT_NE(error, "") << "Xerces' own error came out";
            } catch (const QRMThrowable& other) {
                EXPECT_STREQ(other.getText(), scenario_.otherError);
            } catch (const xercesc::XMLException&) {
                ADD_FAILURE() << "an error of Xerces";
            } catch (const xercesc::DOMException&) {
                ADD_FAILURE() << "an error of Xerces' DOM";
            } catch (const std::exception& other) {
                ADD_FAILURE() << "another error: " << other.what();
            }
        };
        if (fault == Fault::Xerces) {
            useUp(*memory, fixture.document);
            useUp(*memory, fixture.other);
            memory->failFrom(n);
            attempt();
            failed = memory->hasFailed();
            memory->failFrom(0);
        } else {
            const failing_allocator::FailNth fail(n);
            attempt();
            failed = fail.hasFailed();
        }
        if (result) {
            EXPECT_EQ(*result, expected) << (failed ? "a failure was passed over" : "");
        }
        EXPECT_EQ(sharesOf(fixture.document), shares);
        EXPECT_EQ(sharesOf(fixture.other), otherShares);
        EXPECT_EQ(scenario.run(fixture), expected) << "right afterwards";
        return !failed;
    }
};

INSTANTIATE_TEST_SUITE_P(Roads, MemoryFault,
                         testing::Combine(testing::ValuesIn(kScenarios),
                                          testing::Values(Fault::OperatorNew, Fault::Xerces)),
                         [](const auto& of) {
                             return std::string(std::get<0>(of.param).name)
                                    + (std::get<1>(of.param) == Fault::Xerces ? "_Xerces" : "_OperatorNew");
                         });

TEST_P(MemoryFault, GivesAToldErrorAndLeavesEverythingInOrder)
{
    filePath();
    const std::string expected = [] {
        Fixture fixture;
        return std::get<0>(GetParam()).run(fixture);
    }();
    EXPECT_NE(expected, "");
    constexpr long kTooMany = 20000;
    long n = 1;
    while (n < kTooMany && !runWithFault(n, expected) && !HasFailure()) {
        ++n;
    }
    EXPECT_LT(n, kTooMany);
    RecordProperty("failures", static_cast<int>(n - 1));
}

} // namespace
