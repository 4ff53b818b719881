#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScreen>
#include <QWidget>

#include "RunningLoop.h"

// For tests on a desktop of their own, with a real pointer. Needs xdotool.
namespace tendel::test {

// What another program of the desktop prints, while our windows go on.
inline QString run(const QString& command) {
    Child process;
    process.startCommand(command);
    EXPECT_SOON(process.state() == QProcess::NotRunning) << command.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << command.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

inline void movePointer(QPoint to) {
    run(QStringLiteral("xdotool mousemove %1 %2").arg(to.x()).arg(to.y()));
}

inline void click(QPoint at, int times = 1) {
    movePointer(at);
    run(QStringLiteral("xdotool click --repeat %1 --delay 80 1").arg(times));
    runFor(50);
}

inline bool isColor(QPoint at, const QColor& color) {
    const QImage pixel =
        QApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage();
    return pixel.pixelColor(0, 0) == color;
}

// A window of some other program, in which the user works.
class OtherWindow : public QWidget {
public:
    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++clicks; }
};

class PaintCounter : public QObject {
public:
    int paints = 0;
    QRegion painted;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
            painted |= static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};

}  // namespace tendel::test
