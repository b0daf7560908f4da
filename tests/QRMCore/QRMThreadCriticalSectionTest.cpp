#include "QRMCore/QRMThreadCriticalSection.h"

#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

static_assert(!std::is_copy_constructible_v<QRMThreadCriticalSection>);
static_assert(!std::is_copy_constructible_v<QRMThreadGuard>);

TEST(QRMThreadCriticalSection, LetsOneThreadInAtATime)
{
    QRMThreadCriticalSection section;
    int counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10000; ++round) {
                const QRMThreadGuard guard(section);
                counter = counter + 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 40000);
}

TEST(QRMThreadCriticalSection, LetsItsThreadEnterAgain)
{
    QRMThreadCriticalSection section;
    section.enter();
    section.enter();
    section.leave();
    section.leave();
    bool entered = false;
    std::thread other([&] {
        const QRMThreadGuard guard(section);
        entered = true;
    });
    other.join();
    EXPECT_TRUE(entered);
}

TEST(QRMThreadGuard, LeavesAtTheEndOfItsScope)
{
    QRMThreadCriticalSection section;
    try {
        const QRMThreadGuard guard(section);
        throw 1;
    } catch (int) {
    }
    bool entered = false;
    std::thread other([&] {
        section.enter();
        entered = true;
        section.leave();
    });
    other.join();
    EXPECT_TRUE(entered);
}

} // namespace
