#ifndef WQSINPUTSTREAM_H
#define WQSINPUTSTREAM_H

#include "QRMCore/QRMByteBuffer.h"
#include "WQSStreams/WQS_Api.h"

/// A source of bytes, read from front to end. The order of the virtual operations is part of the interface.
class WQS_API WQSInputStream
{
public:
    WQSInputStream() = default;
    WQSInputStream(const WQSInputStream&) = delete;
    WQSInputStream& operator=(const WQSInputStream&) = delete;
    virtual ~WQSInputStream();

    /// Reads up to `count` bytes into the buffer's storage, from its beginning; the buffer's length stays what it is.
    /// @return the bytes read; 0 or less at the end and on an error
    virtual int read(QRMByteBuffer& buffer, int count) = 0;

    /// Reads up to `count` bytes.
    /// @return the bytes read; 0 for a count of 0 or less; -1 at the end and on an error
    virtual int read(char* dest, int count);

    /// Reads `count` bytes, fewer only where the stream ends, into the buffer's storage; its length stays what it is.
    /// @return the bytes read
    virtual int readFully(QRMByteBuffer& buffer, int count);

    /// Reads `count` bytes, fewer only where the stream ends.
    /// @return the bytes read
    virtual int readFully(char* dest, int count);

    /// Reads one byte, as a value from 0 to 255.
    virtual int read() = 0;

    /// Gives up what the stream reads from; closing again does nothing.
    virtual void close() = 0;

    /// Whether unread() puts bytes back.
    virtual bool canUnread() { return false; }

    /// Puts bytes back, to be read again.
    /// @throws const char* "not implemented" where canUnread() is false
    virtual void unread(const char* /*data*/, int /*count*/)
    {
        // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): a text is what callers catch
        throw static_cast<const char*>("not implemented");
    }
};

#endif
