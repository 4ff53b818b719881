#pragma once

#include <QAbstractSlider>
#include <QTimer>

#include "ui/theme/Theme.h"

namespace tendel {

// Sets a level from 0 to 100 percent. The wheel is left to what scrolls beneath.
class Slider : public QAbstractSlider {
    Q_OBJECT
public:
    explicit Slider(const QString& name, QWidget* parent = nullptr);

    // Without `moved`.
    void setLevel(int percent);
    void setAccent(Theme::Color role);
    // Drawn faintly until the pointer or the keyboard is on it: what it sets is off.
    void setQuiet(bool isQuiet);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // A person moved it: during a drag ten times a second at most, the last place always.
    void moved(int percent);

protected:
    void sliderChange(SliderChange change) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void tell();
    QRectF track() const;
    int levelAt(double x) const;

    Theme::Color accent_ = Theme::Color::workAccent;
    bool isQuiet_ = false;
    bool isFocusShown_ = false;
    bool isBeingSet_ = false;
    bool isUntold_ = false;
    QTimer pace_;
};

}  // namespace tendel
