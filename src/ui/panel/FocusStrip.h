#pragma once

#include <QWidget>

#include <optional>
#include <vector>

#include "app/TendelApp.h"
#include "ui/window/FocusCountdown.h"

namespace tendel {

class IconButton;
class PanelRow;

// The focus timer in the panel: a row that begins a session, or the phase that runs, with its ring,
// the time that is left and what can be done.
class FocusStrip : public QWidget {
    Q_OBJECT
public:
    explicit FocusStrip(TendelApp& app, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void refreshButtons(const std::vector<LiveActivity::Control>& before);
    void describe();
    void press(LiveActivity::Control control);

    TendelApp& app_;
    std::optional<LiveActivity> activity_;
    PanelRow* start_;
    std::vector<IconButton*> buttons_;  // as many as there can be controls
    FocusCountdown countdown_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel
