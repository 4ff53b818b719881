#pragma once

#include <QPointer>
#include <QWidget>

namespace tendel {

// Content on a panel over a window that waits for it: nothing beneath takes the pointer, and the
// Tab key stays inside. Closing deletes it and gives the keyboard back to where it was.
class Sheet : public QWidget {
    Q_OBJECT
public:
    // Covers `host`; the panel is `width` wide and as high as it needs to be or can be.
    Sheet(QWidget* host, int width);

    QWidget& panel() { return *panel_; }
    // Shows the sheet with the keyboard on `first`.
    void open(QWidget* first);
    // Where the keyboard goes on closing, if not where it was.
    void setFocusAfter(QWidget* widget) { focusAfter_ = widget; }
    void closeSheet();

Q_SIGNALS:
    void escapePressed();
    // Return where nothing else takes it, and Ctrl+Return everywhere.
    void returnPressed();
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool isNext) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent*) override {}
    void wheelEvent(QWheelEvent* event) override;

private:
    void place();

    QWidget* panel_;
    QPointer<QWidget> focusAfter_;
    int width_;
};

}  // namespace tendel
