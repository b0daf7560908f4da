#ifndef QRMBYTEBUFFER_H
#define QRMBYTEBUFFER_H

#include <vector>

#include "QRMCore/QRMCore_Api.h"

/// A growing piece of memory and the number of bytes in it that count. Storage beyond that length may be written, too.
class QRMCORE_API QRMByteBuffer
{
public:
    QRMByteBuffer();
    /// @overload
    QRMByteBuffer(const QRMByteBuffer&);
    /// The other buffer is left empty, without storage.
    QRMByteBuffer(QRMByteBuffer&&) noexcept;
    /// Copies the bytes.
    QRMByteBuffer& operator=(const QRMByteBuffer&);
    /// @overload
    QRMByteBuffer& operator=(QRMByteBuffer&&) noexcept;
    ~QRMByteBuffer();

    /// Makes the storage at least that many bytes, new ones 0; keeps contents and length. Never shrinks.
    void reserve(int bytes);

    /// The storage; null while there is none. Void with the next reserve().
    char* data() { return m_storage.empty() ? nullptr : m_storage.data(); }
    /// @overload
    const char* data() const { return m_storage.empty() ? nullptr : m_storage.data(); }

    /// The bytes that count.
    int length() const { return m_length; }

    /// Sets the bytes that count, reserving them first; a negative length is 0.
    void setLength(int length);

    /// The size of the storage in bytes.
    int capacity() const { return static_cast<int>(m_storage.size()); }

private:
    std::vector<char> m_storage;
    int m_length = 0;
};

#endif
