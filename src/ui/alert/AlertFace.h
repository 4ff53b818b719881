#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QStringList>

#include "alerts/NotchAlertModel.h"

namespace tendel {

// What the alert says besides its buttons: symbol, count of those that wait, title, details and
// notice. Laid out once for a content and a place, then drawn as often as needed.
class AlertFace {
public:
    // `body` is the open alert between its flared corners, below the notch or the menu bar.
    // `textRight` is where the text must end, in the compact style.
    void layOut(const NotchAlertContent& content, AlertStyle style, const QRectF& body,
                double textRight);
    // Compact: the further answers take the place of the text.
    void draw(QPainter& painter, bool showsText) const;

    QRectF textBox() const { return textBox_; }
    // All that the texts say, for a tooltip; empty when they fit.
    QString wholeText() const;

private:
    void layOutFull(const QRectF& body);
    void layOutCompact(const QRectF& body, double textRight);
    QSizeF badgeSize() const;
    void drawBadge(QPainter& painter) const;

    NotchAlertContent content_;
    AlertStyle style_ = AlertStyle::full;
    QColor accent_;
    std::string_view symbol_;
    QRectF symbolBox_;
    QRectF circle_;  // empty in the compact style
    QRectF badge_;   // empty when nothing waits
    QRectF textBox_;
    QString title_;
    QStringList details_;
    bool isElided_ = false;
};

// The colour of an alert on its black: that of the reminder's kind, or of the focus timer.
QColor alertAccent(const NotchAlertContent& content);

}  // namespace tendel
