// Keys that an X11 server passes to the program whichever window has the keyboard.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QElapsedTimer>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace voxmate::linux_platform
{

class X11Keys : private QAbstractNativeEventFilter
{
public:
    X11Keys();
    ~X11Keys() override;
    X11Keys(const X11Keys&) = delete;
    X11Keys& operator=(const X11Keys&) = delete;

    /// A key was pressed; once, however long it is held. Called from the event loop.
    std::function<void(const std::string& name)> Pressed;

    /// Whether the program is on an X11 server.
    static bool Possible();
    /// Takes a key ("Ctrl+Alt+S"); false when another program has it, or there is no such key.
    bool Grab(const std::string& name, const std::string& trigger);
    void ReleaseAll();

private:
    struct Key {
        std::string name;
        std::string trigger;
        std::uint8_t code;
        std::uint16_t modifiers;
    };

    std::vector<Key> keys_;
    QElapsedTimer last_; ///< since a key was pressed last; a held key repeats

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void GrabAgain();
};

} // namespace voxmate::linux_platform
