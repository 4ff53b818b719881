#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <sys/prctl.h>

#include <csignal>

#include "support/RunningLoop.h"

namespace tendel {

// A program of the test's, which does not outlive it.
class Child : public QProcess {
public:
    Child() {
        setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        setStandardErrorFile(QProcess::nullDevice());
    }
    ~Child() override { end(); }
    void end() {
        kill();
        waitForFinished();
    }
};

// A message bus that can be killed and started anew at the same address.
class PrivateBus {
public:
    explicit PrivateBus(bool isStarted = true) {
        if (isStarted) start();
    }

    void start() {
        daemon_.start("dbus-daemon",
                      {"--session", "--nofork", "--print-address=1", "--address=" + address()});
        while (!daemon_.canReadLine() && daemon_.waitForReadyRead()) {
        }
        addressWithIdentity_ = QString::fromUtf8(daemon_.readLine().trimmed());
    }
    void kill() { daemon_.end(); }
    void signal(int number) { ::kill(static_cast<pid_t>(daemon_.processId()), number); }

    QString address() const { return "unix:path=" + folder_.path() + "/bus"; }
    // What the environment of a login would say.
    QString addressWithIdentity() const { return addressWithIdentity_; }

private:
    QTemporaryDir folder_;
    Child daemon_;
    QString addressWithIdentity_;
};

}  // namespace tendel
