#include "platform/linux/process/SessionBus.h"

#include "OwnFolder.h"

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

using namespace std::chrono_literals;

class SessionBusTest : public OwnFolder
{
protected:
    const std::string path = (folder / "the bus").string();
    const std::string address = "tcp:host=localhost,port=1;unix:guid=1,path=" + (folder / "the%20bus").string();

    SessionBusTest() : listening_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un where{};
        where.sun_family = AF_UNIX;
        std::memcpy(where.sun_path, path.data(), path.size());
        EXPECT_EQ(::bind(listening_, reinterpret_cast<const sockaddr*>(&where), sizeof where), 0);
        EXPECT_EQ(::listen(listening_, 0), 0);
    }
    ~SessionBusTest() override
    {
        if (answering_.joinable())
            answering_.join();
        ::close(listening_);
    }
    /// Answers the next connection.
    void Answer()
    {
        answering_ = std::thread([this] {
            const int taken = ::accept(listening_, nullptr, nullptr);
            char said[7];
            if (::recv(taken, said, sizeof said, MSG_WAITALL) == sizeof said)
                (void)!::write(taken, "REJECTED EXTERNAL\r\n", 19);
            ::close(taken);
        });
    }

private:
    int listening_;
    std::thread answering_;
};

TEST_F(SessionBusTest, ABusThatAnswersIsKept)
{
    Set("DBUS_SESSION_BUS_ADDRESS", address);
    Answer();
    AvoidHangingBus(1min);
    EXPECT_EQ(std::getenv("DBUS_SESSION_BUS_ADDRESS"), address);
}

TEST_F(SessionBusTest, ABusThatTakesTheConnectionAndSaysNothingIsAvoided)
{
    Set("DBUS_SESSION_BUS_ADDRESS", address);
    const auto begin = std::chrono::steady_clock::now();
    AvoidHangingBus(200ms);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 190ms);
    EXPECT_STREQ(std::getenv("DBUS_SESSION_BUS_ADDRESS"), "unix:path=/dev/null");
    // So is one for which too many are waiting.
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(BusAnswers(address, 1ms));
}

TEST_F(SessionBusTest, ABusThatIsNotThereFailsAtOnceAndIsLeftToWhoeverNeedsIt)
{
    EXPECT_TRUE(BusAnswers("unix:path=/nonexistent", 1min));
    EXPECT_TRUE(BusAnswers("unix:abstract=nonexistent", 1min));
    EXPECT_TRUE(BusAnswers("unix:path=" + std::string(200, 'x'), 1min));
    EXPECT_TRUE(BusAnswers("tcp:host=localhost,port=1", 1min));
    EXPECT_TRUE(BusAnswers("unix:", 1min));
    EXPECT_TRUE(BusAnswers("", 1min));
}

TEST_F(SessionBusTest, WithoutAnAddressTheBusIsInTheRuntimeFolder)
{
    Set("DBUS_SESSION_BUS_ADDRESS", "");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    std::filesystem::rename(path, folder / "bus");
    Set("XDG_RUNTIME_DIR", folder.string());
    AvoidHangingBus(50ms);
    EXPECT_STREQ(std::getenv("DBUS_SESSION_BUS_ADDRESS"), "unix:path=/dev/null");
}

} // namespace

} // namespace voxmate::linux_platform
