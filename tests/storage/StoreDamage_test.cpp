#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "Files.h"
#include "storage/Persistence.h"
#include "storage/Store.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;

constexpr Instant t0{std::chrono::seconds(1'700'000'000)};
constexpr int eventCount = 20'000;
constexpr std::uintmax_t pageSize = 4096;

class StoreDamage : public testing::Test {
protected:
    StoreDamage() {
        const auto store = std::move(Store::open(file_).value());
        Reminder reminder;
        reminder.title = "Rest your eyes";
        EXPECT_TRUE(store->save([&](Store::Writer& writer) {
            reminder.id = writer.insert(reminder);
            for (int i = 0; i < eventCount; ++i)
                writer.insert(ReminderEvent(reminder, t0 + std::chrono::minutes(i), Outcome::done,
                                            t0 + std::chrono::minutes(i)));
        }));
    }
    void SetUp() override {
        page_ = static_cast<std::streamoff>(fs::file_size(file_) / 2 / pageSize * pageSize);
    }

    // Turns some bytes over in the middle of the page that lies half way through the file.
    void turnBytesOver() {
        std::string bytes(200, 0);
        std::fstream stream(file_, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekg(page_ + 2000).read(bytes.data(), 200);
        for (char& byte : bytes)
            byte = static_cast<char>(~byte);
        stream.seekp(page_ + 2000).write(bytes.data(), 200);
    }
    void execute(const std::string& statements) {
        SQLite::Database(file_.string(), SQLite::OPEN_READWRITE).exec(statements);
    }

    test::TemporaryFolder folder_;
    fs::path file_ = folder_.path / "Tendel.store";
    fs::path journal_ = folder_.path / "Tendel.store-wal";
    std::streamoff page_ = 0;
};

TEST_F(StoreDamage, WhatCannotBeOpenedIsLeftAsItIsAndMovedAsideWhole) {
    struct Case {
        std::string name;
        std::function<void()> damage;
        std::string reason;
    };
    const std::string sound = contentOf(file_);
    const Case cases[] = {
        {"a page", [&] { turnBytesOver(); }, "damaged"},
        {"a page, with the file's time set back",
         [&] {
             const auto time = fs::last_write_time(file_);
             turnBytesOver();
             fs::last_write_time(file_, time);
         },
         "damaged"},
        {"a broken page at its end", [&] { fs::resize_file(file_, sound.size() - 1000); }, ""},
        {"all of its content is gone", [&] { fs::resize_file(file_, 0); }, "lost its content"},
        {"a little text", [&] { write(file_, "hello"); }, "not a database"},
        {"a newer version", [&] { execute("PRAGMA user_version = 7"); }, "newer version of Tendel"},
        {"a newer version with its journal",
         [&] {
             SQLite::Database newer(file_.string(), SQLite::OPEN_READWRITE);
             newer.exec("PRAGMA user_version = 7");
             const std::string main = contentOf(file_), written = contentOf(journal_);
             fs::remove(file_);
             fs::remove(journal_);
             write(file_, main);
             write(journal_, written);
         },
         "newer version of Tendel"},
        {"no version", [&] { execute("PRAGMA user_version = 0"); }, "not one of Tendel"},
        {"a table is missing", [&] { execute("DROP TABLE events"); }, "no such table"},
        {"a column is missing", [&] { execute("ALTER TABLE focusBlocks DROP COLUMN start"); },
         "no such column"},
        {"a folder has its name",
         [&] {
             fs::remove(file_);
             fs::create_directory(file_);
         },
         "unable to open"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        fs::remove_all(folder_.path);
        fs::create_directory(folder_.path);
        write(file_, sound);
        { ASSERT_TRUE(Store::open(file_)); }
        each.damage();
        const std::string damaged = contentOf(file_), journal = contentOf(journal_);
        // Twice: what a first try does to the file must not make the second one succeed.
        for (int attempt = 0; attempt < 2; ++attempt) {
            const auto opened = Store::open(file_);
            ASSERT_FALSE(opened);
            EXPECT_NE(opened.error().find(each.reason), std::string::npos) << opened.error();
            EXPECT_EQ(contentOf(file_), damaged);
            EXPECT_EQ(contentOf(journal_), journal);
        }
        const auto fresh = openOrStartFresh(file_, t0);
        ASSERT_TRUE(fresh);
        EXPECT_TRUE(fresh->store->reminders().empty());
        ASSERT_TRUE(fresh->damagedStoreBackup);
        EXPECT_EQ(*fresh->damagedStoreBackup, folder_.path / "Damaged Store 2023-11-14T22-13-20Z");
        EXPECT_EQ(contentOf(*fresh->damagedStoreBackup / "Tendel.store"), damaged);
    }
}

TEST_F(StoreDamage, ReadsAroundDamageThatComesWhileItIsOpenAndFindsItAtTheNextStart) {
    auto store = std::move(Store::open(file_).value());
    turnBytesOver();
    const auto events = store->events();
    EXPECT_GT(events.size(), std::size_t{eventCount} * 9 / 10);
    EXPECT_LT(events.size(), std::size_t{eventCount});
    EXPECT_EQ(events.front().fireDate, t0);
    EXPECT_EQ(events.back().fireDate, t0 + std::chrono::minutes(eventCount - 1));
    EXPECT_GE(store->eventsDue(t0, t0 + std::chrono::hours(100'000)).size(), events.size());
    store.reset();
    EXPECT_FALSE(Store::open(file_));
}

// Within the tick of the clock that file times come from.
TEST_F(StoreDamage, DamageIsFoundThoughItFollowsTheCloseAtOnce) {
    for (int round = 0; round < 10; ++round) {
        auto store = std::move(Store::open(file_).value());
        ASSERT_TRUE(store->save([&](Store::Writer& writer) { writer.insert(Reminder()); }));
        store.reset();
        turnBytesOver();
        EXPECT_FALSE(Store::open(file_));
        turnBytesOver();  // and back
    }
}

TEST_F(StoreDamage, AStoreInUseFailsClearlyAndStaysInPlace) {
    {
        const auto first = Store::open(file_);
        const auto second = openOrStartFresh(file_, t0);
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error(),
                  "Couldn't open the reminders store: \"Tendel.store\" is in use by another "
                  "running program");
    }
    const auto third = openOrStartFresh(file_, t0);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->store->reminders().size(), 1u);
}

}  // namespace
}  // namespace tendel
