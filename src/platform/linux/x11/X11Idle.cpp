#include "platform/linux/x11/X11Idle.h"

#include <xcb/screensaver.h>
#include <xcb/sync.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tendel {

namespace {

// The name follows its length at once. (libxcb's own accessor skips the structure's padding, which
// is not sent, and so loses two letters.)
std::string_view nameOf(const xcb_sync_systemcounter_t& counter) {
    const auto* bytes = reinterpret_cast<const char*>(&counter);
    return {bytes + offsetof(xcb_sync_systemcounter_t, name_len) + sizeof counter.name_len,
            counter.name_len};
}

xcb_sync_int64_t toInt64(std::int64_t value) {
    return {static_cast<std::int32_t>(value >> 32), static_cast<std::uint32_t>(value)};
}

std::uint32_t createAlarm(xcb_connection_t* native, std::uint32_t counter, xcb_sync_testtype_t test,
                          std::int64_t milliseconds) {
    const std::uint32_t alarm = xcb_generate_id(native);
    xcb_sync_create_alarm_value_list_t values{};
    values.counter = counter;
    values.valueType = XCB_SYNC_VALUETYPE_ABSOLUTE;
    values.value = toInt64(milliseconds);
    values.testType = test;
    values.delta = toInt64(0);  // transitions are told again and again without being set anew
    values.events = 1;
    xcb_sync_create_alarm_aux(native, alarm,
                              XCB_SYNC_CA_COUNTER | XCB_SYNC_CA_VALUE_TYPE | XCB_SYNC_CA_VALUE |
                                  XCB_SYNC_CA_TEST_TYPE | XCB_SYNC_CA_DELTA | XCB_SYNC_CA_EVENTS,
                              &values);
    return alarm;
}

}  // namespace

X11Idle::X11Idle(X11Connection& connection) : connection_(connection) {
    if (!connection_.isOpen()) return;
    xcb_prefetch_extension_data(connection_.native(), &xcb_sync_id);
    const auto* extension = xcb_get_extension_data(connection_.native(), &xcb_screensaver_id);
    hasScreenSaver_ = extension && extension->present;
    findCounter();
    events_ = connection_.event.connect([this](const X11Event& event) { handle(event); });
    lost_ = connection_.lost.connect([this] { crossed.emit(); });
}

X11Idle::~X11Idle() {
    destroyAlarms();
}

void X11Idle::findCounter() {
    xcb_connection_t* native = connection_.native();
    const auto* extension = xcb_get_extension_data(native, &xcb_sync_id);
    if (!extension || !extension->present) return;
    alarmEvent_ = extension->first_event + XCB_SYNC_ALARM_NOTIFY;

    const auto version = xcb_sync_initialize(native, 3, 0);
    const auto asked = xcb_sync_list_system_counters(native);
    connection_.reply(xcb_sync_initialize_reply, version);
    const auto counters = connection_.reply(xcb_sync_list_system_counters_reply, asked);
    if (!counters) return;
    auto each = xcb_sync_list_system_counters_counters_iterator(counters.get());
    for (; each.rem > 0; xcb_sync_systemcounter_next(&each))
        if (nameOf(*each.data) == "IDLETIME") counter_ = each.data->counter;
}

std::optional<double> X11Idle::idleSeconds() {
    if (!hasScreenSaver_ || !connection_.isOpen()) return std::nullopt;
    const auto info =
        connection_.reply(xcb_screensaver_query_info_reply,
                          xcb_screensaver_query_info(connection_.native(), connection_.root()));
    if (!info) return std::nullopt;
    return info->ms_since_user_input / 1000.0;
}

void X11Idle::watch(std::optional<double> thresholdSeconds) {
    if (thresholdSeconds == threshold_) return;
    threshold_ = thresholdSeconds;
    destroyAlarms();
    if (!threshold_ || !tellsCrossings()) return;
    // Rounded up: when it comes, the idle time in seconds has reached the threshold for sure.
    const auto milliseconds =
        std::max<std::int64_t>(std::llround(std::ceil(*threshold_ * 1000)), 2);
    xcb_connection_t* native = connection_.native();
    idleAlarm_ = createAlarm(native, counter_, XCB_SYNC_TESTTYPE_POSITIVE_TRANSITION, milliseconds);
    // One below, since the fall must come from above the value that is waited for.
    inputAlarm_ =
        createAlarm(native, counter_, XCB_SYNC_TESTTYPE_NEGATIVE_TRANSITION, milliseconds - 1);
    connection_.flush();
}

void X11Idle::destroyAlarms() {
    const auto idle = std::exchange(idleAlarm_, 0);
    const auto input = std::exchange(inputAlarm_, 0);
    if (!idle || !connection_.isOpen()) return;
    xcb_sync_destroy_alarm(connection_.native(), idle);
    xcb_sync_destroy_alarm(connection_.native(), input);
    connection_.flush();
}

void X11Idle::handle(const X11Event& event) {
    if (counter_ == 0 || event.type != alarmEvent_) return;
    // A destroyed one says farewell under its old number, which is none of these any more.
    const auto alarm = event.as<xcb_sync_alarm_notify_event_t>().alarm;
    if (idleAlarm_ && (alarm == idleAlarm_ || alarm == inputAlarm_)) crossed.emit();
}

}  // namespace tendel
