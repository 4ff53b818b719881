#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace tendel {

// What the user chose for the whole desktop, as the settings portal tells it. It is asked without
// waiting, so the first values are the defaults; where there is no portal they remain. For
// development TENDEL_REDUCE_MOTION=1 (or 0) and TENDEL_COLOR_SCHEME=dark (or light) win. Main
// thread only.
class DesktopPreferences : public QObject {
    Q_OBJECT
public:
    enum class ColorScheme { noPreference, dark, light };

    DesktopPreferences();

    bool reducesMotion() const { return reducesMotion_; }
    ColorScheme colorScheme() const { return colorScheme_; }
    bool hasHighContrast() const { return hasHighContrast_; }
    // The family of the interface font; empty when it is not known.
    QString fontFamily() const { return fontFamily_; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void portalSettingChanged(const QDBusMessage& message);

private:
    void readAll();
    bool apply(const QString& group, const QString& key, const QVariant& value);

    bool reducesMotion_ = false;
    ColorScheme colorScheme_ = ColorScheme::noPreference;
    bool hasHighContrast_ = false;
    QString fontFamily_;
};

}  // namespace tendel
