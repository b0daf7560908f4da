// Prints the peak of resident memory, in KiB, of one parse: of a document of some megabytes into a tree, raw or through
// the library, or of a stream of that many MiB as events.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>
#include <WQSStreams/WQSInputStream.h>
#include <sys/resource.h>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

int parseRaw()
{
    const peers::Document document = peers::Parser().parse(documents::records(50000));
    return document != nullptr ? 0 : 1;
}

int parseHandles()
{
    const std::string text = documents::records(50000);
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    return parser.parse(text.data(), static_cast<int>(text.size()), document) == 1 ? 0 : 1;
}

/// A document that is made while it is read, of about so many bytes.
class Endless : public WQSInputStream
{
public:
    using WQSInputStream::read;

    explicit Endless(unsigned long long bytes) : m_left(bytes) {}

    int read(QRMByteBuffer& buffer, int count) override
    {
        buffer.reserve(count);
        return read(buffer.data(), count);
    }
    int read(char* dest, int count) override
    {
        if (m_position == m_piece.size()) {
            m_position = 0;
            m_piece = next();
        }
        const std::size_t length =
            std::min<std::size_t>(static_cast<std::size_t>(count), m_piece.size() - m_position);
        m_piece.copy(dest, length, m_position);
        m_position += length;
        return length != 0 ? static_cast<int>(length) : -1;
    }
    int read() override
    {
        char byte = 0;
        return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
    }
    void close() override {}

private:
    std::string next()
    {
        if (m_isDone) {
            return "";
        }
        if (m_left == 0) {
            m_isDone = true;
            return "</orders>";
        }
        std::string piece = m_number == 0 ? "<orders xmlns='urn:orders'>" : "";
        while (piece.size() < 60000) {
            const std::string number = std::to_string(m_number++);
            piece += "<order id=\"o" + number + "\" state=\"open\"><customer>Customer " + number
                     + " &amp; Sons</customer><amount currency=\"EUR\">" + number + ".50</amount></order>\n";
        }
        m_left -= std::min<unsigned long long>(m_left, piece.size());
        return piece;
    }

    unsigned long long m_left;
    unsigned long long m_number = 0;
    std::string m_piece;
    std::size_t m_position = 0;
    bool m_isDone = false;
};

int parseEvents(const char* mebibytes)
{
    Endless stream(std::strtoull(mebibytes, nullptr, 10) << 20);
    return QRMISAX_Parser().parse(stream) == 1 ? 0 : 1;
}

std::optional<int> run(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "raw") == 0) {
        return parseRaw();
    }
    if (argc == 2 && std::strcmp(argv[1], "handles") == 0) {
        return parseHandles();
    }
    if (argc == 3 && std::strcmp(argv[1], "events") == 0) {
        return parseEvents(argv[2]);
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    QRMIDOM_DOMImplementation::initialize();
    const std::optional<int> status = run(argc, argv);
    QRMIDOM_DOMImplementation::terminate();
    if (!status) {
        std::fputs("usage: peak_memory raw|handles|events MIB\n", stderr);
        return 2;
    }
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return *status;
}
