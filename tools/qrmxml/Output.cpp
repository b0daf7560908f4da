#include "tools/qrmxml/Output.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <streambuf>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

void reportError(const std::string& name, const std::string& text, int line, int column)
{
    std::string place = name == "-" ? "<stdin>" : visible(name);
    if (line > 0) {
        place += ":" + std::to_string(line) + ":" + std::to_string(column);
    }
    std::fprintf(stderr, "%s: error: %s\n", place.c_str(), visible(text).c_str());
}

std::string visible(const std::string& utf8)
{
    std::string shown;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        char escape[8];
        if (byte == '\n') {
            shown += "\\n";
        } else if (byte == '\t') {
            shown += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            std::snprintf(escape, sizeof escape, "\\x%02X", byte);
            shown += escape;
        } else if (byte == 0xC2 && i + 1 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) < 0xA0) {
            // The second set of control characters, U+0080 to U+009F.
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(utf8[++i]));
            shown += escape;
        } else {
            shown += utf8[i];
        }
    }
    return shown;
}

/// Writes to a file descriptor and remembers the first error.
class Output::Buffer : public std::streambuf
{
public:
    explicit Buffer(int descriptor) : m_descriptor(descriptor)
    {
        setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() override { close(); }

    int error() const { return m_error; }

    bool writeOut()
    {
        const char* next = pbase();
        while (next < pptr() && m_error == 0) {
            const ssize_t length = ::write(m_descriptor, next, static_cast<std::size_t>(pptr() - next));
            if (length >= 0) {
                next += length;
            } else if (errno != EINTR) {
                m_error = errno;
            }
        }
        setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
        return m_error == 0;
    }

    void close()
    {
        if (m_descriptor > STDERR_FILENO && ::close(m_descriptor) != 0 && m_error == 0) {
            m_error = errno;
        }
        m_descriptor = -1;
    }

protected:
    int_type overflow(int_type unit) override
    {
        if (!writeOut()) {
            return traits_type::eof();
        }
        if (!traits_type::eq_int_type(unit, traits_type::eof())) {
            sputc(traits_type::to_char_type(unit));
        }
        return traits_type::not_eof(unit);
    }
    int sync() override { return writeOut() ? 0 : -1; }

private:
    std::array<char, 1 << 16> m_bytes;
    int m_descriptor;
    int m_error = 0;
};

namespace {

/// Where a name leads through links; the name itself where there is nothing yet.
std::string resolved(const std::string& name)
{
    const std::unique_ptr<char, void (*)(void*)> path(::realpath(name.c_str(), nullptr), std::free);
    return path != nullptr ? path.get() : name;
}

mode_t modeOfNewFiles()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

Output::Output(const std::string& name) : m_name(name), m_target(resolved(name))
{
    int descriptor = STDOUT_FILENO;
    if (!name.empty()) {
        struct stat status = {};
        const bool exists = ::stat(m_target.c_str(), &status) == 0;
        if (!exists || S_ISREG(status.st_mode)) {
            // A file that may not be written stays what it is, even where its folder would let us replace it.
            if (exists && ::access(m_target.c_str(), W_OK) != 0) {
                fail(errno);
            }
            m_temporary = m_target + ".XXXXXX";
            descriptor = ::mkstemp(m_temporary.data());
            if (descriptor < 0) {
                const int error = errno;
                m_temporary.clear();
                fail(error);
            }
            ::fchmod(descriptor, exists ? status.st_mode & 07777 : modeOfNewFiles());
        } else {
            descriptor = ::open(m_target.c_str(), O_WRONLY | O_CLOEXEC);
            if (descriptor < 0) {
                fail(errno);
            }
        }
    }
    m_buffer = std::make_unique<Buffer>(descriptor);
    m_stream = std::make_unique<std::ostream>(m_buffer.get());
}

Output::~Output()
{
    if (!m_temporary.empty()) {
        ::unlink(m_temporary.c_str());
    }
}

std::ostream& Output::stream()
{
    return *m_stream;
}

void Output::commit()
{
    m_buffer->writeOut();
    m_buffer->close();
    if (m_buffer->error() == EPIPE) {
        throw ReaderGone();
    }
    if (m_buffer->error() != 0) {
        fail(m_buffer->error());
    }
    if (!m_temporary.empty()) {
        if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
            fail(errno);
        }
        m_temporary.clear();
    }
}

void Output::fail(int error) const
{
    throw Trouble(m_name.empty() ? "<stdout>" : m_name, std::string("cannot write: ") + std::strerror(error));
}
