#pragma once

#include <QWidget>

#include <filesystem>

namespace tendel {

// Tells, in a window of its own, that the data were moved aside into a folder and a fresh store was
// begun. Deletes itself when it is answered.
class ResetNoticeWindow : public QWidget {
    Q_OBJECT
public:
    explicit ResetNoticeWindow(std::filesystem::path folder);

    // In the middle of the screen with the pointer, in front.
    void present();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showFolder();

    std::filesystem::path folder_;
};

// Shows a folder in the desktop's file manager, selected in its parent where that is supported.
void showInFileManager(const std::filesystem::path& folder);

}  // namespace tendel
