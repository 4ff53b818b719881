#include "platform/qt/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>

#include <algorithm>

#include "base/Log.h"

namespace tendel {

namespace {

constexpr auto notchVariable = "TENDEL_SIMULATE_NOTCH";

std::optional<Size> simulatedNotch() {
    const QString value = qEnvironmentVariable(notchVariable);
    if (value.isEmpty()) return std::nullopt;
    static const QRegularExpression form(QStringLiteral("^([1-9]\\d{0,3})x([1-9]\\d{0,2})$"));
    const auto match = form.match(value);
    if (!match.hasMatch()) {
        log(LogLevel::warning, "screens",
            std::string(notchVariable) + " is not of the form 200x32; no notch is simulated");
        return std::nullopt;
    }
    return Size{match.captured(1).toDouble(), match.captured(2).toDouble()};
}

ScreenInfo infoOf(const QScreen& screen, const std::optional<Size>& notch) {
    const QRect frame = screen.geometry();
    ScreenInfo info{.name = screen.name().toStdString(),
                    .frame = Rect{double(frame.x()), double(frame.y()), double(frame.width()),
                                  double(frame.height())},
                    // Without a panel at the top the alert touches the very edge.
                    .menuBarHeight = double(screen.availableGeometry().top() - frame.top())};
    if (notch) {
        const double side = std::max((info.frame.width - notch->width) / 2, 0.0);
        info.safeAreaTop = notch->height;
        info.auxiliaryTopLeftWidth = side;
        info.auxiliaryTopRightWidth = side;
    }
    return info;
}

}  // namespace

QtScreens::QtScreens() : simulatedNotch_(simulatedNotch()) {
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        noteChange();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &QtScreens::noteChange);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &QtScreens::noteChange);
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
}

std::vector<ScreenInfo> QtScreens::all() const {
    std::vector<ScreenInfo> all;
    // Qt lists the primary screen first.
    for (const QScreen* screen : QGuiApplication::screens())
        all.push_back(infoOf(*screen, notchOf(*screen)));
    return all;
}

std::optional<Size> QtScreens::notchOf(const QScreen& screen) const {
    if (simulatedNotch_ || !cutout_) return simulatedNotch_;
    const QSizeF size = screen.geometry().size();
    return housingOn(*cutout_, screen.name().toStdString(), {size.width(), size.height()});
}

std::optional<std::pair<double, double>> QtScreens::pointer() const {
    const QPoint position = QCursor::pos();
    return std::pair<double, double>(position.x(), position.y());
}

void QtScreens::watch(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, &QtScreens::noteChange);
    connect(screen, &QScreen::availableGeometryChanged, this, &QtScreens::noteChange);
}

// One rearrangement comes as several signals, some of them while a screen is half gone.
void QtScreens::noteChange() {
    if (isChangePending_) return;
    isChangePending_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isChangePending_ = false;
            changed.emit();
        },
        Qt::QueuedConnection);
}

}  // namespace tendel
