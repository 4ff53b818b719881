#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <list>
#include <ostream>

#include "support/RunningLoop.h"

namespace tendel {

enum class ServerKind { pulseAudio, pipeWire };

inline void PrintTo(ServerKind kind, std::ostream* out) {
    *out << (kind == ServerKind::pulseAudio ? "PulseAudio" : "PipeWire");
}

// A real audio server in folders of its own, with an output "nullsink" and an input "nullsource";
// this process's libpulse finds it. Needs a QCoreApplication.
class AudioServer {
public:
    explicit AudioServer(ServerKind kind) : kind_(kind) {
        // The servers look for a bus, and starting one on demand would be slow.
        qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + folder_.filePath("bus")).toUtf8());
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            qputenv(name, folder_.path().toUtf8());
        for (const char* name :
             {"DISPLAY", "PULSE_SERVER", "PULSE_RUNTIME_PATH", "PIPEWIRE_REMOTE"})
            qunsetenv(name);
    }
    ~AudioServer() { kill(); }

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
        run("dbus-daemon",
            {"--session", "--nofork", "--address=unix:path=" + folder_.filePath("bus")});
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

    void kill() {
        for (auto& process : processes_) {
            process.kill();
            process.waitForFinished();
        }
        processes_.clear();
    }

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
        QProcess& process = processes_.emplace_back();
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
    }

    // Until somebody listens; a socket's file may be left of an earlier server.
    void waitForSocket(const QString& name) const {
        const QByteArray path = file(name).toUtf8();
        test::runUntil([&] {
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            path.toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
            const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
            const bool isOpen =
                ::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
            ::close(descriptor);
            return isOpen;
        });
    }

    ServerKind kind_;
    QTemporaryDir folder_;
    std::list<QProcess> processes_;
};

}  // namespace tendel
