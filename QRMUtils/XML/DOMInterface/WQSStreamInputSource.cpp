#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"

#include <algorithm>
#include <limits>

#include <xercesc/util/PlatformUtils.hpp>

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

using xercesc::XMLPlatformUtils;

BinWQSInputStream::BinWQSInputStream(WQSInputStream& stream) : m_stream(&stream)
{
}

BinWQSInputStream::~BinWQSInputStream() = default;

XMLFilePos BinWQSInputStream::curPos() const
{
    return m_position;
}

XMLSize_t BinWQSInputStream::readBytes(XMLByte* const toFill, const XMLSize_t maxToRead)
{
    const int wanted = static_cast<int>(std::min<XMLSize_t>(maxToRead, std::numeric_limits<int>::max()));
    const int count = m_stream->read(reinterpret_cast<char*>(toFill), wanted);
    if (count < 0) {
        return 0;
    }
    m_position += static_cast<unsigned int>(count);
    return static_cast<XMLSize_t>(count);
}

const XMLCh* BinWQSInputStream::getContentType() const
{
    return nullptr;
}

WQSStreamInputSource::WQSStreamInputSource(WQSInputStream& stream)
    : InputSource(XMLPlatformUtils::fgMemoryManager), m_stream(stream)
{
}

WQSStreamInputSource::~WQSStreamInputSource() = default;

xercesc::BinInputStream* WQSStreamInputSource::makeStream() const
{
    return qrm::allocated(QRM_SITE(39), [this] { return new BinWQSInputStream(m_stream); });
}
