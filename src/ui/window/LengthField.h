#pragma once

#include <QWidget>

#include <optional>
#include <vector>

namespace tendel {

class SegmentedControl;
class TextField;

// A span of time as a number and its unit. Numbers out of the range are shown as such and not
// taken.
class LengthField : public QWidget {
    Q_OBJECT
public:
    struct Unit {
        QString name;    // of many: "minutes"
        int length = 1;  // in the smallest unit
    };
    struct Range {
        int least = 1;
        int most = 1;
    };

    // The range and all values are in the smallest unit, which comes first.
    LengthField(const QString& name, std::vector<Unit> units, Range range,
                QWidget* parent = nullptr);

    // Shows any value, also one out of the range; nothing is emitted.
    void setValue(int value);
    // Nothing while what is written is no number of the range.
    std::optional<int> value() const;
    // Whether a person changed it since it was set.
    bool isEdited() const { return isEdited_; }

Q_SIGNALS:
    // A person changed it; `value()` may be nothing.
    void edited();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const Unit& unit() const;
    std::optional<int> ranged(long long number, const Unit& unit) const;
    void changeUnit(int index);
    void step(int direction);
    void didEdit();

    std::vector<Unit> units_;
    Range range_;
    TextField* number_;
    SegmentedControl* unitChoice_;
    std::size_t unit_ = 0;
    bool isEdited_ = false;
};

}  // namespace tendel
