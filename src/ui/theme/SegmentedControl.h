#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QAbstractButton;

namespace tendel {

// A choice of one among a few, all visible. One stop for the Tab key; the arrow keys choose.
class SegmentedControl : public QWidget {
    Q_OBJECT
public:
    SegmentedControl(const QString& name, const QStringList& choices, QWidget* parent = nullptr);

    int current() const { return current_; }
    // Without `chosen`.
    void setCurrent(int index);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    // A person chose another one.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void choose(int index, Qt::FocusReason reason);

    std::vector<QAbstractButton*> segments_;
    int current_ = 0;
};

}  // namespace tendel
