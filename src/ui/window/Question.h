#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

#include "ui/theme/Button.h"

namespace tendel {

// A question over a window, with its answers as buttons.
struct Question {
    struct Answer {
        QString text;
        Button::Role role = Button::Role::normal;
        std::function<void()> run;
    };

    QString title;
    QString text;
    // From left to right. The keyboard starts on the first; Escape gives the first, which
    // therefore changes nothing.
    std::vector<Answer> answers;
};

class Sheet;

// A title in quotation marks, shortened in its middle where it would not fit a question's line.
QString quoted(const QString& title);

// Asks over `host`. The answer's function runs once the question is closed.
Sheet& ask(QWidget* host, Question question);

}  // namespace tendel
