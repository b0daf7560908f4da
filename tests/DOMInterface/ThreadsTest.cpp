// Everything at once in eight threads, each with objects of its own: each gets what a thread alone gets. Under the
// thread sanitizer, what the library shares behind the objects shows itself here.

#include <atomic>
#include <thread>

#include "QRMUtils/XML/DOMInterface/XmlUrl.h"
#include "tests/support/RecordingParser.h"
#include "tests/support/RecordingWriter.h"
#include "tests/support/TestDocument.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 200;

constexpr const char* kText =
    "<!DOCTYPE r [<!ENTITY e 'x<i/>'><!ATTLIST c d CDATA 'default'>]><r xmlns='urn:r' xmlns:p='urn:p'>"
    "<c id='1' p:k='\u0416'>text &lt; &#1046;</c><!--comment--><p:c>t<![CDATA[u]]></p:c>&e;</r>";

std::string joined(const std::vector<std::string>& lines)
{
    std::string all;
    for (const std::string& line : lines) {
        all += line + "\n";
    }
    return all;
}

std::string parseEvents()
{
    RecordingParser parser;
    const int result = parser.parseText(kText);
    return std::to_string(result) + joined(parser.events);
}

std::string failToParse()
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    const int result = parser.parse("<a><b></a>", 10, document);
    return std::to_string(result) + parser.errorString().toUtf8();
}

std::string parseChangeAndWrite()
{
    QRMIDOM_Document document = documentOf(kText);
    QRMIDOM_Element root = document.getDocumentElement();
    QRMIDOM_Helper::findOrCreateElement(document, "a/b").setAttribute("k", "v");
    root.appendChild(document.createElementNS("urn:new", "n:new"));
    QRMIDOM_Document copy = document.cloneNode(1);
    copy.normalizeDocument();
    QRMIDOM_Element second = copy.getDocumentElement();
    QRMIDOM_Helper::appendChild(root, second);
    RecordingWriter writer("KOI8-R");
    QRMIDOM_Helper::writeNS(document, writer);
    return written(document, "ISO-8859-1") + joined(writer.calls)
           + QRMIDOM_Helper::findElementWithAttribute(document, "c", "id", "1").getTagName().toUtf8();
}

std::string makeATypeAndADocument()
{
    const QRMIDOM_DOMImplementation implementation = QRMIDOM_DOMImplementation::getInstance();
    QRMIDOM_DocumentType doctype = implementation.createDocumentType("r", "public", "system");
    const QRMIDOM_Document document = implementation.createDocument("", "r", doctype);
    return written(document);
}

std::string convert()
{
    std::string all;
    for (const char* const encoding : {"UTF-8", "KOI8-R", "Shift_JIS", "GB18030", "UTF-16"}) {
        int length = 0;
        const I18NString text(u"abc \u0416 \u3042");
        const I18NConverter converter(encoding);
        all += std::to_string(converter.firstUnexpressible(text)) + " ";
        try {
            const std::unique_ptr<char[]> bytes(
                text.toBytes(converter, &length, QRMI18NStringAllocator, nullptr));
            all += std::string(bytes.get(), static_cast<std::size_t>(length));
        } catch (const I18NConversionError& error) {
            all += error.getText();
        }
    }
    return all;
}

std::string useUrls()
{
    const XmlUrl url("http://user@host:8080/a/b?c#d", "../e");
    std::string error;
    try {
        XmlUrl("no such:thing");
    } catch (const xercesc::MalformedURLException& malformed) {
        error = I18NString(malformed.getMessage()).toUtf8();
    }
    const std::unique_ptr<UrlInputStream> stream(XmlUrl("file:///etc/hostname").makeNewStream());
    QRMByteBuffer buffer;
    return url.getUrlText().toUtf8() + error
           + (stream != nullptr ? std::to_string(stream->read(buffer, 1)) : "none");
}

TEST(Threads, GetWhatAThreadAloneGets)
{
    using Work = std::string (*)();
    const Work works[] = {parseEvents,           failToParse, parseChangeAndWrite,
                          makeATypeAndADocument, convert,     useUrls};
    std::vector<std::string> expected;
    for (const Work work : works) {
        expected.push_back(work());
        EXPECT_NE(expected.back(), "");
    }

    std::atomic<int> waiting{kThreads};
    std::atomic<int> differences{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            for (int round = 0; round < kRounds; ++round) {
                // At any moment the threads are at different places.
                const auto at = static_cast<std::size_t>(thread + round) % std::size(works);
                if (works[at]() != expected[at]) {
                    ++differences;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(differences, 0);
}

} // namespace
