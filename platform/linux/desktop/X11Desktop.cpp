// Reads what an X11 window manager says about the desktop and the windows on it, in one go.
#include "qt/system/Desktop.h"

#include "platform/linux/desktop/X11Connection.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/randr.h>

#include <algorithm>
#include <vector>

namespace voxmate::qt
{

namespace
{

/// The most values read of one property; a list of windows is the longest.
constexpr std::uint32_t MostValues = 4096;

/// A property that is requested now and read later, so that all requests are sent at once.
class Property
{
public:
    Property(xcb_connection_t* connection, xcb_window_t window, const char* name)
        : connection_(connection), cookie_(xcb_get_property(connection, 0, window, Atom(connection, name),
                                                            XCB_GET_PROPERTY_TYPE_ANY, 0, MostValues))
    {
    }

    /// Its 32-bit values; none when there is no such property or window.
    std::vector<std::uint32_t> Read() const
    {
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie_, nullptr));
        if (!reply || reply->format != 32)
            return {};
        const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        return {values, values + xcb_get_property_value_length(reply.get()) / 4};
    }

private:
    xcb_connection_t* connection_;
    xcb_get_property_cookie_t cookie_;
};

bool Contains(const std::vector<std::uint32_t>& values, std::uint32_t value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

/// The requests sent for one window.
struct Questions {
    Questions(xcb_connection_t* connection, xcb_window_t root, xcb_window_t window)
        : id(window), state(connection, window, "_NET_WM_STATE"), type(connection, window, "_NET_WM_WINDOW_TYPE"),
          workspace(connection, window, "_NET_WM_DESKTOP"), owner(connection, window, "WM_TRANSIENT_FOR"),
          partialStrut(connection, window, "_NET_WM_STRUT_PARTIAL"), strut(connection, window, "_NET_WM_STRUT"),
          attributes(xcb_get_window_attributes(connection, window)), geometry(xcb_get_geometry(connection, window)),
          place(xcb_translate_coordinates(connection, window, root, 0, 0))
    {
    }

    xcb_window_t id;
    Property state;
    Property type;
    Property workspace;
    Property owner;
    Property partialStrut;
    Property strut;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
};

void AddStruts(const Questions& window, QList<Strut>& struts)
{
    // The values are the depths at the left, right, top and bottom edge, and then the begin and end of each.
    std::vector<std::uint32_t> values = window.partialStrut.Read();
    const std::vector<std::uint32_t> whole = window.strut.Read();
    if (values.size() < 12) {
        values = whole;
        values.resize(4);
        for (int edge = 0; edge < 4; ++edge)
            values.insert(values.end(), {0, 0xFFFF});
    }
    for (const auto edge : {Strut::Left, Strut::Right, Strut::Top, Strut::Bottom}) {
        const auto at = static_cast<std::size_t>(edge);
        // Limited to the most pixels a screen can have, because a panel may set any number.
        const auto pixels = [&values](std::size_t i) { return static_cast<int>(std::min(values[i], 0xFFFFU)); };
        if (values[at] > 0)
            struts.append({edge, pixels(at), pixels(4 + 2 * at), pixels(5 + 2 * at)});
    }
}

std::vector<QRect> Rects(const std::vector<std::uint32_t>& values)
{
    std::vector<QRect> rects;
    for (std::size_t i = 0; i + 3 < values.size(); i += 4)
        rects.emplace_back(static_cast<int>(values[i]), static_cast<int>(values[i + 1]),
                           static_cast<int>(values[i + 2]), static_cast<int>(values[i + 3]));
    return rects;
}

QList<QRect> Monitors(xcb_connection_t* connection, xcb_window_t root)
{
    static const bool known = [connection] {
        const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
        if (!extension || !extension->present)
            return false;
        const Reply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
            connection, xcb_randr_query_version(connection, XCB_RANDR_MAJOR_VERSION, XCB_RANDR_MINOR_VERSION),
            nullptr));
        return version && (version->major_version > 1 || version->minor_version >= 5);
    }();
    if (!known)
        return {};
    const Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
    QList<QRect> monitors;
    if (!reply)
        return monitors;
    for (auto at = xcb_randr_get_monitors_monitors_iterator(reply.get()); at.rem > 0; xcb_randr_monitor_info_next(&at))
        monitors.append({at.data->x, at.data->y, at.data->width, at.data->height});
    return monitors;
}

/// Requests notice of changes to the root window's properties, in addition to what the toolkit has requested.
void WatchRoot(xcb_connection_t* connection, xcb_window_t root)
{
    const Reply<xcb_get_window_attributes_reply_t> now(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, root), nullptr));
    if (!now || (now->your_event_mask & XCB_EVENT_MASK_PROPERTY_CHANGE) != 0)
        return;
    const std::uint32_t mask = now->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
}

/// Requests notice of changes to another program's window, for a full-screen one also when it moves or closes. The
/// window may already be gone.
void Watch(xcb_connection_t* connection, xcb_window_t window, bool fullScreen)
{
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE |
                               (fullScreen ? static_cast<std::uint32_t>(XCB_EVENT_MASK_STRUCTURE_NOTIFY) : 0U);
    xcb_discard_reply(connection,
                      xcb_change_window_attributes_checked(connection, window, XCB_CW_EVENT_MASK, &mask).sequence);
}

QSet<std::uint32_t> OwnWindows()
{
    QSet<std::uint32_t> own;
    for (const QWindow* window : QGuiApplication::allWindows()) {
        if (window->handle())
            own.insert(static_cast<std::uint32_t>(window->winId()));
    }
    return own;
}

/// The window manager's windows, the lowest first.
std::vector<std::uint32_t> ListedWindows(xcb_connection_t* connection, xcb_window_t root)
{
    const Property stacking(connection, root, "_NET_CLIENT_LIST_STACKING");
    const Property byAge(connection, root, "_NET_CLIENT_LIST");
    std::vector<std::uint32_t> windows = stacking.Read();
    const std::vector<std::uint32_t> all = byAge.Read();
    return windows.empty() ? all : windows;
}

/// Reads the replies for one window.
class Looker
{
public:
    Looker(xcb_connection_t* connection, std::uint32_t workspace, std::uint32_t active)
        : connection_(connection), workspace_(workspace), active_(active), own_(OwnWindows())
    {
    }

    void Look(const Questions& window, const QSet<std::uint32_t>& watched, DesktopState& desktop)
    {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection_, window.attributes, nullptr));
        const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection_, window.geometry, nullptr));
        const Reply<xcb_translate_coordinates_reply_t> place(
            xcb_translate_coordinates_reply(connection_, window.place, nullptr));
        const std::vector<std::uint32_t> states = window.state.Read();
        const std::vector<std::uint32_t> types = window.type.Read();
        const std::vector<std::uint32_t> workspace = window.workspace.Read();
        const bool dependent = !window.owner.Read().empty();
        QList<Strut> struts;
        AddStruts(window, struts);
        if (!attributes || !geometry || !place)
            return;

        ListedWindow listed;
        listed.own = own_.contains(window.id);
        listed.fullScreen = Has(states, "_NET_WM_STATE_FULLSCREEN");
        const bool normal = types.empty() ? !dependent : types.front() == Named("_NET_WM_WINDOW_TYPE_NORMAL");
        listed.ordinary = listed.own || (normal && !Has(states, "_NET_WM_STATE_ABOVE"));
        listed.active = window.id == active_;
        listed.rect = {place->dst_x, place->dst_y, geometry->width, geometry->height};
        if (!listed.own) {
            desktop.watched.insert(window.id);
            if (!watched.contains(window.id) || listed.fullScreen)
                Watch(connection_, window.id, listed.fullScreen);
        }
        const bool here = workspace.empty() || workspace.front() == workspace_ || workspace.front() == EveryDesktop;
        if (!here || attributes->map_state != XCB_MAP_STATE_VIEWABLE || Has(states, "_NET_WM_STATE_HIDDEN"))
            return;
        desktop.windows.append(listed);
        desktop.struts += struts;
    }

private:
    xcb_atom_t Named(const char* name) const { return Atom(connection_, name); }
    bool Has(const std::vector<std::uint32_t>& states, const char* name) const { return Contains(states, Named(name)); }

    xcb_connection_t* connection_;
    std::uint32_t workspace_;
    std::uint32_t active_;
    QSet<std::uint32_t> own_;
};

/// The first value of a property; 0 without one.
std::uint32_t First(const Property& property)
{
    const std::vector<std::uint32_t> values = property.Read();
    return values.empty() ? 0 : values.front();
}

void ReadWorkAreas(xcb_connection_t* connection, xcb_window_t root, std::uint32_t workspace, DesktopState& desktop)
{
    // One work area per workspace for all screens together; it describes a screen only if there is no other.
    const std::vector<QRect> common = Rects(Property(connection, root, "_NET_WORKAREA").Read());
    if (desktop.monitors.size() < 2 && workspace < common.size())
        desktop.workAreas.append(common[workspace]);
    // One work area per screen, set where the panel is part of the window manager.
    const std::string name = "_GTK_WORKAREAS_D" + std::to_string(workspace);
    for (const QRect& area : Rects(Property(connection, root, name.c_str()).Read()))
        desktop.workAreas.append(area);
}

} // namespace

DesktopState LookAtDesktop(const QSet<std::uint32_t>& watched)
{
    DesktopState desktop;
    auto* connection = Connection();
    if (!connection)
        return desktop;
    const xcb_window_t root = RootWindow(connection);
    WatchRoot(connection, root);
    const Reply<xcb_get_geometry_reply_t> extent(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root), nullptr));
    if (extent)
        desktop.extent = {0, 0, extent->width, extent->height};
    desktop.monitors = Monitors(connection, root);

    const Property workspaceAsked(connection, root, "_NET_CURRENT_DESKTOP");
    const Property activeAsked(connection, root, "_NET_ACTIVE_WINDOW");
    const std::uint32_t workspace = First(workspaceAsked);
    Looker looker(connection, workspace, First(activeAsked));
    std::vector<Questions> questions;
    for (const std::uint32_t window : ListedWindows(connection, root))
        questions.emplace_back(connection, root, window);
    for (const Questions& window : questions)
        looker.Look(window, watched, desktop);
    ReadWorkAreas(connection, root, workspace, desktop);
    xcb_flush(connection);
    return desktop;
}

bool TellsOfDesktop(const void* event, const QSet<std::uint32_t>& watched)
{
    auto* connection = Connection();
    if (!connection)
        return false;
    const int kind = static_cast<const xcb_generic_event_t*>(event)->response_type & 0x7F;
    if (kind == XCB_CONFIGURE_NOTIFY)
        return watched.contains(static_cast<const xcb_configure_notify_event_t*>(event)->window);
    if (kind != XCB_PROPERTY_NOTIFY)
        return false;
    const auto* change = static_cast<const xcb_property_notify_event_t*>(event);
    const auto isOneOf = [connection, change](std::initializer_list<const char*> names) {
        return std::any_of(names.begin(), names.end(),
                           [&](const char* name) { return Atom(connection, name) == change->atom; });
    };
    if (change->window == RootWindow(connection))
        return isOneOf({"_NET_CLIENT_LIST_STACKING", "_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP",
                        "_NET_WORKAREA", "_GTK_WORKAREAS_D0"});
    return watched.contains(change->window) &&
           isOneOf({"_NET_WM_STATE", "_NET_WM_DESKTOP", "_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT"});
}

} // namespace voxmate::qt
