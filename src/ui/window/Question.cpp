#include "ui/window/Question.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "ui/theme/Label.h"
#include "ui/window/Sheet.h"

namespace tendel {

namespace {
constexpr int width = 380;
constexpr int edge = 24;
}  // namespace

QString quoted(const QString& title) {
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::title, true));
    constexpr int roomForWords = 150;
    const int room = width - 2 * edge - roomForWords;
    return u'“' + metrics.elidedText(title.simplified(), Qt::ElideMiddle, room) + u'”';
}

Sheet& ask(QWidget* host, Question question) {
    auto* sheet = new Sheet(host, width);
    sheet->setAccessibleName(question.title);
    auto* column = new QVBoxLayout(&sheet->panel());
    column->setContentsMargins(edge, edge - 4, edge - focusMargin, edge - focusMargin - 4);
    column->setSpacing(0);
    auto* title = new Label({Theme::Type::title, Theme::Color::text, true}, question.title);
    auto* text = new Label({Theme::Type::body, Theme::Color::secondary}, question.text);
    for (Label* label : {title, text}) {
        label->setWordWrap(true);
        column->addWidget(label);
        column->addSpacing(label == title ? 6 : 17);
    }
    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    row->addStretch();
    column->addLayout(row);

    QWidget* first = nullptr;
    for (const Question::Answer& answer : question.answers) {
        auto* button = new Button(answer.role, answer.text);
        QObject::connect(button, &QAbstractButton::clicked, sheet, [sheet, run = answer.run] {
            sheet->closeSheet();
            run();
        });
        row->addWidget(button);
        if (first) continue;
        first = button;
        QObject::connect(sheet, &Sheet::escapePressed, button, &QAbstractButton::click);
    }
    sheet->open(first);
    return *sheet;
}

}  // namespace tendel
