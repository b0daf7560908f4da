// A sink may fail at any call: its own error comes out, what it got before is the beginning of the whole, and handles
// and tree are as before.

#include <algorithm>
#include <vector>

#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h"
#include "fuzz/Fuzz.h"

namespace {

constexpr const char* kEncodings[] = {"UTF-8",  "US-ASCII",  "ISO-8859-1",
                                      "KOI8-R", "Shift_JIS", "windows-1252"};

struct SinkFailure
{
    std::size_t call;
};

class FailingSink : public DomWriter
{
public:
    FailingSink(const char* encoding, std::size_t failsAt) : DomWriter(encoding), m_failsAt(failsAt) {}

    std::vector<std::string> calls;

    void write(const char* data, int length) override
    {
        failInTime();
        calls.emplace_back(data, static_cast<std::size_t>(length));
    }
    void endline() override
    {
        failInTime();
        calls.emplace_back("\n");
    }

private:
    void failInTime() const
    {
        if (calls.size() == m_failsAt) {
            throw SinkFailure{m_failsAt};
        }
    }
    std::size_t m_failsAt;
};

/// How the writing ended: with a failure of the sink, for want of a character, or well.
enum class End
{
    Well,
    Sink,
    Encoding
};

End writeTo(FailingSink& sink, const QRMIDOM_Node& node, bool withNamespaces)
{
    try {
        if (withNamespaces) {
            QRMIDOM_Helper::writeNS(node, sink);
        } else {
            QRMIDOM_Helper::write(node, sink);
        }
    } catch (const SinkFailure& failure) {
        fuzz::require(failure.call == sink.calls.size(), "a later call after the failure");
        return End::Sink;
    } catch (const I18NConversionError&) {
        return End::Encoding;
    }
    return End::Well;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const unsigned choice = input.choice();
    const std::size_t failsAt = input.choice() | static_cast<std::size_t>(input.choice()) << 8;
    const std::string text = input.rest();
    const char* const encoding = kEncodings[choice % std::size(kEncodings)];
    const bool withNamespaces = (choice & 128) != 0;

    QRMIDOM_Parser parser;
    parser.setRefuseExternal(1);
    parser.setEntityExpansionLimit(1000);
    QRMIDOM_Document document;
    if (parser.parse(text.data(), static_cast<int>(text.size()), document) != 1) {
        return 0;
    }
    const unsigned int shares = document.getRefCountedNodeImpl()->getCount();

    FailingSink whole(encoding, static_cast<std::size_t>(-1));
    const End end = writeTo(whole, document, withNamespaces);
    fuzz::require(end != End::Sink, "the sink did not fail");
    FailingSink failing(encoding, failsAt);
    const End early = writeTo(failing, document, withNamespaces);
    fuzz::require(early == (failsAt < whole.calls.size() ? End::Sink : end), "the end");
    fuzz::require(failing.calls.size() == std::min(failsAt, whole.calls.size())
                      && std::equal(failing.calls.begin(), failing.calls.end(), whole.calls.begin()),
                  "the calls before the failure");
    FailingSink again(encoding, static_cast<std::size_t>(-1));
    writeTo(again, document, withNamespaces);
    fuzz::require(again.calls == whole.calls, "the tree has changed");
    fuzz::require(document.getRefCountedNodeImpl()->getCount() == shares, "shares are left");
    return 0;
}
