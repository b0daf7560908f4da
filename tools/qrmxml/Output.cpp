#include "tools/qrmxml/Output.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <streambuf>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/qrmxml/Excerpt.h"
#include "tools/qrmxml/Terminal.h"

namespace fs = std::filesystem;

namespace {

/// The columns of an excerpt that goes to no terminal.
constexpr int kUnclippedWidth = 120;

} // namespace

void reportError(const std::string& name, const std::string& text, int line, int column)
{
    std::string place = name == "-" ? "<stdin>" : name.empty() ? "''" : visible(name);
    if (line > 0) {
        place += ":" + std::to_string(line) + ":" + std::to_string(column);
    }
    const Terminal terminal(STDERR_FILENO);
    std::string report =
        place + ": " + terminal.styled("error:", Terminal::Style::kError) + " " + visible(text) + "\n";
    if (line > 0 && name != "-") {
        report += excerptOf(name, line, column, terminal.width() > 0 ? terminal.width() : kUnclippedWidth);
    }
    std::fputs(report.c_str(), stderr);
}

namespace {

/// The character that begins at an index of UTF-8 text.
struct Decoded
{
    char32_t character;
    std::size_t length; // in bytes; 0 where there is no UTF-8
};

Decoded decode(const std::string& utf8, std::size_t index)
{
    const auto lead = static_cast<unsigned char>(utf8[index]);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || index + length > utf8.size()) {
        return {0, 0};
    }
    char32_t character = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(utf8[index + i]);
        if ((byte & 0xC0) != 0x80) {
            return {0, 0};
        }
        character = character << 6 | (byte & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kFirstOfLength = {0, 0, 0x80, 0x800, 0x10000};
    if (character < kFirstOfLength[length] || (character >= 0xD800 && character <= 0xDFFF)
        || character > 0x10FFFF) {
        return {0, 0};
    }
    return {character, length};
}

/// Whether a character acts on a terminal, or on the order in which it shows others, instead of being shown.
bool isControl(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x61C
           || character == 0x200E || character == 0x200F || (character >= 0x2028 && character <= 0x202E)
           || (character >= 0x2066 && character <= 0x2069) || character == 0xFEFF;
}

std::string byteEscape(unsigned char byte)
{
    std::array<char, 8> escape;
    std::snprintf(escape.data(), escape.size(), "\\x%02X", byte);
    return escape.data();
}

std::string characterEscape(char32_t character)
{
    std::array<char, 16> escape;
    std::snprintf(escape.data(), escape.size(), "\\u%04X", static_cast<unsigned int>(character));
    return escape.data();
}

} // namespace

std::string visible(const std::string& utf8)
{
    std::string shown;
    for (std::size_t i = 0; i < utf8.size();) {
        const Decoded next = decode(utf8, i);
        if (next.length == 0) {
            shown += byteEscape(static_cast<unsigned char>(utf8[i++]));
            continue;
        }
        switch (next.character) {
        case '\n': shown += "\\n"; break;
        case '\r': shown += "\\r"; break;
        case '\t': shown += "\\t"; break;
        default:
            if (isControl(next.character)) {
                shown += next.length == 1 ? byteEscape(static_cast<unsigned char>(next.character))
                                          : characterEscape(next.character);
            } else {
                shown.append(utf8, i, next.length);
            }
        }
        i += next.length;
    }
    return shown;
}

std::string shortened(const I18NString& text, int maxUnits)
{
    if (text.length() <= maxUnits) {
        return text.toUtf8();
    }
    // Not within a surrogate pair.
    const char16_t last = text.charAt(maxUnits - 1);
    const int length = last >= 0xD800 && last <= 0xDBFF ? maxUnits - 1 : maxUnits;
    return text.substring(0, length).toUtf8() + "...";
}

/// Writes to a file descriptor, which becomes its own, and remembers the first error.
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
        if (m_descriptor >= 0 && ::close(m_descriptor) != 0 && m_error == 0) {
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

constexpr int kMaxLinks = 40;

/// The temporary file that there is, for whoever is interrupted. A lock-free atomic, as signal handlers need it.
std::atomic<const char*> temporaryFile{nullptr};

void removeTemporaryFile(int signal)
{
    const char* const name = temporaryFile;
    if (name != nullptr) {
        ::unlink(name);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void watchForSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        // What the caller had ignored, as nohup has, stays so.
        if (std::signal(signal, removeTemporaryFile) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

/// The number of the open descriptor that a path stands for, such as /dev/fd/3; -1 where it is another path. Their
/// files are never replaced: what the shell opened for appending would lose all that it holds.
int openDescriptor(const fs::path& path)
{
    std::error_code error;
    const std::string number = path.filename();
    const bool isOne = !number.empty() && number.find_first_not_of("0123456789") == std::string::npos
                       && fs::equivalent(path.parent_path(), "/proc/self/fd", error);
    return isOne ? std::atoi(number.c_str()) : -1;
}

mode_t modeOfNewFiles()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

Output::Output(const std::string& name) : m_name(name)
{
    m_buffer = std::make_unique<Buffer>(open());
    m_stream = std::make_unique<std::ostream>(m_buffer.get());
}

Output::~Output()
{
    if (!m_temporary.empty()) {
        ::unlink(m_temporary.c_str());
    }
    temporaryFile = nullptr;
}

/// Opens where the name leads through links, also through those that lead to nothing yet.
int Output::open()
{
    if (m_name == "-") {
        return STDOUT_FILENO;
    }
    fs::path target = m_name;
    std::error_code error;
    for (int links = 0; links < kMaxLinks; ++links) {
        const int descriptor = openDescriptor(target);
        if (descriptor >= 0) {
            const int copy = ::dup(descriptor);
            if (copy < 0) {
                fail(errno);
            }
            return copy;
        }
        const fs::path link = fs::read_symlink(target, error);
        if (error) {
            break;
        }
        target = target.parent_path() / link;
    }
    m_target = target;

    struct stat status = {};
    if (::stat(m_target.c_str(), &status) != 0) {
        if (errno != ENOENT || m_target.empty()) {
            fail(errno);
        }
        const int descriptor = openTemporary();
        ::fchmod(descriptor, modeOfNewFiles());
        return descriptor;
    }
    if (!S_ISREG(status.st_mode)) {
        const int descriptor = ::open(m_target.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0) {
            fail(errno);
        }
        return descriptor;
    }
    // A file that may not be written stays what it is, even where its folder would let us replace it.
    if (::access(m_target.c_str(), W_OK) != 0) {
        fail(errno);
    }
    const int descriptor = openTemporary();
    // Nobody's program begins to run as somebody else, so the bits that make it do so stay with the owner only. File
    // systems without permissions refuse both calls, which leaves the file to us alone.
    const bool isOwnerKept = ::fchown(descriptor, status.st_uid, status.st_gid) == 0;
    ::fchmod(descriptor, status.st_mode & (isOwnerKept ? 07777 : 0777));
    return descriptor;
}

int Output::openTemporary()
{
    m_temporary = fs::path(m_target).replace_filename(".qrmxml-XXXXXX");
    temporaryFile = m_temporary.c_str();
    watchForSignals();
    const int descriptor = ::mkstemp(m_temporary.data());
    if (descriptor < 0) {
        const int error = errno;
        m_temporary.clear();
        temporaryFile = nullptr;
        fail(error);
    }
    return descriptor;
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
    throw Trouble(m_name == "-" ? "<stdout>" : m_name, std::string("cannot write: ") + std::strerror(error));
}
