#include "NestedCompositor.h"

#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QFile>

#include <csignal>

namespace tendel {

namespace {

// What a program prints, which ends by itself.
QByteArray outputOf(const QString& commandLine, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.startCommand(commandLine);
    EXPECT_TRUE(test::runUntil([&] { return process.state() == QProcess::NotRunning; }));
    EXPECT_EQ(process.exitCode(), 0) << commandLine.toStdString();
    return process.readAllStandardOutput();
}

// However the test ends, its servers do.
void endWithTest() {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

// The line by which a server tells that it is ready.
QString firstLine(QProcess& server, const QString& program, const QStringList& arguments) {
    server.setChildProcessModifier(endWithTest);
    server.start(program, arguments);
    EXPECT_TRUE(test::runUntil([&] { return server.canReadLine(); })) << program.toStdString();
    return QString::fromUtf8(server.readLine()).trimmed();
}

void end(QProcess& process) {
    process.terminate();
    if (!process.waitForFinished(5000)) process.kill();
    process.waitForFinished();
}

}  // namespace

NestedCompositor::NestedCompositor(Kind kind)
    : kind_(kind), hosted_(QProcessEnvironment::systemEnvironment()) {
    for (const char* name :
         {"WAYLAND_DISPLAY", "WAYLAND_SOCKET", "XAUTHORITY", "SWAYSOCK", "I3SOCK"})
        hosted_.remove(name);
    hosted_.insert("HOME", folder_.path());
    hosted_.insert("XDG_RUNTIME_DIR", folder_.path());
    hosted_.insert("XDG_CONFIG_HOME", folder_.path());
    hosted_.insert("DISPLAY", ":" + firstLine(host_, "Xvfb",
                                              {"-displayfd", "1", "-screen", "0", "1280x800x24",
                                               "-nolisten", "tcp"}));
    hosted_.insert("DBUS_SESSION_BUS_ADDRESS",
                   firstLine(bus_, "dbus-daemon", {"--session", "--nofork", "--print-address=1"}));
    start();
}

NestedCompositor::~NestedCompositor() {
    stop();
    end(bus_);
    end(host_);
}

void NestedCompositor::start() {
    const QString told = folder_.filePath("environment");
    const QString tell = QStringLiteral("env > %1.new && mv %1.new %1").arg(told);
    QFile::remove(told);
    compositor_.setProcessEnvironment(hosted_);
    compositor_.setChildProcessModifier(endWithTest);
    if (kind_ == Kind::mutter)  // its session ends with the X server that it is a client of
        compositor_.start("mutter", {"--wayland", "--nested", "--", "sh", "-c",
                                     tell + " && exec xprop -root -spy"});
    else
        startSway(tell);
    ASSERT_TRUE(test::runUntil([&] { return QFile::exists(told); }));

    session_ = hosted_;
    QFile file(told);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto lines = QString::fromUtf8(file.readAll()).split('\n');
    for (const QString& line : lines)
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SWAYSOCK"})
            if (line.startsWith(QString(name) + '=')) session_.insert(name, line.section('=', 1));
}

void NestedCompositor::startSway(const QString& sessionCommand) {
    auto environment = hosted_;
    environment.insert("WLR_BACKENDS", kind_ == Kind::sway ? "x11" : "headless");
    environment.insert("WLR_HEADLESS_OUTPUTS", "2");
    environment.insert("WLR_LIBINPUT_NO_DEVICES", "1");
    environment.insert("WLR_RENDERER", "pixman");
    environment.insert("SWAYSOCK", folder_.filePath("sway"));
    compositor_.setProcessEnvironment(environment);

    QString command = sessionCommand;
    if (geteuid() == 0) {  // for which sway refuses to run
        const passwd* user = getpwnam("nobody");
        ASSERT_TRUE(user);
        const uid_t id = user->pw_uid;
        const gid_t group = user->pw_gid;
        ASSERT_EQ(chown(folder_.path().toUtf8().constData(), id, group), 0);
        compositor_.setChildProcessModifier([id, group] {
            if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(id) != 0) _exit(126);
            endWithTest();  // changing the user undoes it
        });
        command.prepend("xhost +si:localuser:root && ");  // lets our X clients in
    }
    QFile config(folder_.filePath("config"));
    ASSERT_TRUE(config.open(QIODevice::WriteOnly));
    config.write(("default_border none\nexec " + command + "\n").toUtf8());
    config.close();
    compositor_.start("sway", {"-c", config.fileName()});
}

void NestedCompositor::stop() {
    for (QProcess& client : clients_)
        end(client);
    clients_.clear();
    end(compositor_);
}

QProcess& NestedCompositor::run(const QString& program, const QStringList& arguments) {
    QProcess& client = clients_.emplace_back();
    client.setProcessEnvironment(session_);
    client.start(program, arguments);
    EXPECT_TRUE(client.waitForStarted()) << program.toStdString();
    return client;
}

QString NestedCompositor::ask(const QString& commandLine) const {
    return QString::fromUtf8(outputOf(commandLine, session_));
}

void NestedCompositor::input(const QString& arguments) const {
    outputOf("xdotool " + arguments, hosted_);
}

std::uint32_t NestedCompositor::pixel(QPoint at) const {
    const auto crop = QStringLiteral("import -window root -crop 1x1+%1+%2 -depth 8 rgb:-");
    return outputOf(crop.arg(at.x()).arg(at.y()), hosted_).toHex().toUInt(nullptr, 16);
}

}  // namespace tendel
