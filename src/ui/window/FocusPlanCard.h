#pragma once

#include "storage/AppSettings.h"
#include "ui/theme/Card.h"

namespace tendel {

class Label;
class Stepper;

// How focus time is divided. What is set here counts from the next session on.
class FocusPlanCard : public Card {
    Q_OBJECT
public:
    explicit FocusPlanCard(AppSettings& settings, QWidget* parent = nullptr);

private:
    void refresh();
    void edit(const std::function<void(FocusPlan&)>& change);

    AppSettings& settings_;
    Stepper* focus_;
    Stepper* break_;
    Stepper* longBreak_;
    Label* explanation_;
    Subscription planChanged_;  // last member: goes first
};

}  // namespace tendel
