#include "QRMCore/QRMByteBuffer.h"

#include <algorithm>
#include <utility>

QRMByteBuffer::QRMByteBuffer() = default;

QRMByteBuffer::QRMByteBuffer(const QRMByteBuffer&) = default;

QRMByteBuffer::QRMByteBuffer(QRMByteBuffer&& other) noexcept
    : m_storage(std::exchange(other.m_storage, {})), m_length(std::exchange(other.m_length, 0))
{
}

QRMByteBuffer& QRMByteBuffer::operator=(const QRMByteBuffer&) = default;

QRMByteBuffer& QRMByteBuffer::operator=(QRMByteBuffer&& other) noexcept
{
    if (this != &other) {
        m_storage = std::exchange(other.m_storage, {});
        m_length = std::exchange(other.m_length, 0);
    }
    return *this;
}

QRMByteBuffer::~QRMByteBuffer() = default;

void QRMByteBuffer::reserve(int bytes)
{
    if (bytes > capacity()) {
        m_storage.resize(static_cast<std::size_t>(bytes));
    }
}

void QRMByteBuffer::setLength(int length)
{
    reserve(length);
    m_length = std::max(length, 0);
}
