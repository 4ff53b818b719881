#pragma once

#include <QWidget>

class QSpinBox;

namespace tendel {

class IconButton;

// A whole number with buttons for less and more at its sides; it can be typed too, and the up and
// down keys change it. One stop for the Tab key.
class Stepper : public QWidget {
    Q_OBJECT
public:
    struct Range {
        int least = 0;
        int most = 1;
        int step = 1;       // the buttons go to multiples of it
        QString suffix{};   // " min"
        QString offText{};  // stands for 0, which then comes below the least
    };

    Stepper(const QString& name, Range range, QWidget* parent = nullptr);

    int value() const;
    // Shows any number that is not negative, also one out of the range. Without `chosen`.
    void setValue(int value);

    // What a screen reader tells beside the name.
    void setExplanation(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    // A person changed it, to 0 (off) or a number of the range.
    void chosen(int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Number;
    void step(int steps);
    int inRange(int value) const;
    void didChange(int value);
    void refreshButtons();

    Range range_;
    Number* number_;
    IconButton* less_;
    IconButton* more_;
    bool isBeingSet_ = false;
};

}  // namespace tendel
