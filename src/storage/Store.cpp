#include "storage/Store.h"

#include <sqlite3.h>

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "base/Log.h"
#include "storage/FileNames.h"
#include "storage/StoreCompanion.h"
#include "storage/StoreOpening.h"
#include "storage/StoreRows.h"
#include "storage/StoreSchema.h"

namespace tendel {

namespace fs = std::filesystem;

namespace {

// How long a save waits for another program that reads or writes the file. The interface stands
// still meanwhile.
constexpr int busyTimeoutMilliseconds = 250;

auto positionOf(auto& reminders, ReminderId id) {
    const auto found = std::lower_bound(
        reminders.begin(), reminders.end(), id,
        [](const Reminder& reminder, ReminderId wanted) { return reminder.id < wanted; });
    return found != reminders.end() && found->id == id ? found : reminders.end();
}

// Write statements by their text, compiled once. Those kept here have run to their end or failed:
// they hold no lock.
class Statements {
public:
    explicit Statements(SQLite::Database& database) : database_(database) {}

    SQLite::Statement& operator[](const char* text) {
        const auto [entry, isNew] = compiled_.try_emplace(text, database_, text);
        if (!isNew) {
            // Answers once more how the last run ended.
            static_cast<void>(entry->second.tryReset());
            entry->second.clearBindings();
        }
        return entry->second;
    }

private:
    SQLite::Database& database_;
    std::map<const char*, SQLite::Statement> compiled_;
};

// Carries out the changes of one save. After a first failure it does nothing more: the save is
// rolled back as a whole, and no exception passes through the caller's function.
class Changes final : public Store::Writer {
public:
    Changes(SQLite::Database& database, Statements& statements, const std::vector<Reminder>& before)
        : database_(database), statements_(statements), before_(before) {}

    ReminderId insert(Reminder reminder) override {
        reminder.id.value = insertNew(sql::insertReminder, reminder, reminder.id.value);
        if (!failure_) edited().push_back(reminder);
        return reminder.id;
    }
    void update(const Reminder& reminder) override {
        const auto known = positionOf(current(), reminder.id);
        if (known == current().end() || *known == reminder) return;
        if (run(sql::updateReminder, reminder)) *positionOf(edited(), reminder.id) = reminder;
    }
    void remove(ReminderId id) override {
        if (positionOf(current(), id) == current().end()) return;
        const bool isDone = attempt([&] {
            SQLite::Statement& statement = statements_[sql::deleteReminder];
            statement.bind(1, id.value);
            statement.exec();
        });
        if (isDone) edited().erase(positionOf(edited(), id));
    }

    void insert(const ReminderEvent& event) override {
        ReminderEvent fresh = event;
        note(written_.event, insertNew(sql::insertEvent, fresh, fresh.id));
    }
    void update(const ReminderEvent& event) override {
        if (run(sql::updateEvent, event)) note(written_.event, event.id);
    }

    std::int64_t insert(const FocusBlock& block) override {
        FocusBlock fresh = block;
        const std::int64_t id = insertNew(sql::insertFocusBlock, fresh, fresh.id);
        note(written_.focusBlock, id);
        return id;
    }
    void update(const FocusBlock& block) override {
        if (run(sql::updateFocusBlock, block)) note(written_.focusBlock, block.id);
    }

    bool hasChanges() const { return hasChanges_; }
    const Store::Written& written() const { return written_; }
    // The reminders after the changes, when they differ from before.
    std::optional<std::vector<Reminder>>& reminders() { return reminders_; }
    void throwFailure() const {
        if (failure_) throw *failure_;
    }

private:
    const std::vector<Reminder>& current() const { return reminders_ ? *reminders_ : before_; }
    std::vector<Reminder>& edited() {
        if (!reminders_) reminders_ = before_;
        return *reminders_;
    }

    static void note(std::optional<std::int64_t>& lowest, std::int64_t id) {
        lowest = std::min(lowest.value_or(id), id);
    }

    // The new identifier, or 0.
    template <class Row>
    std::int64_t insertNew(const char* statement, Row& row, std::int64_t& id) {
        id = 0;
        return run(statement, row) ? database_.getLastInsertRowid() : 0;
    }
    template <class Row>
    bool run(const char* text, const Row& row) {
        return attempt([&] {
            SQLite::Statement& statement = statements_[text];
            bindFields(statement, row);
            statement.exec();
        });
    }
    template <class Action>
    bool attempt(const Action& action) {
        if (failure_) return false;
        try {
            action();
            hasChanges_ = true;
        } catch (const SQLite::Exception& exception) {
            failure_ = exception;
        }
        return !failure_;
    }

    SQLite::Database& database_;
    Statements& statements_;
    const std::vector<Reminder>& before_;
    std::optional<std::vector<Reminder>> reminders_;
    std::optional<SQLite::Exception> failure_;
    Store::Written written_;
    bool hasChanges_ = false;
};

class SqliteStore final : public Store {
public:
    // Opens, checks and reads; throws when one of them fails.
    SqliteStore(const fs::path& file, StoreCompanion companion)
        : name_(quotedName(file)), companion_(std::move(companion)) {
        if (companion_.hasLostContent()) throw StoreError(name_ + " has lost its content");
        const bool isKnownSound = companion_.isAsClosed();
        // Only the main thread uses it: locks for others would cost a tenth of the reading.
        database_ = std::make_unique<SQLite::Database>(
            file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX,
            busyTimeoutMilliseconds);
        // Until it is known to be a sound store of ours, not even closing writes into it.
        setCheckpointOnClose(CheckpointOnClose::no);
        database_->exec(
            "PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA trusted_schema = OFF;"
            " PRAGMA cell_size_check = ON; PRAGMA cache_size = -1000");
        if (!isKnownSound) {
            checkPages(*database_);
            database_->exec("PRAGMA shrink_memory");  // every page went through the cache
        }
        bringUpToDate(*database_, file, storeMigrations());
        SQLite::Statement rows(*database_, sql::selectReminders);
        while (rows.executeStep())
            reminders_.push_back(readReminder(rows));
        // Compiled, they show that the other tables have their columns.
        SQLite::Statement(*database_, sql::selectEvents);
        SQLite::Statement(*database_, sql::selectFocusBlocks);
        statements_ = std::make_unique<Statements>(*database_);
        setCheckpointOnClose(CheckpointOnClose::yes);
    }

    ~SqliteStore() override {
        // What fails here was logged when it was recorded.
        static_cast<void>(flush());
        statements_.reset();
        database_.reset();
        if (!isDamaged_) companion_.rememberClosed();
    }

    Result<void> save(const std::function<void(Writer&)>& changes) override {
        if (isSaving_) return failure("a save is still under way");
        bool hasChanges = false;
        Written written;
        try {
            const Scope saving(isSaving_);
            const auto kept = static_cast<std::ptrdiff_t>(pending_.size());
            SQLite::Transaction transaction(*database_, SQLite::TransactionBehavior::IMMEDIATE);
            Changes writer(*database_, *statements_, reminders_);
            for (const ReminderEvent& event : pending_)
                writer.insert(event);
            changes(writer);
            writer.throwFailure();
            transaction.commit();
            pending_.erase(pending_.begin(), pending_.begin() + kept);
            if (auto& after = writer.reminders()) reminders_ = std::move(*after);
            hasChanges = writer.hasChanges();
            written = writer.written();
        } catch (const SQLite::Exception& exception) {
            noteDamage(exception);
            return failure(exception.what());
        }
        if (written.event || written.focusBlock) historyWritten.emit(written);
        if (hasChanges) saved.emit();
        return {};
    }

    Result<void> record(std::span<const ReminderEvent> events) override {
        pending_.insert(pending_.end(), events.begin(), events.end());
        auto written = flush();
        if (!written)
            log(LogLevel::error, "storage", written.error() + "; answers are kept for later");
        return written;
    }

    Result<void> flush() override {
        if (pending_.empty()) return {};
        return save([](Writer&) {});
    }

    const std::vector<Reminder>& reminders() const override { return reminders_; }
    const Reminder* find(ReminderId id) const override {
        const auto found = positionOf(reminders_, id);
        return found == reminders_.end() ? nullptr : &*found;
    }

    std::vector<ReminderEvent> events() const override {
        std::vector<ReminderEvent> events;
        visitEvents(std::numeric_limits<std::int64_t>::min(),
                    [&](const EventRow& row) { events.push_back(row.event()); });
        return events;
    }
    // Of a damaged table what comes before and after the damage.
    void visitEvents(std::int64_t after,
                     const std::function<void(const EventRow&)>& visit) const override {
        const bool isWhole = readRows(sql::selectEvents + std::string("WHERE id > ?1 ORDER BY id"),
                                      {after}, [&](SQLite::Statement& row) {
                                          const EventRow event = withoutDeadLink(readEvent(row));
                                          after = event.id;
                                          visit(event);
                                      });
        if (!isWhole) {
            std::vector<ReminderEvent> fromTheEnd;
            readEvents("WHERE id > ?1 ORDER BY id DESC", {after}, fromTheEnd);
            for (auto event = fromTheEnd.rbegin(); event != fromTheEnd.rend(); ++event)
                visit(EventRow(*event));
        }
        visitPending(visit);
    }

    std::size_t eventCount() const override {
        std::size_t count = pending_.size();
        readRows("SELECT count(*) FROM events", {}, [&](SQLite::Statement& row) {
            count += static_cast<std::size_t>(row.getColumn(0).getInt64());
        });
        return count;
    }

    std::vector<ReminderEvent> eventsDue(Instant from, Instant to) const override {
        const auto isOther = [&](const ReminderEvent& event) {
            return event.fireDate < from || to <= event.fireDate;
        };
        std::vector<ReminderEvent> due;
        const bool isComplete =
            readEvents("WHERE fireDate >= ?1 AND fireDate < ?2 ORDER BY fireDate, id",
                       {from.time_since_epoch().count(), to.time_since_epoch().count()}, due);
        if (isComplete && pending_.empty()) return due;
        // The index may be all that is damaged.
        if (isComplete)
            visitPending([&](const EventRow& row) { due.push_back(row.event()); });
        else
            due = events();
        std::erase_if(due, isOther);
        std::stable_sort(due.begin(), due.end(),
                         [](const auto& a, const auto& b) { return a.fireDate < b.fireDate; });
        return due;
    }

    std::vector<ReminderEvent> eventsWithoutTitle() const override {
        std::vector<ReminderEvent> untitled;
        readEvents("WHERE reminderTitle = '' ORDER BY id", {}, untitled);
        return untitled;
    }

    std::vector<FocusBlock> focusBlocks() const override { return readFocusBlocks("", {}); }
    std::vector<FocusBlock> focusBlocksWithoutEnd() const override {
        return readFocusBlocks("WHERE \"end\" IS NULL ", {});
    }
    std::vector<FocusBlock> focusBlocksAfter(std::int64_t id) const override {
        return readFocusBlocks("WHERE id > ?1 ", {id});
    }

private:
    std::vector<FocusBlock> readFocusBlocks(const std::string& which,
                                            std::initializer_list<std::int64_t> parameters) const {
        std::vector<FocusBlock> blocks;
        readRows(sql::selectFocusBlocks + which + "ORDER BY id", parameters,
                 [&](SQLite::Statement& row) { blocks.push_back(readFocusBlock(row)); });
        return blocks;
    }

    enum class CheckpointOnClose { yes, no };
    void setCheckpointOnClose(CheckpointOnClose choice) {
        const int isOff = choice == CheckpointOnClose::no ? 1 : 0;
        sqlite3_db_config(database_->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, isOff, nullptr);
    }

    // Sets a flag until the end of a block.
    struct Scope {
        bool& flag;
        explicit Scope(bool& set) : flag(set) { flag = true; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { flag = false; }
    };

    Error failure(const std::string& why) const {
        return {"Couldn't save to " + name_ + ": " + why};
    }

    // A damaged file is checked whole at the next start, whatever it looks like.
    void noteDamage(const SQLite::Exception& exception) const {
        const int code = exception.getErrorCode() & 0xff;
        if (code != SQLITE_CORRUPT && code != SQLITE_NOTADB) return;
        isDamaged_ = true;
        companion_.forget();
    }

    // Hands each row to `take`; answers whether they were all. What stops it is logged.
    bool readRows(const std::string& text, std::initializer_list<std::int64_t> parameters,
                  const std::function<void(SQLite::Statement&)>& take) const {
        try {
            SQLite::Statement rows(*database_, text);
            int index = 0;
            for (const std::int64_t parameter : parameters)
                rows.bind(++index, parameter);
            while (rows.executeStep())
                take(rows);
            return true;
        } catch (const SQLite::Exception& exception) {
            noteDamage(exception);
            log(LogLevel::error, "storage",
                "Couldn't read all of " + name_ + ": " + exception.what());
            return false;
        }
    }

    bool readEvents(const std::string& which, std::initializer_list<std::int64_t> parameters,
                    std::vector<ReminderEvent>& events) const {
        return readRows(sql::selectEvents + which, parameters, [&](SQLite::Statement& row) {
            events.push_back(withoutDeadLink(readEvent(row)).event());
        });
    }

    // A reminder deleted by another program leaves its events pointing at nothing.
    EventRow withoutDeadLink(EventRow event) const {
        if (event.reminder && !find(*event.reminder)) event.reminder.reset();
        return event;
    }

    void visitPending(const std::function<void(const EventRow&)>& visit) const {
        for (const ReminderEvent& event : pending_) {
            EventRow row = withoutDeadLink(EventRow(event));
            row.isOnDisk = false;
            visit(row);
        }
    }

    std::string name_;
    mutable StoreCompanion companion_;
    std::unique_ptr<SQLite::Database> database_;
    std::unique_ptr<Statements> statements_;
    std::vector<Reminder> reminders_;     // by identifier, which is the order of their making
    std::vector<ReminderEvent> pending_;  // recorded, but not on disk yet
    bool isSaving_ = false;
    mutable bool isDamaged_ = false;
};

}  // namespace

Store::EventRow::EventRow(const ReminderEvent& event)
    : id(event.id),
      isOnDisk(event.id != 0),
      reminder(event.reminder),
      fireDate(event.fireDate),
      respondedAt(event.respondedAt),
      outcomeRaw(event.outcomeRaw),
      reminderTitle(event.reminderTitle),
      kindRaw(event.kindRaw) {}

ReminderEvent Store::EventRow::event() const {
    ReminderEvent event;
    event.id = id;
    event.reminder = reminder;
    event.fireDate = fireDate;
    event.respondedAt = respondedAt;
    event.outcomeRaw = outcomeRaw;
    event.reminderTitle = reminderTitle;
    event.kindRaw = kindRaw;
    return event;
}

void Store::visitEvents(std::int64_t after,
                        const std::function<void(const EventRow&)>& visit) const {
    auto all = events();
    std::ranges::stable_partition(all, [](const ReminderEvent& event) { return event.id != 0; });
    for (const ReminderEvent& event : all) {
        EventRow row(event);
        if (row.isOnDisk && row.id <= after) continue;
        if (row.reminder && !find(*row.reminder)) row.reminder.reset();
        visit(row);
    }
}

std::vector<FocusBlock> Store::focusBlocksAfter(std::int64_t id) const {
    auto blocks = focusBlocks();
    std::erase_if(blocks, [&](const FocusBlock& block) { return block.id <= id; });
    return blocks;
}

std::variant<std::unique_ptr<Store>, OpenFailure> openStore(const fs::path& given) {
    const fs::path file = fs::absolute(given);
    std::error_code folderError;
    fs::create_directories(file.parent_path(), folderError);
    if (folderError)
        return OpenFailure{OpenFailure::Kind::unusable,
                           "the folder " + quotedName(file.parent_path()) +
                               " cannot be made: " + folderError.message()};
    auto locked = StoreCompanion::lock(file);
    if (auto* failure = std::get_if<OpenFailure>(&locked)) return *failure;
    try {
        return std::make_unique<SqliteStore>(file, std::move(std::get<StoreCompanion>(locked)));
    } catch (const SQLite::Exception& exception) {
        const int code = exception.getErrorCode() & 0xff;
        const bool isInUse = code == SQLITE_BUSY || code == SQLITE_LOCKED;
        return OpenFailure{isInUse ? OpenFailure::Kind::inUse : OpenFailure::Kind::unusable,
                           quotedName(file) + ": " + exception.what()};
    } catch (const std::exception& exception) {
        return OpenFailure{OpenFailure::Kind::unusable, exception.what()};
    }
}

Result<std::unique_ptr<Store>> Store::open(const fs::path& file) {
    auto opened = openStore(file);
    if (auto* failure = std::get_if<OpenFailure>(&opened)) return Error{failure->message};
    return std::move(std::get<std::unique_ptr<Store>>(opened));
}

}  // namespace tendel
