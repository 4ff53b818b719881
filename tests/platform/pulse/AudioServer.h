#pragma once

#include <QTemporaryDir>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <list>

#include "platform/linux/LinuxEventLoop.h"
#include "support/RunningLoop.h"

namespace tendel {

enum class ServerKind { pulseAudio, pipeWire };

inline std::string nameOf(const testing::TestParamInfo<ServerKind>& server) {
    return server.param == ServerKind::pulseAudio ? "PulseAudio" : "PipeWire";
}
inline const auto everyServer = testing::Values(ServerKind::pulseAudio, ServerKind::pipeWire);

// A real audio server in folders of its own, with an output "nullsink" and an input "nullsource";
// this process's libpulse finds it. Needs a QCoreApplication.
class AudioServer {
public:
    explicit AudioServer(ServerKind kind) : kind_(kind) {
        // The servers look for a bus, and starting one on demand would be slow.
        qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + file("bus")).toUtf8());
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            qputenv(name, folder_.path().toUtf8());
        for (const char* name :
             {"DISPLAY", "PULSE_SERVER", "PULSE_RUNTIME_PATH", "PIPEWIRE_REMOTE"})
            qunsetenv(name);
    }

    // Returns before the server listens when it is PulseAudio, else when it has its devices.
    void start() {
        if (kind_ == ServerKind::pulseAudio) {
            // What the output would take back has been recorded already: it must not.
            run("pulseaudio",
                {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                 "--high-priority=no", "--load=module-null-sink sink_name=nullsink norewinds=1",
                 "--load=module-null-source source_name=nullsource",
                 "--load=module-native-protocol-unix"});
            return;
        }
        run("dbus-daemon", {"--session", "--nofork", "--address=unix:path=" + file("bus")});
        waitForSocket("bus");
        run("pipewire", {});
        waitForSocket("pipewire-0");  // the others end at once when nobody listens there
        run("wireplumber", {});
        run("pipewire-pulse", {});
        const QStringList load{"load-module", "module-null-sink"};
        ask(load + QStringList{"sink_name=nullsink"});
        ask(load + QStringList{"media.class=Audio/Source/Virtual", "sink_name=nullsource",
                               "channel_map=front-left,front-right"});
        // The session manager is at work once it has chosen a source.
        test::runUntil([&] { return ask({"get-default-source"}) == "nullsource\n"; });
    }
    void kill() { processes_.clear(); }

    // What `pactl` prints, as soon as there is a server to answer it.
    static QByteArray ask(const QStringList& arguments) {
        QProcess pactl;
        bool isAnswered = false;  // once: it may be asked to do something
        test::runUntil([&] {
            if (isAnswered) return true;
            pactl.start("pactl", arguments);
            pactl.waitForFinished();
            return isAnswered = pactl.exitCode() == 0;
        });
        return pactl.readAllStandardOutput();
    }

    QString file(const QString& name) const { return folder_.filePath(name); }

private:
    void run(const QString& program, const QStringList& arguments) {
        test::Child& process = processes_.emplace_back();
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(program, arguments);
    }

    // Until somebody listens; a socket's file may be left of an earlier server.
    void waitForSocket(const QString& name) const {
        sockaddr_un address{AF_UNIX, {}};
        file(name).toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
        test::runUntil([&] {
            const FileDescriptor client(::socket(AF_UNIX, SOCK_STREAM, 0));
            return ::connect(client.value(), reinterpret_cast<sockaddr*>(&address),
                             sizeof address) == 0;
        });
    }

    ServerKind kind_;
    QTemporaryDir folder_;
    std::list<test::Child> processes_;
};

// With a server that is not started yet.
class AudioServerTest : public testing::TestWithParam<ServerKind> {
    test::Application application_;

protected:
    AudioServer server_{GetParam()};
    LinuxEventLoop loop_;
};

}  // namespace tendel
