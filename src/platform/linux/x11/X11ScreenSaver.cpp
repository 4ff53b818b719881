#include "platform/linux/x11/X11ScreenSaver.h"

#include <xcb/dpms.h>
#include <xcb/screensaver.h>
#include <xcb/xcb.h>

namespace tendel {

namespace {

bool isRunning(std::uint8_t state) {
    return state == XCB_SCREENSAVER_STATE_ON || state == XCB_SCREENSAVER_STATE_CYCLE;
}

}  // namespace

X11ScreenSaver::X11ScreenSaver(X11Connection& connection) : connection_(connection) {
    if (!connection_.isOpen()) return;
    xcb_connection_t* native = connection_.native();
    xcb_prefetch_extension_data(native, &xcb_dpms_id);
    const auto* saver = xcb_get_extension_data(native, &xcb_screensaver_id);
    if (!saver || !saver->present) return;
    saverEvent_ = saver->first_event + XCB_SCREENSAVER_NOTIFY;
    xcb_screensaver_select_input(
        native, connection_.root(),
        XCB_SCREENSAVER_EVENT_NOTIFY_MASK | XCB_SCREENSAVER_EVENT_CYCLE_MASK);
    const auto info = connection_.reply(xcb_screensaver_query_info_reply,
                                        xcb_screensaver_query_info(native, connection_.root()));
    if (info) isRunning_ = isRunning(info->state);

    const auto* dpms = xcb_get_extension_data(native, &xcb_dpms_id);
    if (dpms && dpms->present) {
        const auto answer = connection_.reply(xcb_dpms_capable_reply, xcb_dpms_capable(native));
        hasPower_ = answer && answer->capable;
        isAsleep_ = readPower();
    }
    events_ = connection_.event.connect([this](const X11Event& event) { handle(event); });
    lost_ = connection_.lost.connect([this] { changed.emit(); });
}

std::optional<bool> X11ScreenSaver::is(SystemState state) const {
    if (!connection_.isOpen()) return std::nullopt;
    switch (state) {
        case SystemState::screensaverRunning:
            return isRunning_;
        case SystemState::screensAsleep:
            return isAsleep_;
        case SystemState::locked:
        case SystemState::sessionInactive:
            break;
    }
    return std::nullopt;
}

void X11ScreenSaver::handle(const X11Event& event) {
    if (event.type != saverEvent_) return;
    const bool running = isRunning(event.as<xcb_screensaver_notify_event_t>().state);
    const auto asleep = readPower();
    if (running == isRunning_ && asleep == isAsleep_) return;
    isRunning_ = running;
    isAsleep_ = asleep;
    changed.emit();
}

std::optional<bool> X11ScreenSaver::readPower() {
    if (!hasPower_ || !connection_.isOpen()) return std::nullopt;
    const auto info = connection_.reply(xcb_dpms_info_reply, xcb_dpms_info(connection_.native()));
    if (!info) return std::nullopt;
    return info->state && info->power_level != XCB_DPMS_DPMS_MODE_ON;
}

}  // namespace tendel
