#include "ui/panel/PanelMenuView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

#include "ui/panel/PanelRow.h"
#include "ui/theme/QtText.h"

namespace tendel {

namespace {

constexpr int lineRoom = 9;
constexpr int edge = 14;

std::string symbolOf(const PanelMenuEntry& entry) {
    const auto* command = std::get_if<PanelCommand>(&entry.action);
    if (!command) return entry.entries.empty() ? "" : "pause.circle";
    switch (*command) {
        case PanelCommand::resumeReminders:
            return "play";
        case PanelCommand::openTendel:
            return "macwindow";
        case PanelCommand::openStats:
            return "chart.bar";
        case PanelCommand::settings:
            return "pencil";
        case PanelCommand::feedback:
            return "envelope";
        case PanelCommand::about:
            return "info.circle";
        case PanelCommand::quit:
            break;
    }
    return "xmark";
}

}  // namespace

PanelMenuView::PanelMenuView(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void PanelMenuView::setEntries(const std::vector<PanelMenuEntry>& entries) {
    const auto held =
        std::ranges::find_if(groups_, [focus = window()->focusWidget()](const Group& group) {
            return group.row == focus || std::ranges::find(group.rows, focus) != group.rows.end();
        });
    const auto place = held == groups_.end() ? -1 : held - groups_.begin();
    const auto discard = [](PanelRow* row) {
        row->hide();
        row->deleteLater();  // it may be what was pressed
    };
    for (const Group& group : std::exchange(groups_, {})) {
        discard(group.row);
        std::ranges::for_each(group.rows, discard);
    }
    starts_.clear();
    while (QLayoutItem* item = layout()->takeAt(0))
        delete item;
    for (const PanelMenuEntry& entry : entries) {
        if (entry.startsGroup) static_cast<QVBoxLayout*>(layout())->addSpacing(lineRoom);
        add(entry);
        if (entry.startsGroup) starts_.push_back(groups_.back().row);
    }
    if (place >= 0)
        groups_[std::min(static_cast<std::size_t>(place), groups_.size() - 1)].row->setFocus(
            Qt::OtherFocusReason);
}

PanelRow* PanelMenuView::makeRow(const PanelMenuEntry& entry) {
    auto* row = new PanelRow(symbolOf(entry), toQString(entry.title), this);
    layout()->addWidget(row);
    row->show();
    if (entry.entries.empty())
        connect(row, &QAbstractButton::clicked, this,
                [this, action = entry.action] { Q_EMIT chosen(action); });
    return row;
}

void PanelMenuView::add(const PanelMenuEntry& entry) {
    Group group{makeRow(entry), {}};
    for (const PanelMenuEntry& further : entry.entries)
        group.rows.push_back(makeRow(further));
    if (!group.rows.empty()) {
        setOpen(group, false);
        connect(group.row, &QAbstractButton::clicked, this,
                [this, group] { setOpen(group, group.rows.front()->isHidden()); });
    }
    groups_.push_back(std::move(group));
}

void PanelMenuView::setOpen(const Group& group, bool isOpen) {
    QWidget* focus = window()->focusWidget();
    const bool takesFocus = std::ranges::find(group.rows, focus) != group.rows.end();
    for (PanelRow* row : group.rows)
        row->setVisible(isOpen);
    if (!isOpen && takesFocus) group.row->setFocus(Qt::OtherFocusReason);
    group.row->setDisclosure(isOpen ? PanelRow::Disclosure::open : PanelRow::Disclosure::closed);
}

void PanelMenuView::keyPressEvent(QKeyEvent* event) {
    const QWidget* focus = window()->focusWidget();
    const bool opens = event->key() == (isRightToLeft() ? Qt::Key_Left : Qt::Key_Right);
    const bool closes = event->key() == (isRightToLeft() ? Qt::Key_Right : Qt::Key_Left);
    for (const Group& group : groups_) {
        if (group.rows.empty()) continue;
        const bool isInside = std::ranges::find(group.rows, focus) != group.rows.end();
        if ((opens && focus == group.row) || (closes && (focus == group.row || isInside)))
            return setOpen(group, opens);
    }
    QWidget::keyPressEvent(event);
}

void PanelMenuView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double line = 1 / devicePixelRatioF();
    const QColor color = Theme::instance().color(Theme::Color::hairline);
    for (const PanelRow* row : starts_)
        painter.fillRect(QRectF(edge, row->y() - lineRoom / 2.0, width() - 2 * edge, line), color);
}

}  // namespace tendel
