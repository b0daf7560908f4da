#ifndef WQSSTREAMINPUTSOURCE_H
#define WQSSTREAMINPUTSOURCE_H

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "WQSStreams/WQSInputStream.h"

/// The bytes of a WQSInputStream for Xerces. The stream stays the caller's, has to outlive this, and is left where
/// reading stopped.
class QRMIDOM_API BinWQSInputStream : public xercesc::BinInputStream
{
public:
    /// Reads from the stream, which has to outlive this.
    explicit BinWQSInputStream(WQSInputStream& stream);
    ~BinWQSInputStream() override;

    /// The number of bytes delivered so far, modulo 2^32; not the stream's own position.
    XMLFilePos curPos() const override;

    /// Up to maxToRead bytes in one read of the stream; 0 at its end and when it fails.
    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override;

    /// Always null: nothing is known of the content.
    const XMLCh* getContentType() const override;

private:
    WQSInputStream* m_stream;
    unsigned int m_position = 0;
};

/// Presents a WQSInputStream to Xerces, which finds out the encoding from the bytes. The stream stays the caller's and
/// has to outlive the parse.
class QRMIDOM_API WQSStreamInputSource : public xercesc::InputSource
{
public:
    /// Reads from the stream, which has to outlive this.
    explicit WQSStreamInputSource(WQSInputStream& stream);
    ~WQSStreamInputSource() override;

    /// A new BinWQSInputStream over the same stream, the caller's to delete.
    /// @throws QRMOutOfMemoryError 0
    xercesc::BinInputStream* makeStream() const override;

private:
    WQSInputStream& m_stream;
};

#endif
