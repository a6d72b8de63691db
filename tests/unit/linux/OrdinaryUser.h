// Runs a test as an ordinary user, not as root.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace voxmate::linux_platform
{

/// The process is an ordinary user during this object's lifetime.
class OrdinaryUser
{
public:
    OrdinaryUser() : before_(::geteuid())
    {
        if (before_ == 0 && ::seteuid(65534) != 0)
            throw std::runtime_error("cannot become an ordinary user");
    }
    ~OrdinaryUser()
    {
        if (::seteuid(before_) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    uid_t before_;
};

} // namespace voxmate::linux_platform
