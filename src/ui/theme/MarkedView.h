#pragma once

#include <QAccessible>
#include <QWidget>

#include <optional>
#include <vector>

namespace tendel {

// A picture made of marks: the bars of a chart, the alerts on a day's line. One stop for the Tab
// key; the pointer or the arrow keys (Home and End too) choose a mark, Escape lets go of it. Every
// mark is told to assistive programs as an element of its own. Who draws it derives from this.
class MarkedView : public QWidget {
    Q_OBJECT
public:
    struct Mark {
        QRectF area;       // where the pointer finds it, in the widget's coordinates
        QString sentence;  // all that it says, in words

        friend bool operator==(const Mark&, const Mark&) = default;
    };

    explicit MarkedView(const QString& name, QWidget* parent = nullptr);

    const std::vector<Mark>& marks() const { return marks_; }
    // The mark under the pointer, else the one that the keyboard is on.
    std::optional<int> current() const { return hovered_ ? hovered_ : walked_; }
    // Goes to a mark as the arrow keys do; one out of range is the nearest.
    void walkTo(int index);

Q_SIGNALS:
    // Another mark is current, or none, or its sentence or place is another.
    void currentChanged();

protected:
    // In reading order, also after a change of size. The keyboard comes in at `entry` (the last
    // mark when absent) and keeps its place in the row. Emits `currentChanged`, since what the
    // current mark says may be new.
    void setMarks(std::vector<Mark> marks, std::optional<int> entry = std::nullopt);
    // Whether the mark that the keyboard is on has a ring around it.
    bool showsFocus() const { return hasFocus() && isFocusShown_; }
    std::optional<int> walked() const { return walked_; }

    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    const Mark& at(int index) const { return marks_[static_cast<std::size_t>(index)]; }
    std::optional<int> markAt(QPointF point) const;
    void point(std::optional<QPointF> at);
    // Where the keyboard comes in or goes on.
    int place() const;
    void tell(QAccessible::Event what, std::optional<int> mark);

    std::vector<Mark> marks_;
    std::optional<QPointF> pointer_;
    std::optional<int> hovered_;
    std::optional<int> walked_;  // while it has the keyboard
    std::optional<int> lastWalked_;
    std::optional<int> entry_;
    bool isFocusShown_ = false;
};

}  // namespace tendel
