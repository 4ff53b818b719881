#include "platform/linux/x11/X11Windows.h"

#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <string_view>
#include <tuple>

namespace tendel {

namespace {

enum Atom : std::size_t {
    supportingWmCheck,
    clientListStacking,
    currentDesktop,
    activeWindow,
    wmDesktop,
    wmPid,
    wmState,
    stateHidden,
    stateFullscreen,
    stateMaximizedVert,
    stateMaximizedHorz,
    wmWindowType,
    typeDock,
    typeDesktop,
    frameExtents
};
constexpr std::array atomNames = {"_NET_SUPPORTING_WM_CHECK",
                                  "_NET_CLIENT_LIST_STACKING",
                                  "_NET_CURRENT_DESKTOP",
                                  "_NET_ACTIVE_WINDOW",
                                  "_NET_WM_DESKTOP",
                                  "_NET_WM_PID",
                                  "_NET_WM_STATE",
                                  "_NET_WM_STATE_HIDDEN",
                                  "_NET_WM_STATE_FULLSCREEN",
                                  "_NET_WM_STATE_MAXIMIZED_VERT",
                                  "_NET_WM_STATE_MAXIMIZED_HORZ",
                                  "_NET_WM_WINDOW_TYPE",
                                  "_NET_WM_WINDOW_TYPE_DOCK",
                                  "_NET_WM_WINDOW_TYPE_DESKTOP",
                                  "_GTK_FRAME_EXTENTS"};
using Atoms = std::array<xcb_atom_t, atomNames.size()>;

constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

// A property's 32-bit values, none when it is absent or of another format.
using Values = std::vector<std::uint32_t>;

xcb_get_property_cookie_t askProperty(xcb_connection_t* native, xcb_window_t window,
                                      xcb_atom_t name, std::uint32_t longest = 64) {
    return xcb_get_property(native, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, longest);
}

Values readProperty(X11Connection& connection, xcb_get_property_cookie_t asked) {
    const auto answer = connection.reply(xcb_get_property_reply, asked);
    if (!answer || answer->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
    return {first, first + answer->value_len};
}

bool contains(const Values& values, std::uint32_t value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// The questions about one window, all asked before the first answer is waited for.
class Client {
public:
    Client(X11Connection& connection, const Atoms& atoms, xcb_window_t window)
        : attributes_(xcb_get_window_attributes(connection.native(), window)),
          geometry_(xcb_get_geometry(connection.native(), window)),
          origin_(xcb_translate_coordinates(connection.native(), window, connection.root(), 0, 0)),
          state_(askProperty(connection.native(), window, atoms[wmState])),
          type_(askProperty(connection.native(), window, atoms[wmWindowType])),
          desktop_(askProperty(connection.native(), window, atoms[wmDesktop])),
          pid_(askProperty(connection.native(), window, atoms[wmPid])),
          extents_(askProperty(connection.native(), window, atoms[frameExtents])) {}

    // Nothing when it cannot be seen, is none of those that count, or has gone meanwhile.
    std::optional<DesktopWindows::Window> window(X11Connection& connection, const Atoms& atoms,
                                                 const Values& shownDesktop) const {
        const auto attributes = connection.reply(xcb_get_window_attributes_reply, attributes_);
        const auto geometry = connection.reply(xcb_get_geometry_reply, geometry_);
        const auto origin = connection.reply(xcb_translate_coordinates_reply, origin_);
        const Values state = readProperty(connection, state_);
        const Values type = readProperty(connection, type_);
        const Values desktop = readProperty(connection, desktop_);
        const Values pid = readProperty(connection, pid_);
        const Values extents = readProperty(connection, extents_);

        if (!attributes || !geometry || !origin) return std::nullopt;
        if (attributes->map_state != XCB_MAP_STATE_VIEWABLE) return std::nullopt;
        if (contains(state, atoms[stateHidden])) return std::nullopt;
        if (contains(type, atoms[typeDesktop])) return std::nullopt;
        if (contains(pid, static_cast<std::uint32_t>(::getpid()))) return std::nullopt;
        if (!desktop.empty() && !shownDesktop.empty() && desktop[0] != allDesktops &&
            desktop[0] != shownDesktop[0])
            return std::nullopt;

        DesktopWindows::Window found;
        found.layer = attributes->override_redirect ? 1 : 0;
        found.bounds = {double(origin->dst_x), double(origin->dst_y), double(geometry->width),
                        double(geometry->height)};
        // The shadow that a program draws around its window, in left, right, top, bottom.
        if (extents.size() == 4) {
            found.bounds.x += extents[0];
            found.bounds.y += extents[2];
            found.bounds.width -= double(extents[0]) + extents[1];
            found.bounds.height -= double(extents[2]) + extents[3];
        }
        found.isDock = contains(type, atoms[typeDock]);
        found.isMaximized = contains(state, atoms[stateMaximizedVert]) &&
                            contains(state, atoms[stateMaximizedHorz]) &&
                            !contains(state, atoms[stateFullscreen]);
        return found;
    }

private:
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
    xcb_translate_coordinates_cookie_t origin_;
    xcb_get_property_cookie_t state_;
    xcb_get_property_cookie_t type_;
    xcb_get_property_cookie_t desktop_;
    xcb_get_property_cookie_t pid_;
    xcb_get_property_cookie_t extents_;
};

constexpr std::uint32_t longestClientList = 4096;

}  // namespace

X11Windows::X11Windows(X11Connection& connection) : connection_(connection) {
    static_assert(atomNames.size() == std::tuple_size_v<decltype(atoms_)>);
    if (!connection_.isOpen()) return;
    xcb_connection_t* native = connection_.native();
    xcb_prefetch_extension_data(native, &xcb_randr_id);
    std::array<xcb_intern_atom_cookie_t, atomNames.size()> asked{};
    for (std::size_t each = 0; each < asked.size(); ++each) {
        const std::string_view name = atomNames[each];
        asked[each] =
            xcb_intern_atom(native, 0, static_cast<std::uint16_t>(name.size()), name.data());
    }
    for (std::size_t each = 0; each < asked.size(); ++each)
        if (const auto atom = connection_.reply(xcb_intern_atom_reply, asked[each]))
            atoms_[each] = atom->atom;

    const auto* randr = xcb_get_extension_data(native, &xcb_randr_id);
    if (!randr || !randr->present) return;
    const auto version =
        connection_.reply(xcb_randr_query_version_reply, xcb_randr_query_version(native, 1, 5));
    const bool hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
    if (!hasMonitors) return;
    randrEvent_ = randr->first_event;
    xcb_randr_select_input(native, connection_.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    // Of monitors that somebody defines on an output the root window's configuration tells.
    const std::uint32_t rootEvents =
        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(native, connection_.root(), XCB_CW_EVENT_MASK, &rootEvents);
    events_ = connection_.event.connect([this](const X11Event& event) { handle(event); });
    lost_ = connection_.lost.connect([this] { changed.emit(); });
    watchClients(stackedClients());
    connection_.flush();
}

std::optional<DesktopWindows> X11Windows::windows() {
    if (randrEvent_ == 0 || !connection_.isOpen()) return std::nullopt;
    xcb_connection_t* native = connection_.native();
    const auto ask = [&](Atom name, std::uint32_t longest) {
        return askProperty(native, connection_.root(), atoms_[name], longest);
    };
    const auto managerAsked = ask(supportingWmCheck, 1);
    const auto clientsAsked = ask(clientListStacking, longestClientList);
    const auto desktopAsked = ask(currentDesktop, 1);
    const auto monitorsAsked = xcb_randr_get_monitors(native, connection_.root(), 1);
    const Values manager = readProperty(connection_, managerAsked);
    const Values stacked = readProperty(connection_, clientsAsked);
    const Values desktop = readProperty(connection_, desktopAsked);
    const auto monitors = connection_.reply(xcb_randr_get_monitors_reply, monitorsAsked);
    if (manager.empty() || !monitors) return std::nullopt;

    // A window manager that is gone leaves its properties behind, but not its window.
    const auto sameManagerAsked = askProperty(native, manager[0], atoms_[supportingWmCheck], 1);
    struct Named {
        const xcb_randr_monitor_info_t* monitor;
        xcb_get_atom_name_cookie_t nameAsked;
    };
    std::vector<Named> named;
    for (auto each = xcb_randr_get_monitors_monitors_iterator(monitors.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each))
        named.push_back({each.data, xcb_get_atom_name(native, each.data->name)});
    std::stable_partition(named.begin(), named.end(),
                          [](const Named& each) { return each.monitor->primary != 0; });
    std::vector<Client> clients;
    clients.reserve(stacked.size());
    for (const auto window : stacked)
        clients.emplace_back(connection_, atoms_, window);

    const Values sameManager = readProperty(connection_, sameManagerAsked);
    DesktopWindows found;
    for (const auto& [monitor, nameAsked] : named) {
        const auto name = connection_.reply(xcb_get_atom_name_reply, nameAsked);
        auto& screen = found.screens.emplace_back();
        if (name)
            screen.name.assign(xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
        screen.frame = {double(monitor->x), double(monitor->y), double(monitor->width),
                        double(monitor->height)};
    }
    for (const Client& client : clients)
        if (const auto window = client.window(connection_, atoms_, desktop))
            found.windows.push_back(*window);
    std::reverse(found.windows.begin(), found.windows.end());  // it lists the lowest one first

    if (sameManager != manager || !connection_.isOpen()) return std::nullopt;
    return found;
}

std::vector<std::uint32_t> X11Windows::stackedClients() {
    return readProperty(connection_, askProperty(connection_.native(), connection_.root(),
                                                 atoms_[clientListStacking], longestClientList));
}

// Of a client only what moves, shows or hides it: titles change every second in some programs.
void X11Windows::watchClients(const std::vector<std::uint32_t>& clients) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    for (const auto client : clients)
        if (!watched_.contains(client))
            xcb_change_window_attributes(connection_.native(), client, XCB_CW_EVENT_MASK, &events);
    watched_ = {clients.begin(), clients.end()};
}

void X11Windows::handle(const X11Event& event) {
    switch (event.type) {
        case XCB_PROPERTY_NOTIFY: {
            const auto atom = event.as<xcb_property_notify_event_t>().atom;
            if (atom == atoms_[clientListStacking] && connection_.isOpen()) {
                watchClients(stackedClients());
                connection_.flush();
            } else if (atom != atoms_[supportingWmCheck] && atom != atoms_[currentDesktop] &&
                       atom != atoms_[activeWindow]) {
                return;
            }
            break;
        }
        case XCB_CONFIGURE_NOTIFY:
        case XCB_MAP_NOTIFY:
        case XCB_UNMAP_NOTIFY:
            break;
        default:
            if (event.type != randrEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY &&
                event.type != randrEvent_ + XCB_RANDR_NOTIFY)
                return;
    }
    changed.emit();
}

}  // namespace tendel
