#include "platform/qt/DesktopPreferences.h"

#include <gtest/gtest.h>

#include "platform/bus/MockService.h"
#include "support/RunningLoop.h"

namespace tendel {
namespace {

using Groups = QMap<QString, QVariantMap>;
using Scheme = DesktopPreferences::ColorScheme;

constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto gnome = "org.gnome.desktop.interface";

class DesktopPreferencesTest : public testing::Test {
protected:
    DesktopPreferencesTest() {
        qDBusRegisterMetaType<Groups>();
        const Groups groups{{appearance, {{"color-scheme", 1U}, {"contrast", 1U}}},
                            {gnome,
                             {{"enable-animations", false},
                              {"font-name", "Noto Sans Semi-Bold 10.5"},
                              {"cursor-size", 24}}}};
        portal_.answer("ReadAll", {QVariant::fromValue(groups)});
    }
    void change(const char* group, const char* key, const QVariant& value) {
        portal_.emitSignal("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                           "SettingChanged",
                           {group, key, QVariant::fromValue(QDBusVariant(value))});
    }

    MockService portal_{qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                        "org.freedesktop.portal.Desktop"};
};

TEST_F(DesktopPreferencesTest, AreReadAndFollowed) {
    const DesktopPreferences preferences;
    EXPECT_FALSE(preferences.reducesMotion());
    ASSERT_SOON(preferences.reducesMotion());
    EXPECT_EQ(preferences.colorScheme(), Scheme::dark);
    EXPECT_TRUE(preferences.hasHighContrast());
    EXPECT_EQ(preferences.fontFamily(), QString("Noto Sans"));

    change(appearance, "color-scheme", "nonsense");
    change(gnome, "enable-animations", 1);
    change(appearance, "contrast", 0U);
    ASSERT_SOON(!preferences.hasHighContrast());
    EXPECT_EQ(preferences.colorScheme(), Scheme::dark) << "a value of another type";
    EXPECT_TRUE(preferences.reducesMotion()) << "a value of another type";
}

TEST_F(DesktopPreferencesTest, GiveWayToTheEnvironment) {
    qputenv("TENDEL_REDUCE_MOTION", "0");
    qputenv("TENDEL_COLOR_SCHEME", "light");
    const DesktopPreferences preferences;
    EXPECT_SOON(preferences.hasHighContrast());
    EXPECT_EQ(preferences.colorScheme(), Scheme::light);
    EXPECT_FALSE(preferences.reducesMotion());
    qunsetenv("TENDEL_REDUCE_MOTION");
    qunsetenv("TENDEL_COLOR_SCHEME");
}

}  // namespace
}  // namespace tendel
