#pragma once

#include <string>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

// A row of the panel that does something when it is pressed: a symbol, a text, and at its right a
// few words or the sign of what it opens.
class PanelRow : public PaintedButton {
    Q_OBJECT
public:
    static constexpr int height = 36;

    // Without a symbol it stands under the text of the rows that have one.
    PanelRow(std::string symbol, const QString& text, QWidget* parent = nullptr);
    void setSymbolColor(Theme::Color color);
    // Right of the text; also told to screen readers.
    void setNote(const QString& note);

    // It shows further rows beneath, or hides them.
    enum class Disclosure { none, closed, open };
    void setDisclosure(Disclosure disclosure);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string symbol_;
    Theme::Color color_ = Theme::Color::secondary;
    QString note_;
    Disclosure disclosure_ = Disclosure::none;
};

}  // namespace tendel
