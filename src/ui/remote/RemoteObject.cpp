#include "ui/remote/RemoteObject.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QEvent>

#include <cmath>

#include <RemoteAdaptor.h>

#include "base/Log.h"

namespace tendel {

namespace {

constexpr auto path = "/app/tendel/Tendel";
constexpr auto interfaceName = "app.tendel.Tendel";

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

QStringList texts(const std::vector<std::string>& all) {
    QStringList list;
    for (const std::string& one : all)
        list << text(one);
    return list;
}

// Seconds since 1970, and 0 for none.
qlonglong time(const std::optional<Instant>& t) {
    return t ? std::chrono::floor<std::chrono::seconds>(*t).time_since_epoch().count() : 0;
}

QVariantMap properties(const RemoteState& state) {
    return {{"NextTitle", text(state.nextTitle)},
            {"NextTime", time(state.nextTime)},
            {"HoldReason", text(state.holdReason)},
            {"HoldUntil", time(state.holdUntil)},
            {"Waiting", static_cast<uint>(state.waiting)},
            {"FocusPhase", text(state.focusPhase)},
            {"FocusPaused", state.isFocusPaused},
            {"FocusRound", static_cast<uint>(state.focusRound)},
            {"FocusEndsAt", time(state.focusEndsAt)},
            {"FocusPausedRemaining", static_cast<uint>(std::ceil(state.focusPausedRemaining))},
            {"AlertTitle", text(state.alertTitle)},
            {"AlertAnswers", texts(state.alertAnswers)},
            {"BreakEndsAt", time(state.breakEndsAt)}};
}

QString errorName(RemoteRefusal::Kind kind) {
    const auto named = [](const char* error) {
        return QStringLiteral("app.tendel.Tendel.Error.") + QLatin1String(error);
    };
    switch (kind) {
        case RemoteRefusal::Kind::invalidArgument:
            return named("InvalidArgument");
        case RemoteRefusal::Kind::notPaused:
            return named("NotPaused");
        case RemoteRefusal::Kind::noAlert:
            return named("NoAlert");
        case RemoteRefusal::Kind::noFocusSession:
            return named("NoFocusSession");
        case RemoteRefusal::Kind::notPossibleNow:
            break;
    }
    return named("NotPossibleNow");
}

}  // namespace

RemoteObject::RemoteObject() {
    new RemoteAdaptor(this);
    set({});
}

void RemoteObject::serve(RemoteControl& control) {
    control_ = &control;
    subscriptions_.push_back(control.state().observe([this] { publish(); }));
    subscriptions_.push_back(control.alertShown.connect(
        [this](const std::string& title, const std::vector<std::string>& answers) {
            Q_EMIT AlertShown(text(title), texts(answers));
        }));
    subscriptions_.push_back(
        control.alertClosed.connect([this](const std::string& title, const std::string& outcome) {
            Q_EMIT AlertClosed(text(title), text(outcome));
        }));
    publish();
}

QVariantMap RemoteObject::set(const RemoteState& state) {
    QVariantMap changed;
    const QVariantMap all = properties(state);
    for (auto property = all.begin(); property != all.end(); ++property) {
        const QByteArray name = property.key().toLatin1();
        if (this->property(name) == property.value()) continue;
        setProperty(name, property.value());
        changed.insert(property.key(), property.value());
    }
    return changed;
}

// Qt announces no changes of properties on the bus.
void RemoteObject::publish() {
    const QVariantMap changed = set(*control_->state());
    if (changed.isEmpty()) return;
    auto announcement =
        QDBusMessage::createSignal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    announcement << interfaceName << changed << QStringList{};
    QDBusConnection::sessionBus().send(announcement);
}

template <class Request>
void RemoteObject::answer(const Request& request) {
    if (!control_) return refuse({.message = "Tendel has not started yet."});
    const auto refused = request(*control_);
    // Whoever reads a property next finds what the request changed.
    control_->refresh();
    if (refused) refuse(*refused);
}

void RemoteObject::refuse(const RemoteRefusal& refusal) {
    if (calledFromDBus())
        sendErrorReply(errorName(refusal.kind), text(refusal.message));
    else
        log(LogLevel::warning, "remote", refusal.message);
}

qlonglong RemoteObject::pauseEnd() const {
    return control_ ? time(control_->state()->holdUntil) : 0;
}

qlonglong RemoteObject::PauseFor(uint minutes) {
    answer([&](RemoteControl& control) { return control.pauseFor(minutes); });
    return pauseEnd();
}

void RemoteObject::PauseUntil(qlonglong time) {
    answer([&](RemoteControl& control) { return control.pauseUntil(time); });
}

qlonglong RemoteObject::PauseUntilTomorrow() {
    answer([](RemoteControl& control) { return control.pauseUntilTomorrow(); });
    return pauseEnd();
}

void RemoteObject::Resume() {
    answer([](RemoteControl& control) { return control.resume(); });
}

void RemoteObject::StartFocus() {
    answer([](RemoteControl& control) { return control.startFocus(); });
}

void RemoteObject::PauseFocus() {
    answer([](RemoteControl& control) { return control.pauseFocus(); });
}

void RemoteObject::ResumeFocus() {
    answer([](RemoteControl& control) { return control.resumeFocus(); });
}

void RemoteObject::SkipFocus() {
    answer([](RemoteControl& control) { return control.skipFocus(); });
}

void RemoteObject::ExtendFocus() {
    answer([](RemoteControl& control) { return control.extendFocus(); });
}

void RemoteObject::ExtendBreak() {
    answer([](RemoteControl& control) { return control.extendBreak(); });
}

void RemoteObject::StopFocus() {
    answer([](RemoteControl& control) { return control.stopFocus(); });
}

void RemoteObject::AnswerAlert(const QString& given) {
    answer([&](RemoteControl& control) { return control.answer(given.toStdString()); });
}

void RemoteObject::OpenWindow() {
    answer([](RemoteControl& control) {
        control.openWindow();
        return RemoteControl::Refused();
    });
}

void RemoteObject::OpenSection(const QString& section) {
    answer([&](RemoteControl& control) { return control.openSection(section.toStdString()); });
}

void RemoteObject::Quit() {
    // What QApplication::quit sends, which does not tell whether a window refused to close.
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    if (!quit.isAccepted())
        refuse({.message = "The window holds changes that are not saved, and asks about them."});
}

void RemoteObject::perform(const QString& action) {
    answer([&](RemoteControl& control) { return control.perform(action.toStdString()); });
}

}  // namespace tendel
