// Through LayerShellQt, which speaks the protocol wlr-layer-shell for a window of Qt's.
#include "qt/system/LayerSurface.h"

#include <LayerShellQt/Window>

#include <QGuiApplication>
#include <QMargins>

#include <wayland-client.h>

#include <cstring>
#include <utility>

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

class LayerShellSurface : public LayerSurface
{
public:
    LayerShellSurface(QWindow& window, wl_display* display)
        : layer_(LayerShellQt::Window::get(&window)), display_(display)
    {
        using Shell = LayerShellQt::Window;
        layer_->setLayer(Shell::LayerTop);
        layer_->setAnchors(Shell::Anchors(Shell::AnchorRight) | Shell::AnchorBottom);
        layer_->setKeyboardInteractivity(Shell::KeyboardInteractivityNone);
        layer_->setScope(QStringLiteral("voxmate-character"));
    }
    LayerShellSurface(const LayerShellSurface&) = delete;
    LayerShellSurface& operator=(const LayerShellSurface&) = delete;
    ~LayerShellSurface() override { Forget(); }

    void Place(int fromRight, int fromBottom) override { layer_->setMargins({0, 0, fromRight, fromBottom}); }

    void WhenPlaced(std::function<void()> done) override
    {
        static constexpr wl_callback_listener Listener{OnDone};
        Forget();
        done_ = std::move(done);
        // Requests are carried out in their order.
        asked_ = wl_display_sync(display_);
        wl_callback_add_listener(asked_, &Listener, this);
        wl_display_flush(display_);
    }

private:
    static void OnDone(void* self, wl_callback* /*asked*/, std::uint32_t /*serial*/)
    {
        auto* surface = static_cast<LayerShellSurface*>(self);
        surface->Forget();
        if (const auto done = std::exchange(surface->done_, nullptr))
            done();
    }

    void Forget()
    {
        if (asked_)
            wl_callback_destroy(asked_);
        asked_ = nullptr;
    }

    LayerShellQt::Window* layer_; ///< belongs to the window
    wl_display* display_;
    wl_callback* asked_ = nullptr;
    std::function<void()> done_;
};

} // namespace

std::unique_ptr<LayerSurface> PutInLayer(QWindow& window)
{
    wl_display* display = Display();
    if (!display || !HasLayers(display))
        return nullptr;
    return std::make_unique<LayerShellSurface>(window, display);
}

} // namespace voxmate::qt
