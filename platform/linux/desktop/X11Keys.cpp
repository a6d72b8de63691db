#include "platform/linux/desktop/X11Keys.h"

#include "platform/linux/desktop/X11Connection.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string_view>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

using qt::Connection;
using qt::Reply;
using qt::RootWindow;

/// Milliseconds; a held key repeats sooner.
constexpr qint64 RepeatPatience = 700;
/// Caps Lock and Num Lock do not change what a key means. Num Lock is the second modifier on all usual keyboards.
constexpr std::array<std::uint16_t, 4> Locks{0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};
constexpr std::uint16_t Meant = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

// The letter behind the modifiers, which are those of the keyboard's usual map.
struct Wanted {
    std::uint16_t modifiers = 0;
    xcb_keysym_t letter = 0;
};

Wanted Parse(const std::string& trigger)
{
    Wanted wanted;
    std::size_t begin = 0;
    for (std::size_t plus = trigger.find('+'); plus != std::string::npos; plus = trigger.find('+', begin)) {
        const std::string part = trigger.substr(begin, plus - begin);
        wanted.modifiers = static_cast<std::uint16_t>(wanted.modifiers | (part == "Ctrl"    ? XCB_MOD_MASK_CONTROL
                                                                          : part == "Alt"   ? XCB_MOD_MASK_1
                                                                          : part == "Shift" ? XCB_MOD_MASK_SHIFT
                                                                          : part == "Meta"  ? XCB_MOD_MASK_4
                                                                                            : 0));
        begin = plus + 1;
    }
    // The keysym of a small Latin letter is its code.
    if (begin + 1 == trigger.size())
        wanted.letter = static_cast<xcb_keysym_t>(std::tolower(static_cast<unsigned char>(trigger[begin])));
    return wanted;
}

// The key that makes a letter in any of the keyboard's groups.
std::optional<xcb_keycode_t> KeyOf(xcb_connection_t* connection, xcb_keysym_t letter)
{
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr));
    if (!map || letter == 0)
        return std::nullopt;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    const xcb_keysym_t* end = symbols + xcb_get_keyboard_mapping_keysyms_length(map.get());
    const xcb_keysym_t* found = std::find(symbols, end, letter);
    if (found == end)
        return std::nullopt;
    return static_cast<xcb_keycode_t>(setup->min_keycode + (found - symbols) / map->keysyms_per_keycode);
}

// Whether XKB tells of another keyboard or layout. To a program that listens to XKB, as Qt does, the server sends no
// MappingNotify.
bool IsXkbChange(const xcb_generic_event_t* event)
{
    static const std::uint8_t first = [] {
        constexpr std::string_view name = "XKEYBOARD";
        xcb_connection_t* connection = Connection();
        const Reply<xcb_query_extension_reply_t> found(xcb_query_extension_reply(
            connection, xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        return found && found->present != 0 ? found->first_event : std::uint8_t{0};
    }();
    // XKB's events share one number; the byte behind it tells them apart.
    constexpr std::uint8_t newKeyboard = 0;
    constexpr std::uint8_t newMap = 1;
    return first != 0 && event->response_type == first && (event->pad0 == newKeyboard || event->pad0 == newMap);
}

} // namespace

X11Keys::X11Keys()
{
    if (Possible())
        QCoreApplication::instance()->installNativeEventFilter(this);
}

X11Keys::~X11Keys()
{
    ReleaseAll();
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool X11Keys::Possible()
{
    return Connection() != nullptr;
}

bool X11Keys::Grab(const std::string& name, const std::string& trigger)
{
    xcb_connection_t* connection = Connection();
    if (!connection)
        return false;
    const Wanted wanted = Parse(trigger);
    const std::optional<xcb_keycode_t> code = KeyOf(connection, wanted.letter);
    if (!code)
        return false;
    const xcb_window_t root = RootWindow(connection);
    bool held = true;
    for (const std::uint16_t lock : Locks) {
        const xcb_void_cookie_t cookie =
            xcb_grab_key_checked(connection, 1, root, static_cast<std::uint16_t>(wanted.modifiers | lock), *code,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        held = !Reply<xcb_generic_error_t>(xcb_request_check(connection, cookie)) && held;
    }
    keys_.push_back({name, trigger, *code, wanted.modifiers});
    if (!held) {
        for (const std::uint16_t lock : Locks)
            xcb_ungrab_key(connection, *code, root, static_cast<std::uint16_t>(wanted.modifiers | lock));
        keys_.pop_back();
    }
    xcb_flush(connection);
    return held;
}

void X11Keys::ReleaseAll()
{
    xcb_connection_t* connection = Connection();
    for (const Key& key : std::exchange(keys_, {})) {
        for (const std::uint16_t lock : Locks)
            if (connection && key.code != 0) // 0 would mean every key
                xcb_ungrab_key(connection, key.code, RootWindow(connection),
                               static_cast<std::uint16_t>(key.modifiers | lock));
    }
    if (connection)
        xcb_flush(connection);
}

// The keyboard has another layout: its letters may be on other keys.
void X11Keys::GrabAgain()
{
    std::vector<Key> keys = keys_;
    ReleaseAll();
    for (Key& key : keys)
        if (!Grab(key.name, key.trigger))
            // The next layout may have it; until then no key has this code.
            keys_.push_back({std::move(key.name), std::move(key.trigger), 0, 0});
}

bool X11Keys::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/)
{
    if (keys_.empty() || type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const int kind = event->response_type & 0x7F; // the highest bit marks an event that a program has sent
    if (kind == XCB_MAPPING_NOTIFY || IsXkbChange(event))
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [this] { GrabAgain(); }, Qt::QueuedConnection);
    if (kind != XCB_KEY_PRESS || (event->response_type & 0x80) != 0)
        return false;
    const auto* press = reinterpret_cast<const xcb_key_press_event_t*>(event);
    const auto key = std::ranges::find_if(keys_, [press](const Key& each) {
        return each.code == press->detail && each.modifiers == (press->state & Meant);
    });
    if (key == keys_.end() || press->event != RootWindow(Connection()))
        return false;
    const bool repeats = last_.isValid() && last_.elapsed() < RepeatPatience;
    last_.start();
    if (!repeats && Pressed)
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this, name = key->name] {
                if (Pressed)
                    Pressed(name);
            },
            Qt::QueuedConnection);
    return true;
}

} // namespace voxmate::linux_platform
