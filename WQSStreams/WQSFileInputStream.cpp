#include "WQSStreams/WQSFileInputStream.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kClosed = -1;

bool isDirectory(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

int openForReading(const char* name)
{
    if (name == nullptr) {
        return kClosed;
    }
    int descriptor = kClosed;
    do {
        descriptor = ::open(name, O_RDONLY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor >= 0 && isDirectory(descriptor)) {
        ::close(descriptor);
        return kClosed;
    }
    return descriptor;
}

} // namespace

WQSFileInputStream::WQSFileInputStream(const char* name) : m_descriptor(openForReading(name))
{
}

WQSFileInputStream::~WQSFileInputStream()
{
    WQSFileInputStream::close();
}

int WQSFileInputStream::read(QRMByteBuffer& buffer, int count)
{
    if (count > 0) {
        buffer.reserve(count);
    }
    return read(buffer.data(), count);
}

int WQSFileInputStream::read(char* dest, int count)
{
    if (count <= 0) {
        return 0;
    }
    ssize_t length = -1;
    do {
        length = ::read(m_descriptor, dest, static_cast<std::size_t>(count));
    } while (length < 0 && errno == EINTR);
    return length > 0 ? static_cast<int>(length) : -1;
}

int WQSFileInputStream::read()
{
    char byte = 0;
    return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

void WQSFileInputStream::close()
{
    if (isOpen()) {
        ::close(m_descriptor);
        m_descriptor = kClosed;
    }
}
