#include "ui/theme/MarkedView.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

#include "ui/theme/Accessible.h"
#include "ui/theme/PaintedButton.h"

namespace tendel {

namespace {

// One mark, as assistive programs see it. Outlives the mark that it was made for, and is then not
// valid.
class AccessibleMark : public QAccessibleInterface {
public:
    AccessibleMark(MarkedView* view, int index) : view_(view), index_(index) {}

    bool isValid() const override { return view_ && index_ < count(); }
    QObject* object() const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? mark().sentence : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect area = mark().area.toAlignedRect();
        return {view_->mapToGlobal(area.topLeft()), area.size()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.focusable = true;
        state.selectable = true;
        state.invisible = !view_->isVisible();
        state.selected = view_->current() == index_;
        state.focused = state.selected && view_->hasFocus();
        return state;
    }

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(view_);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    int index() const { return index_; }

private:
    int count() const { return static_cast<int>(view_->marks().size()); }
    const MarkedView::Mark& mark() const {
        return view_->marks()[static_cast<std::size_t>(index_)];
    }

    QPointer<MarkedView> view_;
    int index_;
};

class AccessibleMarkedView : public QAccessibleWidget {
public:
    explicit AccessibleMarkedView(MarkedView* view) : QAccessibleWidget(view, QAccessible::List) {}
    ~AccessibleMarkedView() override {
        for (const QAccessible::Id id : marks_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return static_cast<int>(view().marks().size()); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        while (std::ssize(marks_) <= index)
            marks_.push_back(QAccessible::registerAccessibleInterface(
                new AccessibleMark(&view(), static_cast<int>(marks_.size()))));
        return QAccessible::accessibleInterface(marks_[static_cast<std::size_t>(index)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* mark = dynamic_cast<const AccessibleMark*>(child);
        return mark && mark->parent() == this ? mark->index() : -1;
    }
    QAccessibleInterface* focusChild() const override {
        return view().hasFocus() && view().current() ? child(*view().current()) : nullptr;
    }

private:
    MarkedView& view() const { return *static_cast<MarkedView*>(object()); }

    mutable std::vector<QAccessible::Id> marks_;
};

}  // namespace

MarkedView::MarkedView(const QString& name, QWidget* parent) : QWidget(parent) {
    tellThrough<MarkedView, AccessibleMarkedView>();
    setAccessibleName(name);
    setMouseTracking(true);
}

void MarkedView::setMarks(std::vector<Mark> marks, std::optional<int> entry) {
    entry_ = entry;
    if (marks == marks_) return;
    const bool isOtherNumber = marks.size() != marks_.size();
    const QString saidBefore = walked_ ? at(*walked_).sentence : QString();
    marks_ = std::move(marks);
    setFocusPolicy(marks_.empty() ? Qt::NoFocus : Qt::StrongFocus);
    const int last = static_cast<int>(marks_.size()) - 1;
    if (walked_) walked_ = last < 0 ? std::nullopt : std::optional(std::min(*walked_, last));
    hovered_ = pointer_ ? markAt(*pointer_) : std::nullopt;
    if (isOtherNumber) tell(QAccessible::ObjectReorder, {});
    if (walked_ && at(*walked_).sentence != saidBefore) tell(QAccessible::NameChanged, walked_);
    update();
    Q_EMIT currentChanged();
}

void MarkedView::walkTo(int index) {
    if (marks_.empty()) return;
    pointer_.reset();
    hovered_.reset();
    walked_ = std::clamp(index, 0, static_cast<int>(marks_.size()) - 1);
    lastWalked_ = walked_;
    update();
    Q_EMIT currentChanged();
    tell(QAccessible::Focus, walked_);
}

void MarkedView::tell(QAccessible::Event what, std::optional<int> mark) {
    QAccessibleEvent event(this, what);
    if (mark) event.setChild(*mark);
    QAccessible::updateAccessibility(&event);
}

std::optional<int> MarkedView::markAt(QPointF point) const {
    const auto found =
        std::ranges::find_if(marks_, [&](const Mark& mark) { return mark.area.contains(point); });
    if (found == marks_.end()) return std::nullopt;
    return static_cast<int>(found - marks_.begin());
}

void MarkedView::point(std::optional<QPointF> at) {
    pointer_ = at;
    const auto found = at ? markAt(*at) : std::nullopt;
    if (found == hovered_) return;
    hovered_ = found;
    update();
    Q_EMIT currentChanged();
}

void MarkedView::mouseMoveEvent(QMouseEvent* event) {
    point(event->position());
}

void MarkedView::leaveEvent(QEvent*) {
    point(std::nullopt);
}

void MarkedView::mousePressEvent(QMouseEvent* event) {
    point(event->position());
    if (hovered_) lastWalked_ = walked_ = hovered_;
}

void MarkedView::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(marks_.size()) - 1;
    const int here = walked_.value_or(place());
    const int onwards = isRightToLeft() ? -1 : 1;
    isFocusShown_ = true;
    switch (event->key()) {
        case Qt::Key_Right:
            return walkTo(walked_ ? here + onwards : here);
        case Qt::Key_Left:
            return walkTo(walked_ ? here - onwards : here);
        case Qt::Key_Home:
            return walkTo(0);
        case Qt::Key_End:
            return walkTo(last);
        case Qt::Key_Escape:
            if (!current()) break;
            walked_.reset();
            hovered_.reset();
            update();
            Q_EMIT currentChanged();
            return;
        default:
            break;
    }
    QWidget::keyPressEvent(event);
}

int MarkedView::place() const {
    return lastWalked_.value_or(entry_.value_or(static_cast<int>(marks_.size()) - 1));
}

void MarkedView::focusInEvent(QFocusEvent* event) {
    // The window coming back changes nothing about how the focus got here.
    if (event->reason() != Qt::ActiveWindowFocusReason)
        isFocusShown_ = isShownFocus(event->reason());
    if (isFocusShown_) walkTo(place());
}

void MarkedView::focusOutEvent(QFocusEvent*) {
    walked_.reset();
    update();
    Q_EMIT currentChanged();
}

}  // namespace tendel
