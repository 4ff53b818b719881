#pragma once

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <QFile>
#include <QPoint>
#include <QTemporaryDir>

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

    explicit NestedCompositor(Kind kind)
        : kind_(kind), hosted_(QProcessEnvironment::systemEnvironment()) {
        for (const char* name :
             {"WAYLAND_DISPLAY", "WAYLAND_SOCKET", "XAUTHORITY", "SWAYSOCK", "I3SOCK"})
            hosted_.remove(name);
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            hosted_.insert(name, folder_.path());
        host_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp"});
        hosted_.insert("DISPLAY", ":" + host_.firstLine());
        bus_.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        hosted_.insert("DBUS_SESSION_BUS_ADDRESS", bus_.firstLine());
        start();
    }
    ~NestedCompositor() {
        stop();
        host_.terminate();  // so that it removes its socket and its lock
        host_.waitForFinished();
    }

    // Returns once clients can connect; the constructor has done it.
    void start() {
        const QString told = folder_.filePath("environment");
        const QString tell = QString("env > %1.new && mv %1.new %1").arg(told);
        QFile::remove(told);
        compositor_.setProcessEnvironment(hosted_);
        if (kind_ == Kind::mutter)  // its session ends with the X server that it is a client of
            compositor_.start("mutter", {"--wayland", "--nested", "--", "sh", "-c",
                                         tell + " && exec xprop -root -spy"});
        else
            startSway(tell);
        ASSERT_SOON(QFile::exists(told));

        session_ = hosted_;
        QFile file(told);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n'))
            for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SWAYSOCK"})
                if (line.startsWith(QString(name) + '='))
                    session_.insert(name, line.section('=', 1));
    }
    void stop() {
        clients_.clear();
        compositor_.terminate();
        if (!compositor_.waitForFinished(5000)) compositor_.end();
    }

    // What its session knows by that name: "WAYLAND_DISPLAY", "SWAYSOCK", "DISPLAY".
    QString environment(const QString& name) const { return session_.value(name); }
    // A client, which ends with the compositor.
    QProcess& run(const QString& program, const QStringList& arguments = {}) {
        QProcess& client = clients_.emplace_back();
        client.setProcessEnvironment(session_);
        client.start(program, arguments);
        EXPECT_TRUE(client.waitForStarted()) << program.toStdString();
        return client;
    }
    // Runs a client that ends by itself.
    void ask(const QString& commandLine) const { outputOf(commandLine, session_); }
    // The user's hands, in the words of xdotool.
    void input(const QString& arguments) const { outputOf("xdotool " + arguments, hosted_); }
    // Of its window, whose corner is that of the host's screen.
    int outputWidth() const { return kind_ == Kind::mutter ? 800 : 1024; }
    // As 0xrrggbb.
    std::uint32_t pixel(QPoint at) const {
        const QString crop("import -window root -crop 1x1+%1+%2 -depth 8 rgb:-");
        return outputOf(crop.arg(at.x()).arg(at.y()), hosted_).toHex().toUInt(nullptr, 16);
    }

private:
    static QByteArray outputOf(const QString& commandLine, const QProcessEnvironment& in) {
        test::Child process;
        process.setProcessEnvironment(in);
        process.startCommand(commandLine);
        EXPECT_SOON(process.state() == QProcess::NotRunning);
        EXPECT_EQ(process.exitCode(), 0) << commandLine.toStdString();
        return process.readAllStandardOutput();
    }

    void startSway(QString sessionCommand) {
        auto environment = hosted_;
        environment.insert("WLR_BACKENDS", kind_ == Kind::sway ? "x11" : "headless");
        environment.insert("WLR_HEADLESS_OUTPUTS", "2");
        environment.insert("WLR_LIBINPUT_NO_DEVICES", "1");
        environment.insert("WLR_RENDERER", "pixman");
        environment.insert("SWAYSOCK", folder_.filePath("sway"));
        compositor_.setProcessEnvironment(environment);
        if (geteuid() == 0) {  // for which sway refuses to run
            const passwd* user = getpwnam("nobody");
            ASSERT_TRUE(user);
            const uid_t id = user->pw_uid;
            const gid_t group = user->pw_gid;
            ASSERT_EQ(chown(folder_.path().toUtf8().constData(), id, group), 0);
            compositor_.setChildProcessModifier([id, group] {
                if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(id) != 0) _exit(126);
                test::Child::endWithTest();  // changing the user undoes it
            });
            sessionCommand.prepend("xhost +si:localuser:root && ");  // lets our X clients in
        }
        QFile config(folder_.filePath("config"));
        ASSERT_TRUE(config.open(QIODevice::WriteOnly));
        config.write(("default_border none\nexec " + sessionCommand + "\n").toUtf8());
        config.close();
        compositor_.start("sway", {"-c", config.fileName()});
    }

    Kind kind_;
    QTemporaryDir folder_;
    test::Child host_, bus_, compositor_;
    QProcessEnvironment hosted_;   // of the compositor
    QProcessEnvironment session_;  // of its clients
    std::list<test::Child> clients_;
};

}  // namespace tendel
