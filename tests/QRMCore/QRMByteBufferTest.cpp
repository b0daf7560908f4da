#include "QRMCore/QRMByteBuffer.h"

#include <cstring>
#include <utility>

#include <gtest/gtest.h>

namespace {

TEST(QRMByteBuffer, HasNothingAtFirst)
{
    const QRMByteBuffer buffer;
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_EQ(buffer.length(), 0);
    EXPECT_EQ(buffer.capacity(), 0);
}

TEST(QRMByteBuffer, KeepsContentsAndLengthWhenItGrows)
{
    QRMByteBuffer buffer;
    buffer.reserve(4);
    std::memcpy(buffer.data(), "abcd", 4);
    buffer.setLength(2);
    buffer.reserve(10000);
    EXPECT_EQ(buffer.length(), 2);
    EXPECT_EQ(buffer.capacity(), 10000);
    EXPECT_EQ(std::memcmp(buffer.data(), "abcd\0\0", 6), 0);
    buffer.reserve(1);
    buffer.reserve(-1);
    EXPECT_EQ(buffer.capacity(), 10000);
}

TEST(QRMByteBuffer, ReservesWhatItsLengthNeeds)
{
    QRMByteBuffer buffer;
    buffer.setLength(3);
    EXPECT_EQ(buffer.length(), 3);
    ASSERT_GE(buffer.capacity(), 3);
    EXPECT_EQ(std::memcmp(buffer.data(), "\0\0\0", 3), 0);
    buffer.setLength(-5);
    EXPECT_EQ(buffer.length(), 0);
}

TEST(QRMByteBuffer, IsAValue)
{
    QRMByteBuffer buffer;
    buffer.setLength(1);
    *buffer.data() = 'a';
    QRMByteBuffer copy(buffer);
    *copy.data() = 'b';
    EXPECT_EQ(*buffer.data(), 'a');
    QRMByteBuffer moved(std::move(copy));
    EXPECT_EQ(*moved.data(), 'b');
    EXPECT_EQ(copy.length(), 0); // NOLINT(bugprone-use-after-move): it is defined to be empty
    EXPECT_EQ(copy.capacity(), 0);
    buffer = std::move(moved);
    EXPECT_EQ(*buffer.data(), 'b');
    EXPECT_EQ(buffer.length(), 1);
}

} // namespace
