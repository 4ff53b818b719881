// A native Wayland window for the tests: one colour, tells on standard output who has the keyboard
// and which keys arrive.
//
//   wayland_window [--full-screen] [--inhibit-idle]

#include <idle-inhibit-unstable-v1-client-protocol.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xdg-shell-client-protocol.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint32_t color = 0xffff00ff;

wl_compositor* compositor;
wl_shm* sharedMemory;
wl_seat* seat;
xdg_wm_base* shell;
zwp_idle_inhibit_manager_v1* inhibitManager;
wl_surface* surface;
std::int32_t width;
std::int32_t height;

void tell(const char* what, std::uint32_t number = 0) {
    std::printf("%s %u\n", what, number);
    std::fflush(stdout);
}

void draw() {
    const std::int32_t stride = width * 4;
    const std::int32_t size = stride * height;
    const int file = memfd_create("window", 0);
    const std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height), color);
    if (write(file, pixels.data(), static_cast<std::size_t>(size)) != size) return;
    wl_shm_pool* pool = wl_shm_create_pool(sharedMemory, file, size);
    wl_surface_attach(
        surface, wl_shm_pool_create_buffer(pool, 0, width, height, stride, WL_SHM_FORMAT_ARGB8888),
        0, 0);
    wl_shm_pool_destroy(pool);
    close(file);
    wl_surface_damage(surface, 0, 0, width, height);
    wl_surface_commit(surface);
}

constexpr xdg_wm_base_listener shellListener{
    .ping = [](void*, xdg_wm_base* base, std::uint32_t serial) { xdg_wm_base_pong(base, serial); }};

constexpr xdg_surface_listener surfaceListener{
    .configure = [](void*, xdg_surface* shellSurface, std::uint32_t serial) {
        xdg_surface_ack_configure(shellSurface, serial);
        draw();
    }};

constexpr xdg_toplevel_listener windowListener{
    .configure =
        [](void*, xdg_toplevel*, std::int32_t newWidth, std::int32_t newHeight, wl_array*) {
            width = newWidth > 0 ? newWidth : 300;
            height = newHeight > 0 ? newHeight : 200;
        },
    .close = [](void*, xdg_toplevel*) { std::exit(0); },
    .configure_bounds = [](void*, xdg_toplevel*, std::int32_t, std::int32_t) {},
    .wm_capabilities = [](void*, xdg_toplevel*, wl_array*) {}};

constexpr wl_keyboard_listener keyboardListener{
    .keymap = [](auto, auto, auto, int file, auto) { close(file); },
    .enter = [](auto, auto, auto, auto, auto) { tell("focused"); },
    .leave = [](auto, auto, auto, auto) { tell("unfocused"); },
    .key =
        [](auto, auto, auto, auto, std::uint32_t key, std::uint32_t state) {
            if (state == WL_KEYBOARD_KEY_STATE_PRESSED) tell("key", key);
        },
    .modifiers = [](auto, auto, auto, auto, auto, auto, auto) {},
    .repeat_info = [](auto...) {}};

constexpr wl_seat_listener seatListener{
    .capabilities =
        [](void*, wl_seat* of, std::uint32_t capabilities) {
            static wl_keyboard* keyboard = nullptr;
            if (keyboard || !(capabilities & WL_SEAT_CAPABILITY_KEYBOARD)) return;
            keyboard = wl_seat_get_keyboard(of);
            wl_keyboard_add_listener(keyboard, &keyboardListener, nullptr);
        },
    .name = [](void*, wl_seat*, const char*) {}};

constexpr wl_registry_listener registryListener{
    .global =
        [](void*, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
            const auto bind = [&]<class Proxy>(Proxy*& proxy, const wl_interface& wanted) {
                if (std::string_view(interface) != wanted.name) return;
                proxy = static_cast<Proxy*>(wl_registry_bind(registry, name, &wanted, 1));
            };
            bind(compositor, wl_compositor_interface);
            bind(sharedMemory, wl_shm_interface);
            bind(seat, wl_seat_interface);
            bind(shell, xdg_wm_base_interface);
            bind(inhibitManager, zwp_idle_inhibit_manager_v1_interface);
        },
    .global_remove = [](void*, wl_registry*, std::uint32_t) {}};

}  // namespace

int main(int argc, char** argv) {
    const auto isAsked = [&](std::string_view option) {
        return std::find(argv + 1, argv + argc, option) != argv + argc;
    };
    wl_display* display = wl_display_connect(nullptr);
    if (!display) return 1;
    wl_registry_add_listener(wl_display_get_registry(display), &registryListener, nullptr);
    wl_display_roundtrip(display);
    if (!compositor || !sharedMemory || !seat || !shell) return 1;
    wl_seat_add_listener(seat, &seatListener, nullptr);
    xdg_wm_base_add_listener(shell, &shellListener, nullptr);

    surface = wl_compositor_create_surface(compositor);
    xdg_surface* shellSurface = xdg_wm_base_get_xdg_surface(shell, surface);
    xdg_surface_add_listener(shellSurface, &surfaceListener, nullptr);
    xdg_toplevel* window = xdg_surface_get_toplevel(shellSurface);
    xdg_toplevel_add_listener(window, &windowListener, nullptr);
    xdg_toplevel_set_app_id(window, "wayland_window");
    if (isAsked("--full-screen")) xdg_toplevel_set_fullscreen(window, nullptr);
    if (isAsked("--inhibit-idle")) {
        if (!inhibitManager) return 1;
        zwp_idle_inhibit_manager_v1_create_inhibitor(inhibitManager, surface);
    }
    wl_surface_commit(surface);
    while (wl_display_dispatch(display) >= 0) {
    }
    return 0;
}
