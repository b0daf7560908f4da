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

TEST(StreamInputSource, TellsThePositionInThirtyTwoBits)
{
    class Far : public std::streambuf
    {
    public:
        std::streamoff position = 0;

    protected:
        pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override { return position; }
    };
    Far buffer;
    std::istream in(&buffer);
    const Stream stream(StreamInputSource(in).makeStream());
    for (const auto& [position, told] :
         {std::pair<std::streamoff, XMLFilePos>{4294967295, 4294967295}, {4294967296, 0}, {4294967301, 5}}) {
        buffer.position = position;
        EXPECT_EQ(stream->curPos(), told);
    }
    in.setstate(std::ios::failbit);
    EXPECT_EQ(stream->curPos(), 4294967295u) << "a stream that has failed is nowhere, -1";
}

TEST(StreamInputSource, MakesAnyNumberOfStreamsOverTheSameOne)
{
    std::istringstream in("abcdef");
    const StreamInputSource source(in);
    const Stream first(source.makeStream());
    XMLByte bytes[4] = {};
    EXPECT_EQ(first->readBytes(bytes, 2), 2u);
    const Stream second(source.makeStream());
    EXPECT_EQ(second->curPos(), 2u);
    EXPECT_EQ(second->readBytes(bytes, 2), 2u);
    EXPECT_EQ(std::memcmp(bytes, "cd", 2), 0);
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

/// Says what it is told to say and notes what it is asked for; it delivers nothing.
class SayingStream : public WQSInputStream
{
public:
    using WQSInputStream::read;

    int read(QRMByteBuffer&, int) override { return -1; }
    int read(char*, int count) override
    {
        asked = count;
        return answer;
    }
    int read() override { return -1; }
    void close() override {}
    int answer = 0;
    int asked = 0;
};

TEST(WQSStreamInputSource, AsksForNoMoreThanAnIntCanCount)
{
    SayingStream in;
    BinWQSInputStream stream(in);
    XMLByte byte = 0;
    stream.readBytes(&byte, 5);
    EXPECT_EQ(in.asked, 5);
    stream.readBytes(&byte, 0x80000000);
    EXPECT_EQ(in.asked, 0x7FFFFFFF);
}

TEST(WQSStreamInputSource, CountsInThirtyTwoBits)
{
    SayingStream in;
    BinWQSInputStream stream(in);
    XMLByte byte = 0;
    in.answer = 0x7FFFFFFF;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(stream.readBytes(&byte, 0x7FFFFFFF), 0x7FFFFFFFu);
    }
    EXPECT_EQ(stream.curPos(), 0xFFFFFFFEu);
    EXPECT_EQ(stream.readBytes(&byte, 0x7FFFFFFF), 0x7FFFFFFFu);
    EXPECT_EQ(stream.curPos(), 0x7FFFFFFDu);
    for (const int answer : {0, -1, -2147483647 - 1}) {
        in.answer = answer;
        EXPECT_EQ(stream.readBytes(&byte, 1), 0u);
        EXPECT_EQ(stream.curPos(), 0x7FFFFFFDu);
    }
}

/// Looks at the position of the byte stream when Xerces is done with it.
class WatchedSource : public xercesc::InputSource
{
public:
    explicit WatchedSource(const xercesc::InputSource& source) : m_source(source) {}
    xercesc::BinInputStream* makeStream() const override
    {
        ++streams;
        return new Watched(Stream(m_source.makeStream()), *this);
    }
    mutable XMLFilePos delivered = 0;
    mutable XMLFilePos position = 0;
    mutable int streams = 0;

private:
    class Watched : public xercesc::BinInputStream
    {
    public:
        Watched(Stream stream, const WatchedSource& watcher) : m_stream(std::move(stream)), m_watcher(watcher)
        {
        }
        ~Watched() override { m_watcher.position = m_stream->curPos(); }
        XMLFilePos curPos() const override { return m_stream->curPos(); }
        XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override
        {
            const XMLSize_t count = m_stream->readBytes(toFill, maxToRead);
            m_watcher.delivered += count;
            return count;
        }
        const XMLCh* getContentType() const override { return m_stream->getContentType(); }

    private:
        Stream m_stream;
        const WatchedSource& m_watcher;
    };

    const xercesc::InputSource& m_source;
};

TEST(WQSStreamInputSource, HasCountedWhatXercesGotAfterAParse)
{
    const std::string text = "<a>" + std::string(200000, 'x') + "</a>";
    TextStream in("skipped" + text, 1000);
    char skipped[7];
    EXPECT_EQ(in.read(skipped, 7), 7);
    const WQSStreamInputSource source(in);
    WatchedSource watched(source);
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(watched, document), 1) << parser.errorString();
    EXPECT_EQ(watched.streams, 1);
    EXPECT_EQ(watched.delivered, text.size());
    EXPECT_EQ(watched.position, text.size());
    EXPECT_FALSE(in.closed);
}

TEST(StreamSources, EndTheDocumentWhereTheStreamBreaksOff)
{
    TextStream broken("<a><b/>", 3);
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(broken, document), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(parser.errorString(),
              I18NString("input ended before all started tags were ended; last tag started is 'a'"));
    EXPECT_FALSE(broken.closed);
}

TEST(StreamSources, MakeAFailedParseOfWhatAStreamThrows)
{
    // They throw later than at the first bytes: Xerces would lose a few of its own there.
    class Throwing : public TextStream
    {
    public:
        using TextStream::read;
        using TextStream::TextStream;
        int read(char* dest, int count) override
        {
            const int length = TextStream::read(dest, count);
            return length >= 0 ? length : throw QRMSystemError(5, "no more");
        }
    };
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    Throwing family("<a>", 3);
    EXPECT_EQ(parser.parse(family, document), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_TRUE(parser.errorString().empty());
    EXPECT_FALSE(family.closed);

    std::istringstream standard("<a>" + std::string(200000, 'x'));
    standard.exceptions(std::ios::eofbit | std::ios::failbit);
    EXPECT_EQ(parser.parse(standard, document), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_TRUE(parser.errorString().empty());
    EXPECT_EQ(parser.parse("<a/>", 4, document), 1);
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(StreamSources, LeaveAStreamToTheCallerForMore)
{
    std::istringstream in("<a/>");
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(in, document), 1);
    EXPECT_TRUE(in.eof());
    EXPECT_EQ(parser.parse(in, document), 0) << "it is at its end";
    EXPECT_EQ(parser.errorString(), I18NString("invalid document structure"));
    in.clear();
    in.seekg(0);
    EXPECT_EQ(parser.parse(in, document), 1);
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
