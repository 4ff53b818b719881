#pragma once

#include <QWidget>

#include "model/SoundMix.h"
#include "ui/theme/Theme.h"

namespace tendel {

class Label;
class Slider;

// One sound of a mix: its symbol and name switch it on and off, the slider sets how loud it is.
// The level stands at the right while the pointer or the keyboard is on the row.
class SoundRow : public QWidget {
    Q_OBJECT
public:
    SoundRow(FocusSound sound, QWidget* parent = nullptr);

    FocusSound sound() const { return sound_; }
    // Shows the sound as a mix has it; `accent` is the colour of the phase in which it plays.
    void show(const SoundMix& mix, Theme::Color accent);

Q_SIGNALS:
    void switched(bool isOn);
    void levelChosen(double level);  // 0–1

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Toggle;
    void refreshLevel();

    FocusSound sound_;
    Toggle* toggle_;
    Slider* slider_;
    Label* level_;
};

}  // namespace tendel
