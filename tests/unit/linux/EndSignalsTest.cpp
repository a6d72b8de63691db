#include "platform/linux/process/EndSignals.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

using namespace std::chrono_literals;

constexpr auto Never = 1h;

/// How long to wait for something that must happen.
constexpr auto Long = 60s;

// When the tests run in the background, these signals may be ignored.
const bool unignored = [] {
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::signal(number, SIG_DFL);
    return true;
}();

class EndSignalsTest : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Of, EndSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& info) { return std::string(::sigabbrev_np(info.param)); });

TEST_P(EndSignalsTest, IsToldOnceOnAnotherThreadAndTheProcessLivesOn)
{
    std::promise<std::thread::id> told;
    std::atomic<int> times = 0;
    std::future<std::thread::id> thread = told.get_future();
    {
        const EndSignals signals(
            [&] {
                if (++times == 1)
                    told.set_value(std::this_thread::get_id());
            },
            [] {}, Never);
        ::raise(GetParam());
        ASSERT_EQ(thread.wait_for(Long), std::future_status::ready);
        EXPECT_NE(thread.get(), std::this_thread::get_id());
        ::raise(GetParam());
        ::raise(SIGTERM);
    }
    EXPECT_EQ(times, 1);
}

TEST(EndSignalsTest, WhoeverDoesNotEndInTimeIsToldSo)
{
    std::promise<void> overdue;
    std::future<void> late = overdue.get_future();
    std::atomic<bool> arrived = false;
    const EndSignals signals([&] { arrived = true; },
                             [&] {
                                 EXPECT_TRUE(arrived);
                                 overdue.set_value();
                             },
                             1ms);
    EXPECT_EQ(late.wait_for(20ms), std::future_status::timeout) << "before any signal";
    ::raise(SIGTERM);
    EXPECT_EQ(late.wait_for(Long), std::future_status::ready);
}

TEST(EndSignalsTest, ASignalThatWasIgnoredStaysIgnored)
{
    ::signal(SIGHUP, SIG_IGN);
    std::promise<void> told;
    std::future<void> arrived = told.get_future();
    {
        const EndSignals signals([&] { told.set_value(); }, [] {}, Never);
        struct sigaction now {
        };
        ::sigaction(SIGHUP, nullptr, &now);
        EXPECT_EQ(now.sa_handler, SIG_IGN);
        ::sigaction(SIGTERM, nullptr, &now);
        EXPECT_NE(now.sa_handler, SIG_DFL);
    }
    ::signal(SIGHUP, SIG_DFL);
}

TEST(EndSignalsTest, AfterItTheSignalsEndTheProcessAgain)
{
    {
        const EndSignals signals([] {}, [] {}, Never);
    }
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction now {
        };
        ::sigaction(signal, nullptr, &now);
        EXPECT_EQ(now.sa_handler, SIG_DFL) << signal;
    }
}

/// A child that has not yet become another program must not pass signals on to its parent.
TEST(EndSignalsTest, ASignalForAChildIsNotTheParents)
{
    std::promise<void> told;
    std::future<void> arrived = told.get_future();
    {
        const EndSignals signals([&] { told.set_value(); }, [] {}, Never);
        const pid_t child = ::fork();
        if (child == 0) {
            ::raise(SIGTERM);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
    }
    EXPECT_NE(arrived.wait_for(0s), std::future_status::ready);
}

} // namespace

} // namespace voxmate::linux_platform
