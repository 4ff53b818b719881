// Answers alerts and edits reminders in a store without end, and tells of each change on standard
// output once its save has returned: eight bytes, the number of the change. Change n records the
// answer due at second n; besides, every third one gives a reminder the title n, and every other
// third one makes a reminder with that title and deletes the oldest. Begins with the change that
// the second argument names.

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "storage/Store.h"

int main(int, char** arguments) {
    using namespace tendel;
    auto opened = Store::open(arguments[1]);
    if (!opened) return 2;
    Store& store = *opened.value();
    for (std::int64_t n = std::stoll(arguments[2]);; ++n) {
        const auto reminders = store.reminders();
        Reminder reminder = reminders[static_cast<std::size_t>(n) % reminders.size()];
        const Instant due{std::chrono::seconds(n)};
        const ReminderEvent answer(reminder, due, Outcome::done, due);
        reminder.title = std::to_string(n);
        const auto saved =
            n % 3 == 0 ? store.record({&answer, 1}) : store.save([&](Store::Writer& writer) {
                writer.insert(answer);
                if (n % 3 == 1) {
                    writer.update(reminder);
                } else {
                    writer.insert(reminder);
                    writer.remove(reminders.front().id);
                }
            });
        if (!saved) return 3;
        if (::write(STDOUT_FILENO, &n, sizeof n) != sizeof n) return 4;
    }
}
