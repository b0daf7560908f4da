#include <memory>

#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"
#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"
#include "tests/support/TestDocument.h"
#include "tests/support/XercesMemory.h"

namespace {

/// Delivers a text in pieces; then -1, or an error at once.
class TextStream : public WQSInputStream
{
public:
    using WQSInputStream::read;

    TextStream(std::string text, int piece) : m_text(std::move(text)), m_piece(piece) {}
    int read(QRMByteBuffer&, int) override { return -1; }
    int read(char* dest, int count) override
    {
        const auto length =
            std::min({static_cast<std::size_t>(count), static_cast<std::size_t>(m_piece), m_text.size()});
        if (length == 0) {
            return -1;
        }
        std::memcpy(dest, m_text.data(), length);
        m_text.erase(0, length);
        return static_cast<int>(length);
    }
    int read() override { return -1; }
    void close() override { closed = true; }
    bool closed = false;

private:
    std::string m_text;
    int m_piece;
};

using Stream = std::unique_ptr<xercesc::BinInputStream>;

std::string bytesOf(xercesc::BinInputStream& stream, XMLSize_t atATime)
{
    std::string all;
    std::string piece(atATime, '\0');
    for (XMLSize_t count = 0;
         (count = stream.readBytes(reinterpret_cast<XMLByte*>(piece.data()), atATime)) > 0;) {
        all.append(piece, 0, count);
    }
    return all;
}

TEST(StreamInputSource, DeliversTheBytesOfAStream)
{
    std::istringstream in(std::string("a\0b\xFF\r\nlast", 10));
    const StreamInputSource source(in);
    EXPECT_EQ(source.getSystemId(), nullptr);
    EXPECT_EQ(source.getPublicId(), nullptr);
    EXPECT_EQ(source.getEncoding(), nullptr);
    const Stream stream(source.makeStream());
    EXPECT_EQ(stream->curPos(), 0u);
    EXPECT_EQ(stream->getContentType(), nullptr);
    XMLByte bytes[10] = {};
    EXPECT_EQ(stream->readBytes(bytes, 4), 4u);
    EXPECT_EQ(std::memcmp(bytes, "a\0b\xFF", 4), 0);
    EXPECT_EQ(stream->curPos(), 4u);
    EXPECT_EQ(stream->readBytes(bytes, 10), 6u) << "the last bytes, short of what was asked for";
    EXPECT_EQ(stream->readBytes(bytes, 10), 0u);
    EXPECT_EQ(stream->readBytes(bytes, 10), 0u);
    in.clear();
    EXPECT_EQ(in.tellg(), 10);
}

TEST(StreamInputSource, GivesNothingOfAnEmptyOrEndedStream)
{
    XMLByte byte = 'x';
    std::istringstream empty;
    EXPECT_EQ(Stream(StreamInputSource(empty).makeStream())->readBytes(&byte, 1), 0u);
    std::istringstream ended("abc");
    ended.setstate(std::ios::eofbit);
    EXPECT_EQ(Stream(StreamInputSource(ended).makeStream())->readBytes(&byte, 1), 0u);
    EXPECT_EQ(byte, 'x');
}

TEST(StreamInputSource, ReadsAFailedStreamAsFarAsItGives)
{
    std::istringstream failed("abc");
    failed.setstate(std::ios::failbit);
    XMLByte byte = 'x';
    EXPECT_EQ(Stream(StreamInputSource(failed).makeStream())->readBytes(&byte, 1), 0u);
}

TEST(WQSStreamInputSource, DeliversTheBytesOfAStreamAndCountsThem)
{
    TextStream in("0123456789", 4);
    char skipped[2];
    in.read(skipped, 2);
    const WQSStreamInputSource source(in);
    EXPECT_EQ(source.getSystemId(), nullptr);
    const Stream stream(source.makeStream());
    EXPECT_EQ(stream->curPos(), 0u);
    EXPECT_EQ(stream->getContentType(), nullptr);
    XMLByte bytes[10];
    EXPECT_EQ(stream->readBytes(bytes, 10), 4u);
    EXPECT_EQ(stream->curPos(), 4u);
    EXPECT_EQ(bytesOf(*stream, 3), "6789");
    EXPECT_EQ(stream->curPos(), 8u);
    EXPECT_FALSE(in.closed);
}

TEST(WQSStreamInputSource, TakesAnErrorForTheEnd)
{
    TextStream in("", 4);
    BinWQSInputStream stream(in);
    XMLByte byte = 'x';
    EXPECT_EQ(stream.readBytes(&byte, 1), 0u);
    EXPECT_EQ(stream.curPos(), 0u);
    EXPECT_EQ(byte, 'x');
}

TEST(StreamSources, NameTheirPlacesWhenThereIsNoMemory)
{
    std::istringstream in("abc");
    TextStream wqs("abc", 1);
    XercesMemory memory;
    const StreamInputSource standardSource(in);
    const WQSStreamInputSource familySource(wqs);
    const auto expectPlace = [&](const xercesc::InputSource& source, const char* file, int line) {
        memory.failFrom(1);
        try {
            source.makeStream();
            ADD_FAILURE() << "it was made";
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            EXPECT_EQ(error.getCode(), 0);
            ASSERT_EQ(error.getBackTrace().size(), 2u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, file);
            EXPECT_EQ(error.getBackTrace()[0].lineNumber, line);
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
            EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
        }
    };
    expectPlace(standardSource, "QRMISAX_Parser.h", 74);
    expectPlace(familySource, "WQSStreamInputSource.cpp", 39);
}

} // namespace
