#include "ui/window/FocusPage.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "ui/theme/Label.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/window/FocusPlanCard.h"

namespace tendel {

namespace {
constexpr int edge = 24;
constexpr int groupGap = 32;
constexpr int widestColumn = 640;
}  // namespace

FocusPage::FocusPage(FocusTimerView::Services timer, FocusSoundController& sounds, QWidget* parent)
    : QWidget(parent), timer_(new FocusTimerView(timer)), scroll_(new SlimScrollArea) {
    setAccessibleName(tr("Focus"));
    mix_ = new SoundMixView(
        {.settings = timer.settings, .sounds = sounds, .session = timer.timer.session()});
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->addWidget(scroll_);

    auto* content = new QWidget;
    auto* centred = new QHBoxLayout(content);
    centred->setContentsMargins(edge, edge - 3, edge - SlimScrollArea::barWidth, edge);
    auto* inner = new QWidget;
    inner->setMaximumWidth(widestColumn);
    centred->addWidget(inner);
    auto* column = new QVBoxLayout(inner);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new Label({Theme::Type::section, Theme::Color::text, true}, tr("Focus")));
    column->addSpacing(8);
    column->addWidget(timer_);
    column->addSpacing(groupGap);
    column->addWidget(mix_);
    column->addSpacing(groupGap);
    column->addWidget(new Label({Theme::Type::title, Theme::Color::text, true}, tr("Plan")));
    column->addSpacing(8);
    column->addWidget(new FocusPlanCard(timer.settings));
    column->addStretch();
    scroll_->setWidget(content);
    content->setAutoFillBackground(false);
    for (QWidget* each : content->findChildren<QWidget*>())
        if (each->focusPolicy() & Qt::TabFocus) each->installEventFilter(this);
}

void FocusPage::showEvent(QShowEvent* event) {
    mix_->showRowOfPhase();
    QWidget::showEvent(event);
}

void FocusPage::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space || event->isAutoRepeat())
        return QWidget::keyPressEvent(event);
    timer_->goOn();
}

bool FocusPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason)
        scroll_->ensureWidgetVisible(static_cast<QWidget*>(watched), 0, edge);
    return QWidget::eventFilter(watched, event);
}

}  // namespace tendel
