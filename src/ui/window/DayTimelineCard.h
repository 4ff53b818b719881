#pragma once

#include <vector>

#include "app/TendelApp.h"
#include "ui/theme/Card.h"
#include "ui/theme/Refresh.h"

namespace tendel {

class DayTimelineView;

// The day's line on a card, which follows all that changes it: the history, the scheduler, the
// alerts on the screen, the clock and the zone. Looks once for many changes, and only while it can
// be seen.
class DayTimelineCard : public Card {
    Q_OBJECT
public:
    explicit DayTimelineCard(TendelApp& app, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();

    TendelApp& app_;
    DayTimelineView* view_;
    Refresh refresh_{*this, [this] { refresh(); }};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel
