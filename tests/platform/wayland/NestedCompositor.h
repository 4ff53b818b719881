#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPoint>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdint>
#include <list>

#include "platform/linux/LinuxEventLoop.h"
#include "support/RunningLoop.h"

namespace tendel {

// A test with the program's own event loop.
class EventLoopTest : public testing::Test {
    test::Application application_;

protected:
    LinuxEventLoop loop_;
};

// A real Wayland compositor with an X server for its clients, in a window of an X server without a
// display: what is typed and pointed at there reaches it as from a keyboard and a mouse, and its
// picture can be looked at. Needs a QCoreApplication.
class NestedCompositor {
public:
    enum class Kind { sway, swayWithoutWindow, mutter };

    explicit NestedCompositor(Kind kind);
    ~NestedCompositor();

    // Returns once clients can connect; the constructor has done it.
    void start();
    void stop();

    // What its session knows by that name: "WAYLAND_DISPLAY", "SWAYSOCK", "DISPLAY".
    QString environment(const QString& name) const { return session_.value(name); }
    // A client, which ends with the compositor.
    QProcess& run(const QString& program, const QStringList& arguments = {});
    // What a client prints, and that it ends well is checked.
    QString ask(const QString& commandLine) const;
    // The user's hands, in the words of xdotool.
    void input(const QString& arguments) const;
    // Of its window, whose corner is that of the host's screen.
    int outputWidth() const { return kind_ == Kind::mutter ? 800 : 1024; }
    // As 0xrrggbb.
    std::uint32_t pixel(QPoint at) const;

private:
    void startSway(const QString& sessionCommand);

    Kind kind_;
    QTemporaryDir folder_;
    QProcess host_;
    QProcess bus_;
    QProcess compositor_;
    QProcessEnvironment hosted_;   // of the compositor
    QProcessEnvironment session_;  // of its clients
    std::list<QProcess> clients_;
};

}  // namespace tendel
