#include "platform/qt/DesktopPreferences.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>

#include "support/RunningLoop.h"

namespace tendel {

using Groups = QMap<QString, QVariantMap>;

// The desktop's side of the settings portal, with a connection of its own.
class SettingsPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    SettingsPortal() : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "portal")) {
        qDBusRegisterMetaType<Groups>();
        bus_.registerObject(path, this, QDBusConnection::ExportAllSlots);
        bus_.registerService("org.freedesktop.portal.Desktop");
    }
    ~SettingsPortal() override { QDBusConnection::disconnectFromBus("portal"); }

    void change(const char* group, const char* key, const QVariant& value) {
        auto message =
            QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        message << group << key << QVariant::fromValue(QDBusVariant(value));
        bus_.send(message);
    }

    Groups groups;

public Q_SLOTS:
    Groups ReadAll(const QStringList&) { return groups; }

private:
    static constexpr auto path = "/org/freedesktop/portal/desktop";
    QDBusConnection bus_;
};

namespace {

constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto gnome = "org.gnome.desktop.interface";
using Scheme = DesktopPreferences::ColorScheme;

class DesktopPreferencesTest : public testing::Test {
protected:
    DesktopPreferencesTest() {
        portal_.groups = {{appearance, {{"color-scheme", 1U}, {"contrast", 1U}}},
                          {gnome,
                           {{"enable-animations", false},
                            {"font-name", "Noto Sans Semi-Bold 10.5"},
                            {"cursor-size", 24}}}};
    }
    SettingsPortal portal_;
};

TEST_F(DesktopPreferencesTest, AreReadAndFollowed) {
    const DesktopPreferences preferences;
    EXPECT_FALSE(preferences.reducesMotion());
    ASSERT_TRUE(test::runUntil([&] { return preferences.reducesMotion(); }));
    EXPECT_EQ(preferences.colorScheme(), Scheme::dark);
    EXPECT_TRUE(preferences.hasHighContrast());
    EXPECT_EQ(preferences.fontFamily(), QString("Noto Sans"));

    portal_.change(appearance, "color-scheme", "nonsense");
    portal_.change(gnome, "enable-animations", 1);
    portal_.change(appearance, "contrast", 0U);
    ASSERT_TRUE(test::runUntil([&] { return !preferences.hasHighContrast(); }));
    EXPECT_EQ(preferences.colorScheme(), Scheme::dark) << "a value of another type";
    EXPECT_TRUE(preferences.reducesMotion()) << "a value of another type";
}

TEST_F(DesktopPreferencesTest, GiveWayToTheEnvironment) {
    qputenv("TENDEL_REDUCE_MOTION", "0");
    qputenv("TENDEL_COLOR_SCHEME", "light");
    const DesktopPreferences preferences;
    EXPECT_TRUE(test::runUntil([&] { return preferences.hasHighContrast(); }));
    EXPECT_EQ(preferences.colorScheme(), Scheme::light);
    EXPECT_FALSE(preferences.reducesMotion());
    qunsetenv("TENDEL_REDUCE_MOTION");
    qunsetenv("TENDEL_COLOR_SCHEME");
}

}  // namespace
}  // namespace tendel

#include "DesktopPreferences_test.moc"
