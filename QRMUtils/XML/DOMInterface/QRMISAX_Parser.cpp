#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"

#include <istream>

#include <xercesc/util/PlatformUtils.hpp>

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

using xercesc::XMLPlatformUtils;

BinStreamInputStream::BinStreamInputStream(std::istream& stream) : m_stream(&stream)
{
}

BinStreamInputStream::~BinStreamInputStream() = default;

XMLFilePos BinStreamInputStream::curPos() const
{
    return static_cast<unsigned int>(static_cast<std::streamoff>(m_stream->tellg()));
}

XMLSize_t BinStreamInputStream::readBytes(XMLByte* const toFill, const XMLSize_t maxToRead)
{
    if (m_stream->eof()) {
        return 0;
    }
    m_stream->read(reinterpret_cast<char*>(toFill), static_cast<std::streamsize>(maxToRead));
    return static_cast<XMLSize_t>(m_stream->gcount());
}

const XMLCh* BinStreamInputStream::getContentType() const
{
    return nullptr;
}

StreamInputSource::StreamInputSource(std::istream& stream)
    : InputSource(XMLPlatformUtils::fgMemoryManager), m_stream(stream)
{
}

StreamInputSource::~StreamInputSource() = default;

xercesc::BinInputStream* StreamInputSource::makeStream() const
{
    // Log readers know this place by the header's name.
    return qrm::allocated(QRMFileLocation{"QRMISAX_Parser.h", 74},
                          [this] { return new BinStreamInputStream(m_stream); });
}
