#include "WQSStreams/WQSInputStream.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// Delivers a text in pieces of at most `piece` bytes through the buffer form alone.
class TextStream : public WQSInputStream
{
public:
    using WQSInputStream::read;

    TextStream(std::string text, int piece) : m_text(std::move(text)), m_piece(piece) {}

    int read(QRMByteBuffer& buffer, int count) override
    {
        const auto length = std::min({count, m_piece, static_cast<int>(m_text.size())});
        buffer.reserve(length);
        if (length > 0) {
            std::memcpy(buffer.data(), m_text.data(), static_cast<std::size_t>(length));
        }
        m_text.erase(0, static_cast<std::size_t>(length));
        return length + claimedBeyond;
    }
    int read() override { return -1; }
    void close() override { ++closed; }

    int closed = 0;
    int claimedBeyond = 0;

private:
    std::string m_text;
    int m_piece;
};

TEST(WQSInputStream, ReadsThroughTheBufferForm)
{
    TextStream stream("abcdef", 4);
    char bytes[10] = {};
    EXPECT_EQ(stream.read(bytes, 10), 4);
    EXPECT_STREQ(bytes, "abcd");
    EXPECT_EQ(stream.read(bytes, 1), 1);
    EXPECT_EQ(bytes[0], 'e');
    EXPECT_EQ(stream.read(bytes, 10), 1);
    EXPECT_EQ(bytes[0], 'f');
}

TEST(WQSInputStream, GivesMinusOneAtTheEnd)
{
    TextStream stream("", 4);
    char byte = 'x';
    EXPECT_EQ(stream.read(&byte, 1), -1);
    EXPECT_EQ(byte, 'x');
}

TEST(WQSInputStream, ReadsNothingForACountOfZeroOrLess)
{
    TextStream stream("abc", 4);
    char byte = 'x';
    EXPECT_EQ(stream.read(&byte, 0), 0);
    EXPECT_EQ(stream.read(&byte, -1), 0);
    EXPECT_EQ(stream.readFully(&byte, 0), 0);
    QRMByteBuffer buffer;
    EXPECT_EQ(stream.readFully(buffer, -1), 0);
    EXPECT_EQ(byte, 'x');
}

TEST(WQSInputStream, DoesNotBelieveMoreThanItAskedFor)
{
    TextStream stream("abc", 4);
    stream.claimedBeyond = 1000000;
    char bytes[2] = {};
    EXPECT_EQ(stream.read(bytes, 2), 2);
    EXPECT_EQ(std::string(bytes, 2), "ab");
    EXPECT_EQ(stream.read(bytes, 2), 1) << "only one byte was stored";
}

TEST(WQSInputStream, ReadsFullyUpToTheCountOrTheEnd)
{
    TextStream stream("abcdefgh", 3);
    char bytes[10] = {};
    EXPECT_EQ(stream.readFully(bytes, 7), 7);
    EXPECT_STREQ(bytes, "abcdefg");
    EXPECT_EQ(stream.readFully(bytes, 7), 1);
    EXPECT_EQ(stream.readFully(bytes, 7), 0);

    TextStream again("abcdefgh", 3);
    QRMByteBuffer buffer;
    EXPECT_EQ(again.readFully(buffer, 100), 8);
    EXPECT_EQ(std::memcmp(buffer.data(), "abcdefgh", 8), 0);
    EXPECT_EQ(buffer.length(), 0);
}

TEST(WQSInputStream, PutsNothingBack)
{
    TextStream stream("abc", 3);
    EXPECT_FALSE(stream.canUnread());
    try {
        stream.unread("a", 1);
        FAIL() << "it returned";
    } catch (const char* text) {
        EXPECT_STREQ(text, "not implemented");
    }
}

TEST(WQSInputStream, KeepsTheOrderOfItsVirtualOperations)
{
    // The slots as the C++ ABI of the platform lays them out: two for the destructor, then one each.
    class Recorder : public WQSInputStream
    {
    public:
        ~Recorder() override = default;
        int read(QRMByteBuffer&, int) override { return 2; }
        int read(char*, int) override { return 3; }
        int readFully(QRMByteBuffer&, int) override { return 4; }
        int readFully(char*, int) override { return 5; }
        int read() override { return 6; }
        void close() override { slot = 7; }
        bool canUnread() override
        {
            slot = 8;
            return true;
        }
        void unread(const char*, int) override { slot = 9; }
        int slot = 0;
    };
    Recorder recorder;
    void* const* slots = nullptr;
    std::memcpy(&slots, static_cast<void*>(&recorder), sizeof slots);
    const auto call = [&](int index) {
        int (*function)(void*, void*, int) = nullptr;
        std::memcpy(&function, slots + index, sizeof function);
        return function(&recorder, nullptr, 0);
    };
    for (int index = 2; index <= 6; ++index) {
        EXPECT_EQ(call(index), index);
    }
    for (int index = 7; index <= 9; ++index) {
        call(index);
        EXPECT_EQ(recorder.slot, index);
    }
}

} // namespace
