// What the program requests of X11 for its own windows, and the watch for the compositor.
#include "qt/system/Desktop.h"

#include "platform/linux/desktop/X11Connection.h"

#include <QGuiApplication>

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::qt
{

xcb_connection_t* Connection()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

int ScreenNumber()
{
    // Qt's xcb platform always uses the root window of the default screen, whose number is at the end of DISPLAY.
    const QByteArray display = qgetenv("DISPLAY");
    const qsizetype dot = display.lastIndexOf('.');
    return dot > display.lastIndexOf(':') ? display.mid(dot + 1).toInt() : 0;
}

xcb_window_t RootWindow(xcb_connection_t* connection)
{
    auto root = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = ScreenNumber(); i > 0 && root.rem > 1; --i)
        xcb_screen_next(&root);
    return root.data->root;
}

namespace
{

using Atoms = std::map<std::string, xcb_atom_t, std::less<>>;

// The atoms of some names, asked for in one exchange with the server; without those it does not answer for.
Atoms AskForAtoms(xcb_connection_t* connection, const std::vector<std::string>& names)
{
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const std::string& name : names)
        cookies.push_back(xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()));
    Atoms atoms;
    for (std::size_t at = 0; at < names.size(); ++at) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookies[at], nullptr));
        if (reply)
            atoms[names[at]] = reply->atom;
    }
    return atoms;
}

} // namespace

// The names that are needed before the first window is placed are asked for together.
xcb_atom_t Atom(xcb_connection_t* connection, const char* name)
{
    static Atoms known = AskForAtoms(
        connection, {"WM_TRANSIENT_FOR", "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING",
                     "_NET_CURRENT_DESKTOP", "_NET_WM_DESKTOP", "_NET_WM_STATE", "_NET_WM_STATE_ABOVE",
                     "_NET_WM_STATE_FULLSCREEN", "_NET_WM_STATE_HIDDEN", "_NET_WM_STRUT", "_NET_WM_STRUT_PARTIAL",
                     "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WORKAREA"});
    if (const auto found = known.find(std::string_view(name)); found != known.end())
        return found->second;
    known.merge(AskForAtoms(connection, {name}));
    const auto found = known.find(std::string_view(name));
    return found == known.end() ? xcb_atom_t{XCB_ATOM_NONE} : found->second;
}

namespace
{

void SetShape(xcb_connection_t* connection, xcb_shape_kind_t kind, QWindow& window, const QRegion& region)
{
    std::vector<xcb_rectangle_t> rects;
    rects.reserve(static_cast<std::size_t>(region.rectCount()));
    for (const QRect& rect : region)
        rects.push_back({static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
                         static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_YX_BANDED,
                         static_cast<xcb_window_t>(window.winId()), 0, 0, static_cast<std::uint32_t>(rects.size()),
                         rects.data());
}

/// Converts a region from device pixels to device-independent ones.
QRegion ToIndependent(const QRegion& region, qreal ratio)
{
    QRegion scaled;
    for (const QRect& rect : region)
        scaled +=
            QRectF(rect.x() / ratio, rect.y() / ratio, rect.width() / ratio, rect.height() / ratio).toAlignedRect();
    return scaled;
}

} // namespace

void SetInputShape(QWindow& window, const QRegion& region)
{
    if (auto* connection = Connection())
        SetShape(connection, XCB_SHAPE_SK_INPUT, window, region);
    else
        window.setMask(ToIndependent(region, window.devicePixelRatio()));
}

void SetBoundingShape(QWindow& window, const QRegion& region)
{
    if (auto* connection = Connection())
        SetShape(connection, XCB_SHAPE_SK_BOUNDING, window, region);
}

void ClearBoundingShape(QWindow& window)
{
    if (auto* connection = Connection())
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, static_cast<xcb_window_t>(window.winId()),
                       0, 0, XCB_PIXMAP_NONE);
}

void MakeDesktopCompanion(QWindow& window)
{
    auto* connection = Connection();
    if (!connection)
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const std::array<xcb_atom_t, 3> states{Atom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                                           Atom(connection, "_NET_WM_STATE_SKIP_PAGER"),
                                           Atom(connection, "_NET_WM_STATE_STICKY")};
    // The toolkit adds its own states when it shows the window.
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, Atom(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        states.size(), states.data());
    // A notification, not a utility: some window managers take utilities for part of the program's other windows, and
    // raise and lower them with those. The first type keeps window managers that know it from hiding the window while
    // another program is active.
    const std::array<xcb_atom_t, 3> types{Atom(connection, "_KDE_NET_WM_WINDOW_TYPE_OVERRIDE"),
                                          Atom(connection, "_NET_WM_WINDOW_TYPE_NOTIFICATION"),
                                          Atom(connection, "_NET_WM_WINDOW_TYPE_NORMAL")};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, Atom(connection, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                        32, types.size(), types.data());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, Atom(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL,
                        32, 1, &EveryDesktop);
}

namespace
{

// Asks the window manager for something about a window.
void Ask(xcb_connection_t* connection, xcb_window_t window, const char* message,
         const std::array<std::uint32_t, 5>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom(connection, message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(connection, 0, RootWindow(connection),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

} // namespace

void BringToFront(QWindow& window)
{
    auto* connection = Connection();
    if (!connection)
        return;
    constexpr std::uint32_t FromTheUser = 2;
    Ask(connection, static_cast<xcb_window_t>(window.winId()), "_NET_ACTIVE_WINDOW",
        {FromTheUser, XCB_CURRENT_TIME, 0, 0, 0});
    xcb_flush(connection);
}

void KeepDesktopCompanion(QWindow& window)
{
    auto* connection = Connection();
    if (!connection)
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const auto ask = [connection, id](const char* message, const std::array<std::uint32_t, 5>& data) {
        Ask(connection, id, message, data);
    };
    constexpr std::uint32_t Add = 1;
    constexpr std::uint32_t FromAnApplication = 1;
    const auto add = [&](const char* first, const char* second) {
        ask("_NET_WM_STATE", {Add, Atom(connection, first), Atom(connection, second), FromAnApplication, 0});
    };
    add("_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER");
    add("_NET_WM_STATE_STICKY", "_NET_WM_STATE_ABOVE");
    ask("_NET_WM_DESKTOP", {EveryDesktop, FromAnApplication, 0, 0, 0});
    xcb_flush(connection);
}

namespace
{

/// The name that the window manager gives itself, by the rules of EWMH; empty without one.
std::string ManagerName(xcb_connection_t* connection)
{
    const auto read = [connection](xcb_window_t window, const char* name, xcb_atom_t type, std::uint32_t longest) {
        return Reply<xcb_get_property_reply_t>(xcb_get_property_reply(
            connection, xcb_get_property(connection, 0, window, Atom(connection, name), type, 0, longest), nullptr));
    };
    const auto check = read(RootWindow(connection), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, 1);
    if (!check || xcb_get_property_value_length(check.get()) != 4)
        return {};
    const xcb_window_t window = *static_cast<const xcb_window_t*>(xcb_get_property_value(check.get()));
    const auto name = read(window, "_NET_WM_NAME", XCB_GET_PROPERTY_TYPE_ANY, 16);
    if (!name)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(name.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(name.get()))};
}

/// What sway and its relatives call their window manager for the X server.
constexpr const char* WlrootsManager = "wlroots wm";

} // namespace

bool ManagerPlacesWindows()
{
    auto* connection = Connection();
    if (!connection)
        return true;
    const std::string name = ManagerName(connection);
    return name != WlrootsManager && name != "Weston WM";
}

// The owner of this selection is the tray.
bool TrayIsEmbedding()
{
    auto* connection = Connection();
    if (!connection)
        return false;
    const xcb_atom_t tray = Atom(connection, ("_NET_SYSTEM_TRAY_S" + QByteArray::number(ScreenNumber())).constData());
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, tray), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void Flush()
{
    if (auto* connection = Connection())
        xcb_flush(connection);
}

Compositor& Compositor::Instance()
{
    static Compositor* const instance = new Compositor(qGuiApp);
    return *instance;
}

Compositor::Compositor(QObject* parent) : QObject(parent)
{
    auto* connection = Connection();
    if (!connection)
        return;
    selection_ = Atom(connection, ("_NET_WM_CM_S" + QByteArray::number(ScreenNumber())).constData());

    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection_), nullptr));
    // wlroots blends its X server's windows without owning the selection.
    running_ = (owner && owner->owner != XCB_WINDOW_NONE) || ManagerName(connection) == WlrootsManager;

    const auto* xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!xfixes || !xfixes->present)
        return;
    selectionNotify_ = static_cast<std::uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    // The same three conditions as in Qt's own watch of this selection, because this request replaces that one.
    xcb_xfixes_select_selection_input(connection, RootWindow(connection), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(connection);
    qGuiApp->installNativeEventFilter(this);
}

Compositor::~Compositor() = default;

bool Compositor::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/)
{
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != selectionNotify_)
        return false;
    const auto* notify = static_cast<const xcb_xfixes_selection_notify_event_t*>(message);
    if (notify->selection != selection_)
        return false;
    const bool running = notify->owner != XCB_WINDOW_NONE;
    if (running != running_) {
        running_ = running;
        Q_EMIT Changed();
    }
    return false;
}

} // namespace voxmate::qt
