#include "ui/window/PickerGrid.h"

#include <QKeyEvent>
#include <QPainter>

#include "ui/theme/Icons.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {
constexpr int cellHeight = 34;
constexpr int gap = 2;  // the cells' own space for the focus ring comes on top
}  // namespace

class PickerGrid::CellButton : public PaintedButton {
public:
    CellButton(Cell cell, QWidget* parent) : PaintedButton(parent), cell_(std::move(cell)) {
        setCheckable(true);
        setAutoExclusive(true);
        setAccessibleName(cell_.name);
        if (cell_.label.isEmpty()) setToolTip(cell_.name);
    }

    void setKind(ReminderKind kind) {
        kind_ = kind;
        update();
    }

    QSize sizeHint() const override { return {cellHeight, cellHeight}; }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::instance();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor accent = theme.accent(kind_);
        QColor fill = theme.color(Theme::Color::text);
        fill.setAlphaF(isHovered() ? 0.1F : cell_.label.isEmpty() ? 0.0F : 0.05F);
        if (isChecked()) fill = accent;
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(shape(), Theme::controlRadius, Theme::controlRadius);
        if (showsFocus()) drawFocusRing(painter, shape(), Theme::controlRadius);

        const QColor ink = isChecked() ? Theme::textOn(accent) : theme.color(Theme::Color::text);
        constexpr double size = 18;
        QRectF symbolBox(0, 0, size, size);
        symbolBox.moveCenter(shape().center());
        if (cell_.label.isEmpty()) {
            const bool isStrong = isChecked() || isHovered();
            return icons::draw(painter, cell_.symbol, symbolBox,
                               isStrong ? ink : theme.color(Theme::Color::secondary));
        }

        painter.setFont(theme.font(Theme::Type::body));
        painter.setPen(ink);
        if (cell_.symbol.empty()) {
            painter.drawText(shape(), Qt::AlignCenter, cell_.label);
            return;
        }
        symbolBox.moveLeft(shape().left() + 8);
        icons::draw(painter, cell_.symbol, symbolBox, ink);
        const QRectF textBox = shape().adjusted(8 + size + 6, 0, -4, 0);
        painter.drawText(
            textBox, Qt::AlignVCenter | Qt::AlignLeft,
            painter.fontMetrics().elidedText(cell_.label, Qt::ElideRight, int(textBox.width())));
    }

private:
    Cell cell_;
    ReminderKind kind_ = ReminderKind::work;
};

PickerGrid::PickerGrid(const QString& name, std::vector<Cell> cells, int columns, QWidget* parent)
    : QWidget(parent), columns_(columns) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    for (Cell& cell : cells) {
        auto* button = new CellButton(std::move(cell), this);
        const int index = static_cast<int>(cells_.size());
        connect(button, &QAbstractButton::clicked, this,
                [this, index] { choose(index, Qt::MouseFocusReason); });
        cells_.push_back(button);
    }
    setCurrent(-1);
}

void PickerGrid::setCurrent(int index) {
    current_ = index;
    const int stop = index < 0 ? 0 : index;
    for (int i = 0; i < static_cast<int>(cells_.size()); ++i) {
        CellButton& cell = *cells_[static_cast<std::size_t>(i)];
        // An exclusive button unchecks only when another is checked.
        cell.setAutoExclusive(false);
        cell.setChecked(i == index);
        cell.setAutoExclusive(true);
        cell.setFocusPolicy(i == stop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void PickerGrid::setKind(ReminderKind kind) {
    for (CellButton* cell : cells_)
        cell->setKind(kind);
}

void PickerGrid::choose(int index, Qt::FocusReason reason) {
    const bool isNew = index != current_;
    setCurrent(index);
    if (reason != Qt::MouseFocusReason) cells_[static_cast<std::size_t>(index)]->setFocus(reason);
    if (isNew) Q_EMIT chosen(index);
}

int PickerGrid::rows() const {
    return (static_cast<int>(cells_.size()) + columns_ - 1) / columns_;
}

QSize PickerGrid::sizeHint() const {
    const int cell = cellHeight + 2 * focusMargin;
    return {columns_ * cell, rows() * (cellHeight + gap) - gap + 2 * focusMargin};
}

void PickerGrid::resizeEvent(QResizeEvent*) {
    const int inner = width() - 2 * focusMargin;
    for (int i = 0; i < static_cast<int>(cells_.size()); ++i) {
        const int column = i % columns_;
        const int row = i / columns_;
        const int left = (inner + gap) * column / columns_;
        const int right = (inner + gap) * (column + 1) / columns_ - gap;
        cells_[static_cast<std::size_t>(i)]->setGeometry(left, row * (cellHeight + gap),
                                                         right - left + 2 * focusMargin,
                                                         cellHeight + 2 * focusMargin);
    }
}

void PickerGrid::keyPressEvent(QKeyEvent* event) {
    int step = 0;
    const int side = layoutDirection() == Qt::LeftToRight ? 1 : -1;
    if (event->key() == Qt::Key_Left) step = -side;
    if (event->key() == Qt::Key_Right) step = side;
    if (event->key() == Qt::Key_Up) step = -columns_;
    if (event->key() == Qt::Key_Down) step = columns_;
    if (step == 0) return QWidget::keyPressEvent(event);
    const int next = current_ < 0 ? 0 : current_ + step;
    if (next >= 0 && next < static_cast<int>(cells_.size())) choose(next, Qt::TabFocusReason);
}

}  // namespace tendel
