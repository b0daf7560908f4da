// What happens when trees are written with namespaces for the first time in a process: each test needs one of its own.

#include <atomic>
#include <sstream>
#include <thread>
#include <vector>

#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/TestDocument.h"

namespace {

constexpr int kThreads = 8;

/// A sink without memory of its own.
class CallCounter : public DomWriter
{
public:
    void write(const char* /*data*/, int /*length*/) override { ++calls; }
    void endline() override {}
    int calls = 0;
};

TEST(FirstNamespaceWriting, WithoutMemoryFailsInTheElementAndWorksTheNextTime)
{
    QRMIDOM_Document document = emptyDocument();
    document.appendChild(document.createElementNS("urn:a", "p:a"));
    const QRMIDOM_Element root = document.getDocumentElement();
    bool failed = false;
    for (long n = 1; !failed && n < 10; ++n) {
        CallCounter writer;
        try {
            const failing_allocator::FailNth fail(n);
            QRMIDOM_Helper::writeNS(root, writer);
        } catch (const QRMOutOfMemoryError& error) {
            failed = true;
            EXPECT_EQ(error.getCode(), 0);
            EXPECT_EQ(error.getText(), nullptr);
            ASSERT_EQ(error.getBackTrace().size(), 2u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_Helper.cpp");
            EXPECT_EQ(error.getBackTrace()[0].context, "");
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
            EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
            EXPECT_EQ(writer.calls, 2) << "the bracket and the name";
        } catch (const std::bad_alloc&) { // of the writer itself
        }
    }
    EXPECT_TRUE(failed);
    std::ostringstream stream;
    QRMIDOM_Helper::writeNS(root, stream, "UTF-8");
    EXPECT_EQ(stream.str(), "<p:a xmlns:p=\"urn:a\"/>");
}

TEST(FirstNamespaceWriting, MayBeDoneByManyThreadsAtOnce)
{
    std::vector<std::string> results(kThreads);
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&results, &waiting, i] {
            QRMIDOM_Document document = emptyDocument();
            document.appendChild(document.createElementNS("urn:a", "p:a"));
            --waiting;
            while (waiting != 0) {
                std::this_thread::yield();
            }
            for (int round = 0; round < 100; ++round) {
                std::ostringstream stream;
                QRMIDOM_Helper::writeNS(document.getDocumentElement(), stream, "UTF-8");
                results[static_cast<std::size_t>(i)] = stream.str();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& result : results) {
        EXPECT_EQ(result, "<p:a xmlns:p=\"urn:a\"/>");
    }
}

} // namespace
