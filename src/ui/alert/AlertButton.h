#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPainterPath>

#include <string_view>

namespace tendel {

// A button on the alert's black. It never takes the keyboard's focus, because the alert's window
// has none to give.
class AlertButton : public QAbstractButton {
    Q_OBJECT
public:
    enum class Face { text, symbol };

    explicit AlertButton(QWidget* parent);

    // `name` is what it says, or what assistive technology says of the symbol. `accent` fills it;
    // an invalid colour leaves it quiet.
    void set(Face face, const QString& name, std::string_view symbol, const QColor& accent);
    // What of it shows: how opaque (0–1), and the alert's outline in its own coordinates.
    void setShown(double opacity, const QPainterPath& clip);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont textFont() const;
    QColor background() const;

    Face face_ = Face::text;
    std::string_view symbol_;
    QColor accent_;
    double opacity_ = 1;
    QPainterPath clip_;
};

}  // namespace tendel
