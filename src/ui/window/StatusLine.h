#pragma once

#include <QWidget>

#include <string>
#include <string_view>

#include "app/AlertHold.h"

namespace tendel {

// The foot of the window: says what holds reminders back now, and takes no room while nothing does.
// For assistive technology it is a status bar, whose name changes.
class StatusLine : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);

    // An empty text takes the line away. `spoken` is what assistive technology tells.
    void setStatus(std::string_view symbol, const QString& text, const QString& spoken);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect symbolBox() const;
    QRect textBox() const;
    QString elidedText() const;

    std::string symbol_;
    QString text_;
};

// The symbol that stands for what holds reminders back.
std::string_view symbolOf(AlertHold::Reason reason);

}  // namespace tendel
