#include "ui/window/Sidebar.h"

#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/theme/Icons.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/TabularText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {
constexpr int sidebarWidth = 208;
constexpr int rowHeight = 32;
constexpr int edge = 12;
}  // namespace

class Sidebar::Row : public PaintedButton {
public:
    explicit Row(Section section, QWidget* parent)
        : PaintedButton(parent), section_(std::move(section)) {
        setText(section_.name);
        setCheckable(true);
        setAutoExclusive(true);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setFocusPolicy(Qt::ClickFocus);
    }

    SidebarItem item() const { return section_.item; }

    void setNote(const QString& note, const QString& spoken) {
        if (spoken != accessibleDescription()) setAccessibleDescription(spoken);
        if (note == note_) return;
        note_ = note;
        update(shape().toAlignedRect());
    }

    QSize sizeHint() const override { return {160, rowHeight + 2 * focusMargin}; }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::instance();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor fill = theme.color(Theme::Color::text);
        fill.setAlphaF(isChecked() ? 0.1F : isHovered() ? 0.05F : 0.0F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(shape(), Theme::controlRadius, Theme::controlRadius);
        if (showsFocus()) drawFocusRing(painter, shape(), Theme::controlRadius);

        constexpr double symbolSize = 18;
        QRectF symbol(shape().left() + 8, 0, symbolSize, symbolSize);
        symbol.moveCenter({symbol.center().x(), shape().center().y()});
        icons::draw(painter, section_.symbol, symbol, theme.color(section_.color));
        const QRectF words = shape().adjusted(8 + symbolSize + 8, 0, -10, 0);
        painter.setFont(theme.font(Theme::Type::caption));
        painter.setPen(theme.color(Theme::Color::secondary));
        drawTabular(painter, words, Qt::AlignVCenter | Qt::AlignRight, note_);
        const double noteWidth = note_.isEmpty() ? 0 : tabularWidth(painter.font(), note_) + 8;
        painter.setFont(theme.font(Theme::Type::body, isChecked()));
        painter.setPen(theme.color(Theme::Color::text));
        painter.drawText(words, Qt::AlignVCenter | Qt::AlignLeft,
                         painter.fontMetrics().elidedText(
                             text(), Qt::ElideRight, static_cast<int>(words.width() - noteWidth)));
    }

private:
    Section section_;
    QString note_;
};

Sidebar::Sidebar(std::vector<Section> sections, QWidget* parent) : QWidget(parent) {
    setAccessibleName(tr("Sections"));
    setFixedWidth(sidebarWidth);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(edge - focusMargin, 21, edge - focusMargin, edge);
    column->setSpacing(0);
    for (Section& section : sections) {
        auto* row = new Row(std::move(section), this);
        const SidebarItem item = row->item();
        connect(row, &QAbstractButton::clicked, this, [this, item] {
            setCurrent(item);
            Q_EMIT chosen(item);
        });
        column->addWidget(row);
        rows_.push_back(row);
    }
    column->addStretch();
}

void Sidebar::setCurrent(SidebarItem item) {
    for (Row* row : rows_) {
        const bool isCurrent = row->item() == item;
        if (isCurrent) row->setChecked(true);
        row->setFocusPolicy(isCurrent ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void Sidebar::setNote(SidebarItem item, const QString& note, const QString& spoken) {
    for (Row* row : rows_)
        if (row->item() == item) row->setNote(note, spoken);
}

void Sidebar::keyPressEvent(QKeyEvent* event) {
    const int step = event->key() == Qt::Key_Up ? -1 : event->key() == Qt::Key_Down ? 1 : 0;
    if (step == 0) return QWidget::keyPressEvent(event);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!rows_[i]->isChecked()) continue;
        const std::size_t next = i + static_cast<std::size_t>(step);
        if (next >= rows_.size()) return;
        rows_[next]->click();
        rows_[next]->setFocus(Qt::TabFocusReason);
        return;
    }
}

void Sidebar::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.fillRect(rect(), theme.color(Theme::Color::sidebar));
    const double line = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(width() - line, 0, line, height()),
                     theme.color(Theme::Color::hairline));
}

}  // namespace tendel
