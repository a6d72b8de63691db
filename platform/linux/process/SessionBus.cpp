#include "platform/linux/process/SessionBus.h"

#include "base/FileName.h"
#include "platform/linux/files/LinuxRandomFile.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

constexpr const char* AddressVariable = "DBUS_SESSION_BUS_ADDRESS";

// The value of a key of an address such as "unix:path=/run/user/1000/bus,guid=...", its escapes resolved; empty when it
// has no such key.
std::string ValueOf(std::string_view address, std::string_view key)
{
    address.remove_prefix(std::min(address.find(':') + 1, address.size()));
    while (!address.empty()) {
        const std::size_t end = std::min(address.find(','), address.size());
        const std::string_view pair = address.substr(0, end);
        address.remove_prefix(std::min(end + 1, address.size()));
        if (pair.starts_with(key) && pair.substr(key.size()).starts_with('='))
            return PercentDecoded(pair.substr(key.size() + 1));
    }
    return {};
}

// The name of the socket that the first local address leads to, with a NUL in front if it is not in the file system;
// empty when there is none.
std::string SocketOf(std::string_view addresses)
{
    while (!addresses.empty()) {
        const std::size_t end = std::min(addresses.find(';'), addresses.size());
        const std::string_view address = addresses.substr(0, end);
        addresses.remove_prefix(std::min(end + 1, addresses.size()));
        if (!address.starts_with("unix:"))
            continue;
        if (std::string path = ValueOf(address, "path"); !path.empty())
            return path;
        if (const std::string name = ValueOf(address, "abstract"); !name.empty())
            return std::string(1, '\0') + name;
    }
    return {};
}

} // namespace

bool BusAnswers(const std::string& addresses, std::chrono::milliseconds patience)
{
    const std::string name = SocketOf(addresses);
    sockaddr_un where{};
    where.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof where.sun_path)
        return true;
    std::memcpy(where.sun_path, name.data(), name.size());
    // An abstract name ends with the structure, a path with a NUL.
    const auto length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (name.front() == '\0' ? 0 : 1));
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (socket.Number() < 0)
        return true;
    if (::connect(socket.Number(), reinterpret_cast<const sockaddr*>(&where), length) != 0)
        return errno != EAGAIN; // so many wait for the bus that it takes no more
    // The first step of the D-Bus protocol's authentication; an answer of any kind will do.
    constexpr std::string_view hello("\0AUTH\r\n", 7);
    if (::send(socket.Number(), hello.data(), hello.size(), MSG_NOSIGNAL) < 0)
        return true;
    const auto last = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(last - std::chrono::steady_clock::now());
        pollfd answer{socket.Number(), POLLIN, 0};
        const int ready = ::poll(&answer, 1, std::max(0, static_cast<int>(left.count())));
        if (ready >= 0 || errno != EINTR)
            return ready != 0;
    }
}

void AvoidHangingBus(std::chrono::milliseconds patience)
{
    const char* given = std::getenv(AddressVariable);
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const std::string address = given ? given : runtime ? "unix:path=" + std::string(runtime) + "/bus" : "";
    if (!BusAnswers(address, patience))
        ::setenv(AddressVariable, "unix:path=/dev/null", 1);
}

} // namespace voxmate::linux_platform
