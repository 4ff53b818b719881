#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <functional>

// For tests on the real event loop: what a condition says is so, or comes to be within ten seconds.
#define EXPECT_SOON(condition) \
    EXPECT_TRUE(::tendel::test::runUntil([&] { return static_cast<bool>(condition); }))
#define ASSERT_SOON(condition) \
    ASSERT_TRUE(::tendel::test::runUntil([&] { return static_cast<bool>(condition); }))

namespace tendel::test {

// Lets the program run until `isDone`, for so many milliseconds at most; whether it came to that.
inline bool runUntil(const std::function<bool()>& isDone, int milliseconds = 10000) {
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(milliseconds);
    QTimer look;  // some of what is waited for is no event
    look.start(10);
    while (!isDone() && limit.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isDone();
}

inline void runFor(int milliseconds) {
    runUntil([] { return false; }, milliseconds);
}

// A program without windows, for as long as a test lasts.
class Application {
    int argumentCount_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{argumentCount_, arguments_};
};

// A program of the test's, which does not outlive it.
class Child : public QProcess {
public:
    Child() {
        setChildProcessModifier(endWithTest);
        setStandardErrorFile(nullDevice());
    }
    ~Child() override { end(); }

    static void endWithTest() { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }
    void end() {
        kill();
        waitForFinished();
    }
    void signal(int number) { ::kill(static_cast<pid_t>(processId()), number); }
    // The line by which a server tells that it is ready.
    QString firstLine() {
        while (!canReadLine() && waitForReadyRead()) {
        }
        return QString::fromUtf8(readLine().trimmed());
    }
};

// How many a process has, as "/proc/self/fd" and "/proc/self/task" tell.
inline qsizetype entries(const char* folder) {
    return QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
}

}  // namespace tendel::test
