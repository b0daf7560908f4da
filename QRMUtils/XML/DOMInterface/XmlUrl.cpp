#include "QRMUtils/XML/DOMInterface/XmlUrl.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include <xercesc/util/XMLException.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/NetAccessor.h"

using xercesc::BinInputStream;
using xercesc::XMLURL;

namespace {

constexpr const char* kUtf16 = "UTF-16"; // without a byte-order mark

/// A string as Xerces takes it, for the length of a call.
class Units
{
public:
    explicit Units(const I18NString& text)
        : m_bytes(text.toBytes(kUtf16, nullptr, QRMI18NStringAllocator, nullptr))
    {
    }
    operator const XMLCh*() const { return reinterpret_cast<const XMLCh*>(m_bytes.get()); }

private:
    std::unique_ptr<char[]> m_bytes;
};

/// Xerces follows null text.
const char* neverNull(const char* text)
{
    return text != nullptr ? text : "";
}

I18NString stringOf(const XMLCh* units)
{
    if (units == nullptr) {
        return I18NString();
    }
    return I18NString(reinterpret_cast<const char*>(units), 2 * u_strlen(units), kUtf16);
}

} // namespace

UrlInputStream::UrlInputStream(BinInputStream* stream) : m_stream(stream)
{
}

UrlInputStream::~UrlInputStream()
{
    qrm::silently([this] { delete m_stream; });
}

int UrlInputStream::read(QRMByteBuffer& buffer, int count)
{
    const int wanted = std::clamp(count, 0, std::numeric_limits<int>::max() - 1);
    buffer.reserve(wanted + 1);
    std::memset(buffer.data(), 0, static_cast<std::size_t>(wanted) + 1);
    return static_cast<int>(
        m_stream->readBytes(reinterpret_cast<XMLByte*>(buffer.data()), static_cast<XMLSize_t>(wanted)));
}

int UrlInputStream::read()
{
    XMLByte byte = 255;
    m_stream->readBytes(&byte, 1);
    return byte;
}

void UrlInputStream::close()
{
}

XmlUrl::XmlUrl() = default;

XmlUrl::XmlUrl(const I18NString& url)
{
    setUrl(url);
}

XmlUrl::XmlUrl(const char* url) : m_url(neverNull(url))
{
}

XmlUrl::XmlUrl(const I18NString& base, const I18NString& relative)
{
    setUrl(base, relative);
}

XmlUrl::XmlUrl(const char* base, const char* relative) : m_url(XMLURL(neverNull(base)), neverNull(relative))
{
}

XmlUrl::XmlUrl(const I18NString& base, const char* relative)
{
    setUrl(base, relative);
}

XmlUrl::XmlUrl(const XmlUrl& other) = default;

XmlUrl& XmlUrl::operator=(const XmlUrl& other) = default;

XmlUrl::~XmlUrl() = default;

void XmlUrl::setUrl(const I18NString& url)
{
    m_url.setURL(Units(url));
}

void XmlUrl::setUrl(const char* url)
{
    m_url = XMLURL(neverNull(url));
}

void XmlUrl::setUrl(const I18NString& base, const I18NString& relative)
{
    m_url.setURL(Units(base), Units(relative));
}

void XmlUrl::setUrl(const char* base, const char* relative)
{
    m_url = XMLURL(XMLURL(neverNull(base)), neverNull(relative));
}

void XmlUrl::setUrl(const I18NString& base, const char* relative)
{
    m_url = XMLURL(Units(base), neverNull(relative));
}

XMLURL::Protocols XmlUrl::getProtocol() const
{
    return m_url.getProtocol();
}

unsigned int XmlUrl::getPortNum() const
{
    return m_url.getPortNum();
}

I18NString XmlUrl::getHost() const
{
    return stringOf(m_url.getHost());
}

I18NString XmlUrl::getUser() const
{
    return stringOf(m_url.getUser());
}

I18NString XmlUrl::getPassword() const
{
    return stringOf(m_url.getPassword());
}

I18NString XmlUrl::getPath() const
{
    return stringOf(m_url.getPath());
}

I18NString XmlUrl::getQuery() const
{
    return stringOf(m_url.getQuery());
}

I18NString XmlUrl::getFragment() const
{
    return stringOf(m_url.getFragment());
}

I18NString XmlUrl::getUrlText() const
{
    return stringOf(m_url.getURLText());
}

bool XmlUrl::isRelative() const
{
    return m_url.isRelative();
}

bool XmlUrl::operator==(const XmlUrl& other) const
{
    return m_url == other.m_url;
}

bool XmlUrl::operator!=(const XmlUrl& other) const
{
    return m_url != other.m_url;
}

UrlInputStream* XmlUrl::makeNewStream() const
{
    try {
        std::unique_ptr<BinInputStream> stream(m_url.makeNewStream());
        if (stream == nullptr) {
            return nullptr;
        }
        UrlInputStream* const made = qrm::allocated(
            QRM_SITE(288), [&stream] { return new (std::nothrow) UrlInputStream(stream.get()); });
        static_cast<void>(stream.release());
        return made;
    } catch (const xercesc::XMLException&) {
        return nullptr;
    }
}

void XmlUrl::setConnectTimeout(int milliseconds)
{
    qrm::setConnectTimeout(milliseconds);
}

void XmlUrl::setStallTimeout(int milliseconds)
{
    qrm::setStallTimeout(milliseconds);
}
