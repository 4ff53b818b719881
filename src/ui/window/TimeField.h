#pragma once

#include <functional>
#include <optional>

#include "model/TimeOfDay.h"
#include "ui/theme/TextField.h"

namespace tendel {

// Reads a time of day as people write it: "9", "930", "9:30", "9.30", "21h30", "9:30 pm". Nothing
// when it is none.
std::optional<TimeOfDay> parseTimeOfDay(const QString& text);

// A time of day, written or moved with the arrow keys: by hours where the cursor stands in the
// hour, else by five minutes.
class TimeField : public TextField {
    Q_OBJECT
public:
    using Format = std::function<QString(TimeOfDay)>;
    TimeField(const QString& name, Format format, QWidget* parent = nullptr);

    // Shows any time, also one that no clock shows; nothing is emitted.
    void setTime(TimeOfDay time);
    // Nothing while what is written is no time.
    std::optional<TimeOfDay> time() const { return time_; }

Q_SIGNALS:
    // A person changed it; `time()` may be nothing.
    void edited();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void step(int direction);

    Format format_;
    std::optional<TimeOfDay> time_;
};

}  // namespace tendel
