#include "ui/alert/AlertShape.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

namespace tendel {
namespace {

// The window is cut to the region: a pixel too few cuts the picture, many too many are a black rim
// and take clicks.
TEST(AlertShapeTest, TheRegionIsThePixelsThatThePathTouches) {
    for (const AlertOutline& outline :
         {AlertOutline{388, 140, 14, 28}, AlertOutline{44, 34, 5, 17}, AlertOutline{200, 32, 0, 9},
          AlertOutline{236.4, 38.7, 6, 14}, AlertOutline{6, 4, 14, 28},
          AlertOutline{30, 2.5, 5, 17}, AlertOutline{-3, -2, 5, 5}, AlertOutline{}}) {
        constexpr int width = 468;
        constexpr int height = 200;
        QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        {
            QPainter painter(&picture);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.fillPath(alertPath(outline, width / 2.0), Qt::black);
        }
        const QRegion region = alertRegion(outline, width / 2.0);
        ASSERT_FALSE(region.isEmpty());
        int missing = 0;
        int spare = 0;
        int blackTop = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const bool isTouched = qAlpha(picture.pixel(x, y)) > 8;
                const bool isInside = region.contains(QPoint(x, y));
                missing += isTouched && !isInside;
                spare += isInside && !isTouched;
                blackTop += y == 0 && isTouched;
            }
        EXPECT_EQ(missing, 0) << outline.width;
        EXPECT_LE(spare, 2 * std::max(outline.height, 0.0)) << outline.width;
        // It meets the edge of the screen between its flared corners.
        EXPECT_GE(blackTop, outline.width - 2 * outline.topRadius - 2) << outline.width;
    }
}

}  // namespace
}  // namespace tendel
