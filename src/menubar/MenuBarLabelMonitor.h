#pragma once

#include <vector>

#include "base/Observable.h"
#include "base/Timer.h"
#include "focus/FocusTimer.h"
#include "menubar/MenuBarLabel.h"
#include "menubar/NotchLiveController.h"
#include "reminders/ReminderScheduler.h"
#include "storage/AppSettings.h"

namespace tendel {

// Keeps the label up to date: on the minutes of the scheduler and of the focus timer, and whenever
// something that it speaks of changes. Main thread only; what it is given must outlive it.
class MenuBarLabelMonitor {
public:
    MenuBarLabelMonitor(const AppSettings& settings, EventLoop& loop,
                        const ReminderScheduler& scheduler, const FocusTimer& focus,
                        NotchLiveController& live);

    const Observable<MenuBarLabel>& label() const { return label_; }

private:
    void look();

    const AppSettings& settings_;
    const ReminderScheduler& scheduler_;
    const FocusTimer& focus_;
    NotchLiveController& live_;
    Observable<MenuBarLabel> label_;
    Timer soon_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel
