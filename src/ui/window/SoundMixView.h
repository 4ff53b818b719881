#pragma once

#include <QWidget>

#include <vector>

#include "sound/FocusSoundController.h"

namespace tendel {

class Button;
class IconButton;
class SegmentedControl;
class Slider;
class SoundRow;

// The two mixes, one for focus and one for breaks, with the volume of both.
class SoundMixView : public QWidget {
    Q_OBJECT
public:
    // All of it must outlive the widget.
    struct Services {
        AppSettings& settings;
        FocusSoundController& sounds;
        const Observable<std::optional<FocusSession>>& session;
    };

    explicit SoundMixView(Services services, QWidget* parent = nullptr);

    // Shows the mix that belongs to what the user does now.
    void showRowOfPhase();

private:
    using Row = FocusSoundRules::Row;
    QWidget* makeHeader();
    QWidget* makeCard();
    Row row() const;
    Setting<SoundMix>& mix();
    void edit(const std::function<void(SoundMix&)>& change);
    void togglePreview();
    void refreshMix();
    void refreshPreview();
    void refreshVolume();

    Services services_;
    SegmentedControl* rowChoice_;
    Button* listen_;
    IconButton* mute_;
    Slider* volume_;
    std::vector<SoundRow*> rows_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel
