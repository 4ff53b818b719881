#include "ui/window/LengthField.h"

#include <QHBoxLayout>
#include <QKeyEvent>

#include <algorithm>

#include "ui/theme/SegmentedControl.h"
#include "ui/theme/TextField.h"

namespace tendel {

LengthField::LengthField(const QString& name, std::vector<Unit> units, Range range, QWidget* parent)
    : QWidget(parent), units_(std::move(units)), range_(range), number_(new TextField(name)) {
    QStringList names;
    for (const Unit& each : units_)
        names << each.name;
    unitChoice_ = new SegmentedControl(name + tr(" unit"), names);
    number_->setFixedWidth(64 + 6);
    number_->setMaxLength(5);
    number_->installEventFilter(this);
    setFocusProxy(number_);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    row->addWidget(number_);
    row->addWidget(unitChoice_);
    row->addStretch();
    connect(number_, &QLineEdit::textEdited, this, &LengthField::didEdit);
    connect(unitChoice_, &SegmentedControl::chosen, this, &LengthField::changeUnit);
}

const LengthField::Unit& LengthField::unit() const {
    return units_[unit_];
}

void LengthField::setValue(int value) {
    // The largest unit that shows the value whole, from two of it on: 90 and 60 stay minutes.
    unit_ = 0;
    for (std::size_t i = 1; i < units_.size(); ++i)
        if (value % units_[i].length == 0 && value >= 2 * units_[i].length) unit_ = i;
    unitChoice_->setCurrent(static_cast<int>(unit_));
    number_->setText(QString::number(value / unit().length));
    number_->setInvalid(false);
    isEdited_ = false;
}

std::optional<int> LengthField::ranged(long long number, const Unit& of) const {
    const long long value = number * of.length;
    if (value < range_.least || value > range_.most) return std::nullopt;
    return static_cast<int>(value);
}

std::optional<int> LengthField::value() const {
    bool isNumber = false;
    const long long number = number_->text().trimmed().toLongLong(&isNumber);
    return isNumber ? ranged(number, unit()) : std::nullopt;
}

// Who wrote "2" and then chooses hours means two hours. Only where that makes no sense ("90 hours")
// the span is kept and the number changes.
void LengthField::changeUnit(int index) {
    const auto before = value();
    unit_ = static_cast<std::size_t>(index);
    if (before && !value()) {
        const int number = std::max((*before + unit().length / 2) / unit().length, 1);
        number_->setText(QString::number(number));
    }
    didEdit();
}

void LengthField::step(int direction) {
    bool isNumber = false;
    const long long number = number_->text().trimmed().toLongLong(&isNumber);
    if (!isNumber) return;
    const long long grid = unit_ == 0 ? 5 : 1;
    const long long next =
        direction > 0 ? (number / grid + 1) * grid : (number + grid - 1) / grid * grid - grid;
    const long long least = (range_.least + unit().length - 1) / unit().length;
    number_->setText(
        QString::number(std::clamp<long long>(next, least, range_.most / unit().length)));
    number_->selectAll();
    didEdit();
}

void LengthField::didEdit() {
    isEdited_ = true;
    number_->setInvalid(!value());
    Q_EMIT edited();
}

bool LengthField::eventFilter(QObject* watched, QEvent* event) {
    if (watched == number_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            step(key == Qt::Key_Up ? 1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tendel
