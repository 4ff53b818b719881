#include "ui/window/DayTimelineCard.h"

#include <QVBoxLayout>

#include "ui/window/DayTimelineView.h"

namespace tendel {

DayTimelineCard::DayTimelineCard(TendelApp& app, QWidget* parent)
    : Card(parent), app_(app), view_(new DayTimelineView(app.platform.calendar)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 12, 16, 10);
    column->addWidget(view_);

    const auto look = [this] { refresh_.request(); };
    const ReminderScheduler& scheduler = app_.scheduler;
    subscriptions_.push_back(app_.store.saved.connect(look));
    subscriptions_.push_back(scheduler.now().observe(look));
    subscriptions_.push_back(scheduler.upcoming().observe(look));
    subscriptions_.push_back(scheduler.pausedUntil().observe(look));
    subscriptions_.push_back(scheduler.kept().observe(look));
    subscriptions_.push_back(app_.settings.workingHours.observe(look));
    subscriptions_.push_back(app_.alerts.model().changed.connect([look](const auto&) { look(); }));
    subscriptions_.push_back(app_.platform.loop.timeZoneChanged.connect(look));
}

void DayTimelineCard::showEvent(QShowEvent* event) {
    refresh();
    Card::showEvent(event);
}

void DayTimelineCard::refresh() {
    view_->setTimeline(DayTimeline::of(app_.store, app_.scheduler, app_.settings.workingHours.get(),
                                       app_.platform.calendar, app_.platform.loop.now(),
                                       app_.alerts.queue().shownReminders()));
}

}  // namespace tendel
