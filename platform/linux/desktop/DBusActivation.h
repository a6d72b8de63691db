// Calls to the program over the session's bus, by the interface org.freedesktop.Application that launchers use.
#pragma once

#include "platform/Activation.h"

#include <memory>

class QObject;

namespace voxmate::linux_platform
{

class DBusActivation : public Activation
{
public:
    /// The application object must exist, and outlive this object.
    DBusActivation();
    ~DBusActivation() override;
    DBusActivation(const DBusActivation&) = delete;
    DBusActivation& operator=(const DBusActivation&) = delete;

    void Listen() override;
    bool PassOn(const Call& call, std::chrono::milliseconds patience) override;

    static constexpr const char* Name = "org.voxmate.Voxmate";
    static constexpr const char* Path = "/org/voxmate/Voxmate";

private:
    QObject* const object_; ///< what is on the bus; belongs to the application object
};

} // namespace voxmate::linux_platform
