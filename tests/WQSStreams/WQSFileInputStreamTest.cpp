#include "WQSStreams/WQSFileInputStream.h"

#include <csignal>
#include <cstring>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/TemporaryFile.h"

namespace {

using File = TemporaryFile;

TEST(WQSFileInputStream, ReadsBytesAsTheyAre)
{
    const File file(std::string("a\r\n\0\xFF", 5));
    WQSFileInputStream stream(file.name());
    ASSERT_TRUE(stream.isOpen());
    char bytes[10];
    EXPECT_EQ(stream.read(bytes, 3), 3);
    EXPECT_EQ(std::string(bytes, 3), "a\r\n");
    EXPECT_EQ(stream.read(), 0);
    EXPECT_EQ(stream.read(), 255);
    EXPECT_EQ(stream.read(), -1);
    EXPECT_EQ(stream.read(bytes, 3), -1);
}

TEST(WQSFileInputStream, ReadsIntoABuffer)
{
    const File file("abc");
    WQSFileInputStream stream(file.name());
    QRMByteBuffer buffer;
    EXPECT_EQ(stream.read(buffer, 10), 3);
    EXPECT_EQ(std::memcmp(buffer.data(), "abc", 3), 0);
    EXPECT_EQ(buffer.length(), 0);
    EXPECT_EQ(stream.read(buffer, 0), 0);
    EXPECT_EQ(stream.read(buffer, 10), -1);
}

TEST(WQSFileInputStream, IsNotOpenForWhatIsNoReadableFile)
{
    EXPECT_FALSE(WQSFileInputStream(nullptr).isOpen());
    EXPECT_FALSE(WQSFileInputStream("").isOpen());
    EXPECT_FALSE(WQSFileInputStream("/no/such/file").isOpen());
    EXPECT_FALSE(WQSFileInputStream("/").isOpen());
    WQSFileInputStream closed("/no/such/file");
    char byte = 0;
    EXPECT_EQ(closed.read(&byte, 1), -1);
    EXPECT_EQ(closed.read(), -1);
}

TEST(WQSFileInputStream, IsNotOpenForAFileThatMayNotBeRead)
{
    const File file("abc");
    ASSERT_EQ(::chmod(file.name(), 0), 0);
    // Root may read everything, so somebody else asks.
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && ::seteuid(65534) != 0) {
            ::_exit(2);
        }
        ::_exit(WQSFileInputStream(file.name()).isOpen() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(WQSFileInputStream, MayBeClosedTwice)
{
    const File file("abc");
    WQSFileInputStream stream(file.name());
    stream.close();
    EXPECT_FALSE(stream.isOpen());
    stream.close();
    EXPECT_EQ(stream.read(), -1);
}

TEST(WQSFileInputStream, ReadsPastTwoGibibytes)
{
    const File file("start");
    constexpr off_t kFar = (off_t(1) << 31) + 5;
    const int descriptor = ::open(file.name(), O_WRONLY);
    ASSERT_GE(descriptor, 0);
    // A file with a hole takes no room.
    ASSERT_EQ(::pwrite(descriptor, "end", 3, kFar), 3);
    ::close(descriptor);

    WQSFileInputStream stream(file.name());
    std::string piece(1 << 24, 'x');
    off_t total = 0;
    std::string last;
    for (int length = 0; (length = stream.read(piece.data(), static_cast<int>(piece.size()))) > 0;) {
        total += length;
        last.assign(piece, static_cast<std::size_t>(std::max(length - 3, 0)), 3);
    }
    EXPECT_EQ(total, kFar + 3);
    EXPECT_EQ(last, "end");
}

int pipeToFill = -1;

TEST(WQSFileInputStream, ReadsOnAfterASignal)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    pipeToFill = ends[1];
    struct sigaction action = {};
    action.sa_handler = [](int) { [[maybe_unused]] const ssize_t length = ::write(pipeToFill, "abc", 3); };
    struct sigaction former = {};
    ASSERT_EQ(::sigaction(SIGALRM, &action, &former), 0);
    WQSFileInputStream stream(("/dev/fd/" + std::to_string(ends[0])).c_str());
    // The stream waits when the signal comes, which brings what it waits for.
    struct itimerval soon = {};
    soon.it_value.tv_usec = 100000;
    ASSERT_EQ(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
    char bytes[3] = {};
    EXPECT_EQ(stream.read(bytes, 3), 3);
    EXPECT_EQ(std::string(bytes, 3), "abc");
    ::sigaction(SIGALRM, &former, nullptr);
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(WQSFileInputStream, ReadsAPipe)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "abc", 3), 3);
    ::close(ends[1]);
    WQSFileInputStream stream(("/dev/fd/" + std::to_string(ends[0])).c_str());
    ASSERT_TRUE(stream.isOpen());
    char bytes[10];
    EXPECT_EQ(stream.readFully(bytes, 10), 3);
    ::close(ends[0]);
}

TEST(WQSFileInputStream, ClosesItsFileWhenItGoes)
{
    const File file("abc");
    const int before = ::open("/dev/null", O_RDONLY);
    ::close(before);
    for (int i = 0; i < 10; ++i) {
        const WQSFileInputStream stream(file.name());
    }
    const int after = ::open("/dev/null", O_RDONLY);
    ::close(after);
    EXPECT_EQ(before, after);
}

} // namespace
