#include "ui/window/TimeField.h"

#include <QKeyEvent>
#include <QRegularExpression>

namespace tendel {

std::optional<TimeOfDay> parseTimeOfDay(const QString& text) {
    static const QRegularExpression form(
        R"(^\s*(\d{1,2}?)(?:\s*[:.h]\s*(\d{1,2})|(\d{2}))?\s*h?\s*(?:([ap])\.?\s*m?\.?)?\s*$)",
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    // Some locales put a narrow no-break space before AM and PM; \s covers it.
    const auto match = form.match(text);
    if (!match.hasMatch()) return std::nullopt;
    int hour = match.captured(1).toInt();
    const int minute = (match.captured(2) + match.captured(3)).toInt();
    const QString half = match.captured(4).toLower();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > 12) return std::nullopt;
        hour = hour % 12 + (half == QLatin1String("p") ? 12 : 0);
    }
    if (hour > 23 || minute > 59) return std::nullopt;
    return TimeOfDay{hour, minute};
}

TimeField::TimeField(const QString& name, Format format, QWidget* parent)
    : TextField(name, parent), format_(std::move(format)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFixedWidth(104 + 6);
    connect(this, &QLineEdit::textEdited, this, [this](const QString& written) {
        time_ = parseTimeOfDay(written);
        setInvalid(!time_);
        Q_EMIT edited();
    });
}

void TimeField::setTime(TimeOfDay time) {
    time_ = time;
    setText(format_(time));
    setInvalid(false);
}

void TimeField::step(int direction) {
    constexpr int grid = 5;
    constexpr int minutesPerDay = 24 * 60;
    if (!time_) return;
    const bool isInHour =
        hasSelectedText() ? selectionStart() == 0 : cursorPosition() <= text().indexOf(u':');
    int minutes = time_->hour * 60 + time_->minute;
    if (isInHour)
        minutes += 60 * direction;
    else if (direction > 0)
        minutes = (minutes / grid + 1) * grid;
    else
        minutes = (minutes + grid - 1) / grid * grid - grid;
    minutes = (minutes % minutesPerDay + minutesPerDay) % minutesPerDay;
    setTime({minutes / 60, minutes % 60});
    const auto colon = static_cast<int>(text().indexOf(u':'));
    if (isInHour)
        setSelection(0, colon);
    else
        setSelection(colon + 1, 2);
    Q_EMIT edited();
}

void TimeField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Up) return step(1);
    if (event->key() == Qt::Key_Down) return step(-1);
    TextField::keyPressEvent(event);
}

void TimeField::focusOutEvent(QFocusEvent* event) {
    if (time_ && isModified()) setTime(*time_);
    TextField::focusOutEvent(event);
}

}  // namespace tendel
