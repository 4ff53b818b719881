#include "storage/StoreSchema.h"

#include <gtest/gtest.h>

#include <SQLiteCpp/SQLiteCpp.h>

#include "Files.h"
#include "storage/Store.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;

class StoreSchema : public testing::Test {
protected:
    StoreSchema() {
        const auto store = std::move(Store::open(file_).value());
        Reminder reminder;
        reminder.title = "Rest";
        EXPECT_TRUE(store->save([&](Store::Writer& writer) { writer.insert(reminder); }));
    }
    // The answer of one value, from a database with or without a version.
    static std::string ask(const fs::path& file, const std::string& query) {
        return SQLite::Database(file.string()).execAndGet(query).getString();
    }
    void migrate(std::initializer_list<const char*> further) {
        std::vector<const char*> steps(storeMigrations().begin(), storeMigrations().end());
        steps.insert(steps.end(), further);
        SQLite::Database database(file_.string(), SQLite::OPEN_READWRITE);
        bringUpToDate(database, file_, steps);
    }

    test::TemporaryFolder folder_;
    fs::path file_ = folder_.path / "Tendel.store";
    fs::path backup_ = folder_.path / "Tendel.store.version-1";
};

TEST_F(StoreSchema, BringsAnOlderStoreUpToDateAndKeepsACopy) {
    {
        const FullDisk full(1000);
        EXPECT_ANY_THROW(migrate({"DELETE FROM reminders"})) << "the copy cannot be made";
    }
    EXPECT_FALSE(fs::exists(backup_));
    migrate({"ALTER TABLE reminders ADD COLUMN place TEXT",
             "UPDATE reminders SET place = 'desk'; DELETE FROM events"});
    EXPECT_EQ(ask(file_, "SELECT title || place FROM reminders"), "Restdesk");
    EXPECT_EQ(ask(file_, "PRAGMA user_version"), "3");
    EXPECT_EQ(ask(backup_, "SELECT title FROM reminders"), "Rest");
    EXPECT_EQ(ask(backup_, "PRAGMA user_version"), "1");
}

TEST_F(StoreSchema, AStepThatFailsLeavesTheVersionBeforeIt) {
    EXPECT_THROW(migrate({"ALTER TABLE reminders ADD COLUMN place TEXT",
                          "UPDATE reminders SET title = 'lost'; UPDATE nothing SET a = 1"}),
                 SQLite::Exception);
    EXPECT_EQ(ask(file_, "SELECT title FROM reminders"), "Rest");
    EXPECT_EQ(ask(file_, "PRAGMA user_version"), "2");
    EXPECT_EQ(ask(backup_, "PRAGMA user_version"), "1");
}

}  // namespace
}  // namespace tendel
