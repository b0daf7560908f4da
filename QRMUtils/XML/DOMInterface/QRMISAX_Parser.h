#ifndef QRMISAX_PARSER_H
#define QRMISAX_PARSER_H

#include <iosfwd>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"

/// The bytes of a std::istream for Xerces. The stream stays the caller's, has to outlive this, and is left where
/// reading stopped.
class QRMIDOM_API BinStreamInputStream : public xercesc::BinInputStream
{
public:
    explicit BinStreamInputStream(std::istream& stream);
    ~BinStreamInputStream() override;

    /// The stream's read position, modulo 2^32.
    XMLFilePos curPos() const override;

    /// Up to maxToRead bytes; 0 once the stream's end-of-file flag is set.
    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override;

    /// Always null: nothing is known of the content.
    const XMLCh* getContentType() const override;

private:
    std::istream* m_stream;
};

/// Presents a std::istream to Xerces, which finds out the encoding from the bytes. The stream stays the caller's and
/// has to outlive the parse. A parse to the end leaves the stream's end-of-file and fail flags set.
class QRMIDOM_API StreamInputSource : public xercesc::InputSource
{
public:
    explicit StreamInputSource(std::istream& stream);
    ~StreamInputSource() override;

    /// A new BinStreamInputStream over the same stream, the caller's to delete.
    /// @throws QRMOutOfMemoryError 0
    xercesc::BinInputStream* makeStream() const override;

private:
    std::istream& m_stream;
};

#endif
