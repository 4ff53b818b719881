#include "storage/StoreSchema.h"

#include <SQLiteCpp/Backup.h>
#include <SQLiteCpp/SQLiteCpp.h>

#include "storage/FileNames.h"
#include "storage/Store.h"

namespace tendel {

namespace fs = std::filesystem;

namespace {

// AUTOINCREMENT: the identifier of a deleted reminder is never given again. Events are never
// deleted and need none. The partial index holds nothing but what the backfill looks for.
constexpr const char* version1 = R"(
CREATE TABLE reminders (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    kindRaw TEXT NOT NULL,
    title TEXT NOT NULL,
    details TEXT NOT NULL,
    startHour INTEGER NOT NULL,
    startMinute INTEGER NOT NULL,
    intervalMinutes INTEGER NOT NULL,
    durationSeconds INTEGER,
    skipsWhenAwayChoice INTEGER,
    isBreakSuggestion INTEGER,
    symbolName TEXT,
    animationChoice TEXT,
    isOn INTEGER NOT NULL,
    createdAt INTEGER NOT NULL
);
CREATE TABLE events (
    id INTEGER PRIMARY KEY,
    reminder INTEGER REFERENCES reminders (id) ON DELETE SET NULL,
    fireDate INTEGER NOT NULL,
    respondedAt INTEGER NOT NULL,
    outcomeRaw TEXT NOT NULL,
    reminderTitle TEXT NOT NULL,
    kindRaw TEXT NOT NULL
);
CREATE INDEX eventsByFireDate ON events (fireDate);
CREATE INDEX eventsByReminder ON events (reminder);
CREATE INDEX eventsWithoutTitle ON events (id) WHERE reminderTitle = '';
CREATE TABLE focusBlocks (
    id INTEGER PRIMARY KEY,
    start INTEGER NOT NULL,
    "end" INTEGER,
    plannedMinutes INTEGER NOT NULL,
    focusedSeconds INTEGER NOT NULL,
    finished INTEGER NOT NULL
);
)";

constexpr const char* migrationsInOrder[] = {version1};
static_assert(std::size(migrationsInOrder) == storeVersion);

int versionOf(SQLite::Database& database) {
    return database.execAndGet("PRAGMA user_version").getInt();
}

void makeBackup(SQLite::Database& database, const fs::path& backup) {
    const fs::path unfinished = backup.string() + ".new";
    fs::remove(unfinished);
    {
        SQLite::Database copy(unfinished.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        SQLite::Backup(copy, database).executeStep(-1);
    }
    fs::rename(unfinished, backup);
}

}  // namespace

std::span<const char* const> storeMigrations() {
    return migrationsInOrder;
}

void bringUpToDate(SQLite::Database& database, const fs::path& file,
                   std::span<const char* const> migrations) {
    const int newest = static_cast<int>(migrations.size());
    const int found = versionOf(database);
    const bool isEmpty = database.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() == 0;
    if (found > newest)
        throw StoreError(
            quotedName(file) + " comes from a newer version of Tendel (its format is " +
            std::to_string(found) + ", this version knows " + std::to_string(newest) + ")");
    if (found < 0 || (found == 0) != isEmpty)
        throw StoreError(quotedName(file) + " is a database, but not one of Tendel");
    // Once in the file, this mode stays. Not before it is known that the file is ours.
    database.exec("PRAGMA journal_mode = WAL");
    if (found == newest) return;
    if (!isEmpty) makeBackup(database, file.string() + ".version-" + std::to_string(found));
    for (int version = found + 1; version <= newest; ++version) {
        SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
        database.exec(migrations[static_cast<std::size_t>(version) - 1]);
        database.exec("PRAGMA user_version = " + std::to_string(version));
        transaction.commit();
    }
}

void checkPages(SQLite::Database& database) {
    const std::string verdict = database.execAndGet("PRAGMA quick_check(1)").getString();
    if (verdict == "ok") return;
    // The first line may only name the database.
    throw StoreError("the file is damaged: " + verdict.substr(verdict.rfind('\n') + 1));
}

}  // namespace tendel
