#pragma once

#include <QWidget>

#include <QStringList>

namespace tendel {

// A small card over the window that tells more of what the pointer or the keyboard is on: a title
// and a few lines. Nothing for the pointer, the keyboard or assistive programs, which hear of it
// otherwise. Lives as long as the widget that it speaks for.
class Callout : public QWidget {
    Q_OBJECT
public:
    explicit Callout(QWidget* of);

    // Shows it above `anchor` (in the coordinates of the widget that it speaks for), below where
    // there is no room; always inside the window.
    void showAt(const QRectF& anchor, const QString& title, const QStringList& lines = {});

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static QFont titleFont();
    static QFont lineFont();

    QWidget* of_;
    QString title_;
    QStringList lines_;
};

}  // namespace tendel
