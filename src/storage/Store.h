#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/Result.h"
#include "base/Signal.h"
#include "model/FocusBlock.h"
#include "model/Reminder.h"
#include "model/ReminderEvent.h"

namespace tendel {

// The one file that holds reminders, their history and focus blocks: SQLite, write-ahead log,
// synced at every save. The reminders are kept in memory (there are few); events are read when
// asked for. Main thread only.
//
//   store.save([&](Store::Writer& writer) {
//       writer.update(reminder);
//       writer.insert(ReminderEvent(reminder, due, Outcome::done, now));
//   });
//
// Either all changes of a save are on disk when it returns, or none is and it says why. `saved` is
// emitted after a save that changed something; listeners then read.
class Store {
public:
    // The changes of one save, in order. Identifiers are given at once.
    class Writer {
    public:
        virtual ReminderId insert(Reminder reminder) = 0;
        virtual void update(const Reminder& reminder) = 0;  // one that is gone stays gone
        virtual void remove(ReminderId id) = 0;  // its events stay, without their reminder
        virtual void insert(const ReminderEvent& event) = 0;
        virtual void update(const ReminderEvent& event) = 0;
        virtual std::int64_t insert(const FocusBlock& block) = 0;
        virtual void update(const FocusBlock& block) = 0;

    protected:
        ~Writer() = default;
    };

    // One event as it is read. The texts live as long as the call that hands them out.
    struct EventRow {
        std::int64_t id = 0;
        bool isOnDisk = true;  // false as long as it could not be saved
        std::optional<ReminderId> reminder;
        Instant fireDate;
        Instant respondedAt;
        std::string_view outcomeRaw;
        std::string_view reminderTitle;
        std::string_view kindRaw;

        EventRow() = default;
        explicit EventRow(const ReminderEvent& event);
        ReminderEvent event() const;
    };

    // What a save wrote of the history: the lowest identifier of each, inserted or changed in
    // place. What was read of them before is old from there on.
    struct Written {
        std::optional<std::int64_t> event;
        std::optional<std::int64_t> focusBlock;
    };

    // Opens or makes the store at `file` (its folder too), checks it and brings an older version up
    // to date after a copy of the file was made. Fails when it cannot be read or written, is
    // damaged, is not a store, or comes from a newer version; the file is then left as it is.
    static Result<std::unique_ptr<Store>> open(const std::filesystem::path& file);
    virtual ~Store() = default;

    virtual Result<void> save(const std::function<void(Writer&)>& changes) = 0;
    // Saves one or more answers. When that fails they are kept, appear in `events` all the same,
    // and go to disk with the next save or `flush` that succeeds.
    virtual Result<void> record(std::span<const ReminderEvent> events) = 0;
    // Tries again to save what `record` kept.
    virtual Result<void> flush() = 0;

    // All reminders in the order of their making. Valid until the next save.
    virtual const std::vector<Reminder>& reminders() const = 0;
    // Null when there is none (any more). Valid until the next save.
    virtual const Reminder* find(ReminderId id) const = 0;

    // Events in the order of recording; those due in [from, to) in the order of fireDate.
    virtual std::vector<ReminderEvent> events() const = 0;
    virtual std::vector<ReminderEvent> eventsDue(Instant from, Instant to) const = 0;
    virtual std::vector<ReminderEvent> eventsWithoutTitle() const = 0;
    virtual std::vector<FocusBlock> focusBlocks() const = 0;
    virtual std::vector<FocusBlock> focusBlocksWithoutEnd() const = 0;

    // Hands out the events above an identifier without a copy of each; those that could not be
    // saved yet come last, every time. `visit` must not save.
    virtual void visitEvents(std::int64_t after,
                             const std::function<void(const EventRow&)>& visit) const;
    // How many it hands out when it begins at the first.
    virtual std::size_t eventCount() const { return events().size(); }
    virtual std::vector<FocusBlock> focusBlocksAfter(std::int64_t id) const;

    Signal<Written> historyWritten;  // just before `saved`
    Signal<> saved;
};

// The version that this program writes (PRAGMA user_version).
inline constexpr int storeVersion = 1;

}  // namespace tendel
