#include "QRMUtils/XML/DOMInterface/internal/Limits.h"

#include <memory>
#include <string>

#include <xercesc/sax/SAXParseException.hpp>

#include "QRMCore/I18NString.h"
#include "QRMCore/internal/UnitLength.h"

namespace qrm {

namespace {

[[noreturn]] void fail(const std::string& text, const xercesc::Locator* locator)
{
    const I18NString message(text.c_str());
    if (locator != nullptr) {
        throw xercesc::SAXParseException(message.getExternalBuffer(), *locator);
    }
    throw xercesc::SAXParseException(message.getExternalBuffer(), nullptr, nullptr, 0, 0);
}

class CountedStream final : public xercesc::BinInputStream
{
public:
    CountedStream(std::unique_ptr<xercesc::BinInputStream> stream, Limits& limits)
        : m_stream(std::move(stream)), m_limits(limits)
    {
    }

    XMLFilePos curPos() const override { return m_stream->curPos(); }
    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override
    {
        const XMLSize_t count = m_stream->readBytes(toFill, maxToRead);
        m_limits.read(count);
        return count;
    }
    const XMLCh* getContentType() const override { return m_stream->getContentType(); }
    const XMLCh* getEncoding() const override { return m_stream->getEncoding(); }

private:
    std::unique_ptr<xercesc::BinInputStream> m_stream;
    Limits& m_limits;
};

} // namespace

void Limits::deliver(const XMLCh* text, const xercesc::Locator* locator)
{
    deliver(unitLength(text), locator);
}

void Limits::failDepth(const xercesc::Locator* locator) const
{
    fail("the document has more than " + std::to_string(maxDepth) + " levels of elements", locator);
}

void Limits::failAmplification(const xercesc::Locator* locator) const
{
    fail("the document expands to more than " + std::to_string(maxAmplification) + " times its size",
         locator);
}

CountedSource::CountedSource(const xercesc::InputSource& source, Limits& limits)
    : InputSource(source.getMemoryManager()), m_source(source), m_limits(limits)
{
    setEncoding(source.getEncoding());
    setPublicId(source.getPublicId());
    setSystemId(source.getSystemId());
    setIssueFatalErrorIfNotFound(source.getIssueFatalErrorIfNotFound());
}

xercesc::BinInputStream* CountedSource::makeStream() const
{
    std::unique_ptr<xercesc::BinInputStream> stream(m_source.makeStream());
    return stream == nullptr ? nullptr : new CountedStream(std::move(stream), m_limits);
}

} // namespace qrm
