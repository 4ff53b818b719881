#pragma once

#include <QWidget>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "ui/theme/Theme.h"

namespace tendel {

// Tells something in a window of its own, in front of others. Any answer closes it, and so do
// Escape and Return; it then deletes itself.
class NoticeWindow : public QWidget {
    Q_OBJECT
public:
    struct Answer {
        QString text;
        std::function<void()> run = [] {};
    };
    struct Notice {
        std::string symbol;
        Theme::Color color;
        QString title;
        QString text;
        std::vector<Answer> answers;  // from left to right; the last is what the keyboard starts on
    };

    explicit NoticeWindow(const Notice& notice);

    // In the middle of the screen with the pointer, in front.
    void present();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

// Tells that the data were moved aside into `folder` and a fresh store was begun.
NoticeWindow* makeResetNotice(const std::filesystem::path& folder);

// Tells why the program cannot start and waits until that was read. Runs Qt's event loop, which no
// one else may run yet; answers the exit code.
int showStartFailure(const std::string& reason);

// Shows a folder in the desktop's file manager, selected in its parent where that is supported.
void showInFileManager(const std::filesystem::path& folder);

}  // namespace tendel
