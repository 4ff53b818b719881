// tray_preview FILE: a picture of the icon in each state at each size, on a light and a dark panel.

#include <QApplication>
#include <QPainter>

#include <cstdio>

#include "ui/tray/TrayImage.h"

int main(int argc, char** argv) {
    using namespace tendel;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: tray_preview FILE\n");
        return 2;
    }
    const TrayImage images[] = {{},
                                {"", "7m"},
                                {"", "24m"},
                                {"", "1h 5m"},
                                {"", "12h 0m"},
                                {"target", "24m"},
                                {"cup.and.saucer", "5m"},
                                {"pause.circle", "12m"},
                                {"pause.circle", ""},
                                {"target", "Ready"},
                                {"target", ""},
                                {"cup.and.saucer", ""}};
    QImage picture(104 * 12, 820, QImage::Format_RGB32);
    QPainter painter(&picture);
    int top = 0;
    for (const QColor panel : {QColor(0xF2, 0xF2, 0xF2), QColor(0x1E, 0x1E, 0x22)}) {
        painter.fillRect(0, top, picture.width(), 410, panel);
        for (const int size : {16, 22, 24, 32, 44, 48, 64, 96}) {
            int left = 0;
            for (const TrayImage& image : images)
                painter.drawImage(left += size + 8, top + 4, image.drawn(size));
            top += size + 8;
        }
    }
    painter.end();
    return picture.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
