// Through LayerShellQt, which speaks the protocol wlr-layer-shell for a window of Qt's.
#include "qt/system/LayerSurface.h"

#include <LayerShellQt/Window>

#include <QGuiApplication>

#include <wayland-client.h>

#include <cstdint>
#include <cstring>

namespace voxmate::qt
{

namespace
{

wl_display* Display()
{
    auto* application = qGuiApp->nativeInterface<QNativeInterface::QWaylandApplication>();
    return application ? application->display() : nullptr;
}

void OnGlobal(void* found, wl_registry* /*registry*/, std::uint32_t /*name*/, const char* interface,
              std::uint32_t /*version*/)
{
    if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0)
        *static_cast<bool*>(found) = true;
}

void OnGlobalRemoved(void* /*found*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

/// LayerShellQt only writes a warning where the compositor lacks the protocol, and the window would be an ordinary one.
bool HasLayers(wl_display* display)
{
    static constexpr wl_registry_listener Listener{OnGlobal, OnGlobalRemoved};
    // A queue of its own, so that no event of Qt's is handled meanwhile.
    wl_event_queue* queue = wl_display_create_queue(display);
    auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    wl_registry* registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    bool found = false;
    wl_registry_add_listener(registry, &Listener, &found);
    wl_display_roundtrip_queue(display, queue);
    wl_registry_destroy(registry);
    wl_event_queue_destroy(queue);
    return found;
}

} // namespace

bool PutInLayer(QWindow& window)
{
    wl_display* display = Display();
    if (!display || !HasLayers(display))
        return false;
    using Shell = LayerShellQt::Window;
    Shell* layer = Shell::get(&window); // belongs to the window
    layer->setLayer(Shell::LayerTop);
    layer->setAnchors(Shell::Anchors(Shell::AnchorTop) | Shell::AnchorBottom | Shell::AnchorLeft | Shell::AnchorRight);
    layer->setKeyboardInteractivity(Shell::KeyboardInteractivityNone);
    layer->setScope(QStringLiteral("voxmate-character"));
    return true;
}

} // namespace voxmate::qt
