#include "ui/tray/TrayImage.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace tendel {

namespace {

double luminance(QColor color) {
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// Between the brightest and the darkest pixel of a picture, by WCAG 2.
double contrast(const QImage& image) {
    double least = 1, most = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            least = std::min(least, luminance(image.pixelColor(x, y)));
            most = std::max(most, luminance(image.pixelColor(x, y)));
        }
    return (most + 0.05) / (least + 0.05);
}

}  // namespace

TEST(TrayImage, DrawsTheTimeWhereItCanBeRead) {
    const struct {
        const char* symbol;
        const char* time;
        int firstSize;
    } cases[] = {{"", "7m", 16},
                 {"", "24m", 22},
                 {"", "12h 0m", 22},
                 {"target", "24m", 22},
                 {"target", "Ready", 32}};
    for (const auto& [symbol, time, firstSize] : cases)
        for (const int size : {16, 22, 24, 32, 44, 48, 64, 96}) {
            const TrayImage image{symbol, QString::fromUtf8(time)};
            EXPECT_EQ(image.drawn(size) != TrayImage{symbol}.drawn(size), size >= firstSize)
                << time << " at " << size;
        }
}

TEST(TrayImage, StandsOutFromEveryPanel) {
    for (const char* symbol : {"", "target", "cup.and.saucer", "pause.circle"})
        for (const char* time : {"", "24m"})
            for (const int size : {22, 48})
                for (const QColor panel : {QColor(Qt::white), QColor(Qt::black)}) {
                    QImage seen(size, size, QImage::Format_RGB32);
                    seen.fill(panel);
                    QPainter(&seen).drawImage(0, 0, TrayImage{symbol, time}.drawn(size));
                    EXPECT_GE(contrast(seen), 3) << symbol << " " << time << " at " << size;
                }
}

TEST(TrayImage, IconDrawsThePixelsThatAScaleAsksFor) {
    const TrayImage image{"target", "24m"};
    QImage canvas(44, 44, QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(2);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    image.icon().paint(&painter, QRect(0, 0, 22, 22));
    painter.end();
    canvas.setDevicePixelRatio(1);
    EXPECT_EQ(canvas, image.drawn(44));
}

}  // namespace tendel
