#include "WQSStreams/WQSInputStream.h"

#include <algorithm>
#include <cstring>

WQSInputStream::~WQSInputStream() = default;

int WQSInputStream::read(char* dest, int count)
{
    if (count <= 0) {
        return 0;
    }
    QRMByteBuffer buffer;
    // A stream that claims more than was asked for, or than it stored, is not believed.
    const int length = std::min({read(buffer, count), count, buffer.capacity()});
    if (length <= 0) {
        return -1;
    }
    std::memcpy(dest, buffer.data(), static_cast<std::size_t>(length));
    return length;
}

int WQSInputStream::readFully(QRMByteBuffer& buffer, int count)
{
    if (count <= 0) {
        return 0;
    }
    buffer.reserve(count);
    return readFully(buffer.data(), count);
}

int WQSInputStream::readFully(char* dest, int count)
{
    int done = 0;
    while (done < count) {
        const int length = read(dest + done, count - done);
        if (length <= 0) {
            break;
        }
        done += length;
    }
    return done;
}
