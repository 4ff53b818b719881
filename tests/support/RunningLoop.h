#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <functional>

// For tests on the real event loop.
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

}  // namespace tendel::test
