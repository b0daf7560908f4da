#include "tools/qrmxml/Input.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QRMCore/I18NString.h>
#include <QRMUtils/XML/DOMInterface/XmlUrl.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xercesc/util/XMLException.hpp>

#include "tools/qrmxml/Output.h"

/// Where bytes come from.
class Input::Source
{
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    /// Up to `count` bytes, 0 at the end.
    /// @throws std::string why it cannot be read
    virtual std::size_t read(char* dest, std::size_t count) = 0;

    /// 0 where it is not known.
    virtual off_t size() const = 0;
};

namespace {

constexpr off_t kMebibyte = off_t(1) << 20;
constexpr off_t kLongInput = 8 * kMebibyte;
constexpr int kBarWidth = 40;

class Descriptor final : public Input::Source
{
public:
    /// Takes the descriptor.
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() override
    {
        if (m_descriptor > STDIN_FILENO) {
            ::close(m_descriptor);
        }
    }

    std::size_t read(char* dest, std::size_t count) override
    {
        ssize_t length = -1;
        do {
            length = ::read(m_descriptor, dest, count);
        } while (length < 0 && errno == EINTR);
        if (length < 0) {
            throw std::string(std::strerror(errno));
        }
        return static_cast<std::size_t>(length);
    }

    off_t size() const override
    {
        struct stat status = {};
        return ::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : 0;
    }

private:
    int m_descriptor;
};

/// The message of an error in reading from the network.
std::string textOf(const xercesc::XMLException& error)
{
    return I18NString(error.getMessage()).toUtf8();
}

class Fetched final : public Input::Source
{
public:
    explicit Fetched(std::unique_ptr<xercesc::BinInputStream> stream) : m_stream(std::move(stream)) {}

    std::size_t read(char* dest, std::size_t count) override
    {
        try {
            return m_stream->readBytes(reinterpret_cast<XMLByte*>(dest), count);
        } catch (const xercesc::XMLException& error) {
            throw textOf(error);
        }
    }

    off_t size() const override { return 0; }

private:
    std::unique_ptr<xercesc::BinInputStream> m_stream;
};

/// Whether the name has the form of a URL that can be read.
bool isUrl(const std::string& name)
{
    try {
        return XmlUrl(name.c_str()).getProtocol() <= xercesc::XMLURL::HTTPS;
    } catch (const xercesc::XMLException&) {
        return false;
    }
}

std::unique_ptr<Input::Source> fetch(const std::string& url)
{
    try {
        // XmlUrl would not tell why there is nothing to be had.
        std::unique_ptr<xercesc::BinInputStream> stream(xercesc::XMLURL(url.c_str()).makeNewStream());
        if (stream == nullptr) {
            throw Trouble(url, std::strerror(ENOENT));
        }
        return std::make_unique<Fetched>(std::move(stream));
    } catch (const xercesc::XMLException& error) {
        throw Trouble(url, "cannot read: " + textOf(error));
    }
}

std::unique_ptr<Input::Source> open(const std::string& name)
{
    if (name == "-") {
        return std::make_unique<Descriptor>(STDIN_FILENO);
    }
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        auto file = std::make_unique<Descriptor>(descriptor);
        struct stat status = {};
        if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
            throw Trouble(name, std::strerror(EISDIR));
        }
        return file;
    }
    const int error = errno;
    if (isUrl(name)) {
        return fetch(name);
    }
    throw Trouble(name, std::strerror(error));
}

} // namespace

Input::Input(const std::string& name, bool noProgress)
    : m_source(open(name)),
      m_showsProgress(!noProgress && ::isatty(STDERR_FILENO) != 0),
      m_size(m_source->size())
{
}

Input::~Input()
{
    if (m_shown >= 0) {
        std::fputs("\r\033[K", stderr);
    }
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
    std::size_t length = 0;
    try {
        length = m_source != nullptr ? m_source->read(dest, static_cast<std::size_t>(count)) : 0;
    } catch (const std::string& failure) {
        m_failure = failure;
    }
    if (length == 0) {
        return -1;
    }
    m_done += static_cast<off_t>(length);
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
    m_source.reset();
}

void Input::showProgress()
{
    if (!m_showsProgress || (m_size != 0 ? m_size : m_done) < kLongInput) {
        return;
    }
    const int now = static_cast<int>(m_size != 0 ? 100 * m_done / m_size : m_done / kMebibyte);
    if (now == m_shown) {
        return;
    }
    m_shown = now;
    if (m_size != 0) {
        const int filled = kBarWidth * std::min(now, 100) / 100;
        std::fprintf(stderr, "\r[%s%s] %3d %%", std::string(static_cast<std::size_t>(filled), '=').c_str(),
                     std::string(static_cast<std::size_t>(kBarWidth - filled), ' ').c_str(), now);
    } else {
        std::fprintf(stderr, "\r%d MiB", now);
    }
    std::fflush(stderr);
}
