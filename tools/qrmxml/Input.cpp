#include "tools/qrmxml/Input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/qrmxml/Output.h"

namespace {

constexpr off_t kLongInput = off_t(8) << 20;
constexpr int kBarWidth = 40;

int openInput(const std::string& name)
{
    if (name == "-") {
        return STDIN_FILENO;
    }
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw Trouble(name, std::strerror(errno));
    }
    return descriptor;
}

} // namespace

Input::Input(const std::string& name, bool noProgress) : m_descriptor(openInput(name))
{
    struct stat status = {};
    if (::fstat(m_descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        Input::close();
        throw Trouble(name, std::strerror(EISDIR));
    }
    if (!noProgress && S_ISREG(status.st_mode) && status.st_size >= kLongInput
        && ::isatty(STDERR_FILENO) != 0) {
        m_size = status.st_size;
    }
}

Input::~Input()
{
    if (m_percent >= 0) {
        std::fputs("\r\033[K", stderr);
    }
    Input::close();
}

int Input::read(QRMByteBuffer& buffer, int count)
{
    if (count > 0) {
        buffer.reserve(count);
    }
    return read(buffer.data(), count);
}

int Input::read(char* dest, int count)
{
    if (count <= 0) {
        return 0;
    }
    ssize_t length = -1;
    do {
        length = ::read(m_descriptor, dest, static_cast<std::size_t>(count));
    } while (length < 0 && errno == EINTR);
    if (length < 0) {
        m_failure = std::strerror(errno);
    }
    if (length <= 0) {
        return -1;
    }
    m_done += length;
    showProgress();
    return static_cast<int>(length);
}

int Input::read()
{
    char byte = 0;
    return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

void Input::close()
{
    if (m_descriptor > STDIN_FILENO) {
        ::close(m_descriptor);
    }
    m_descriptor = -1;
}

void Input::showProgress()
{
    if (m_size == 0) {
        return;
    }
    const int percent = static_cast<int>(100 * m_done / m_size);
    if (percent != m_percent) {
        m_percent = percent;
        const int filled = kBarWidth * percent / 100;
        std::fprintf(stderr, "\r[%s%s] %3d %%", std::string(static_cast<std::size_t>(filled), '=').c_str(),
                     std::string(static_cast<std::size_t>(kBarWidth - filled), ' ').c_str(), percent);
        std::fflush(stderr);
    }
}
