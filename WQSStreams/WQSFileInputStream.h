#ifndef WQSFILEINPUTSTREAM_H
#define WQSFILEINPUTSTREAM_H

#include "WQSStreams/WQSInputStream.h"
#include "WQSStreams/WQS_Api.h"

/// The bytes of a file, of any size. Nothing is buffered.
class WQS_API WQSFileInputStream : public WQSInputStream
{
public:
    using WQSInputStream::read;
    using WQSInputStream::readFully;

    /// Opens the file for reading; isOpen() tells whether that worked. Null opens nothing.
    explicit WQSFileInputStream(const char* name);
    ~WQSFileInputStream() override;

    /// False for a file that is missing or may not be read, for a directory, and after close().
    bool isOpen() const { return m_descriptor >= 0; }

    int read(QRMByteBuffer& buffer, int count) override;

    /// Reads straight into the caller's memory.
    int read(char* dest, int count) override;

    /// One byte from 0 to 255; -1 at the end and on an error.
    int read() override;

    /// Closes the file; may be repeated.
    void close() override;

private:
    int m_descriptor;
};

#endif
