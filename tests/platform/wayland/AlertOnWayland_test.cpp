#include "NestedCompositor.h"

namespace tendel {
namespace {

class AlertOnWaylandTest : public EventLoopTest,
                           public testing::WithParamInterface<NestedCompositor::Kind> {};

TEST_P(AlertOnWaylandTest, LiesOverAFullScreenWindowThatKeepsTheKeyboard) {
    constexpr std::uint32_t windowColor = 0xff00ff;
    constexpr int aKey = 30;  // as the kernel counts them
    constexpr int bKey = 48;
    NestedCompositor compositor(GetParam());

    QProcess& window = compositor.run(WAYLAND_WINDOW, {"--full-screen"});
    QString told;
    QObject::connect(&window, &QProcess::readyReadStandardOutput,
                     [&] { told += QString::fromUtf8(window.readAllStandardOutput()); });
    ASSERT_SOON(told.contains("focused"));
    const QPoint besides(20, 300);
    const QPoint inAlert(compositor.outputWidth() / 2, 20);
    ASSERT_SOON(compositor.pixel(inAlert) == windowColor);
    compositor.input("mousemove 30 310");
    compositor.input("key a");
    ASSERT_SOON(told.contains(QStringLiteral("key %1").arg(aKey)));

    QProcess& alert = compositor.run(ALERT_PREVIEW, {"--phase", "expanded"});
    ASSERT_SOON(compositor.pixel(inAlert) != windowColor);
    EXPECT_EQ(compositor.pixel(besides), windowColor);
    compositor.input("key b");
    EXPECT_SOON(told.contains(QStringLiteral("key %1").arg(bKey)));
    EXPECT_FALSE(told.contains("unfocused")) << told.toStdString();

    alert.kill();
    EXPECT_SOON(compositor.pixel(inAlert) == windowColor);
}

INSTANTIATE_TEST_SUITE_P(, AlertOnWaylandTest,
                         testing::Values(NestedCompositor::Kind::sway,
                                         NestedCompositor::Kind::mutter),
                         [](const auto& kind) {
                             return kind.param == NestedCompositor::Kind::sway ? "sway" : "mutter";
                         });

}  // namespace
}  // namespace tendel
