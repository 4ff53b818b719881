#include "storage/LegacyReminderImport.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "Files.h"

namespace tendel {
namespace {

using nlohmann::json;

class LegacyReminderImport : public testing::Test {
protected:
    void run() { importLegacyReminders(*store_, defaults_, calendar_, now_); }

    const Instant now_{std::chrono::hours(500'000)};
    const Calendar calendar_{"Asia/Kathmandu", "en_US"};
    TemporaryFolder folder_;
    std::unique_ptr<Store> store_ = std::move(Store::open(folder_.path / "Tendel.store").value());
    Defaults defaults_;
    const json twice_ = json::parse(
        R"([{"title": "Stretch", "description": "Arms up", "time": "2020-05-04T03:20:00Z",
             "isOn": false, "repeatEveryNMinutes": 45},
            {"title": "", "description": "", "time": "2020-05-04T03:20:00+05:45",
             "isOn": true, "repeatEveryNMinutes": 90}])");
};

TEST_F(LegacyReminderImport, TakesThemOverOnce) {
    ASSERT_TRUE(defaults_.set("RemindersKey", twice_));
    run();
    EXPECT_FALSE(defaults_.contains("RemindersKey"));
    run();
    Reminder stretch;
    stretch.id = store_->reminders().at(0).id;
    stretch.title = "Stretch";
    stretch.details = "Arms up";
    stretch.startHour = 9;  // at UTC+5:45
    stretch.startMinute = 5;
    stretch.intervalMinutes = 45;
    stretch.isOn = false;
    stretch.createdAt = now_;
    ASSERT_EQ(store_->reminders().size(), 2u);
    EXPECT_EQ(store_->reminders()[0], stretch);
    EXPECT_EQ(store_->reminders()[1].start(), (TimeOfDay{3, 20}));
}

// The key may come back when the program ends between the save and the removal.
TEST_F(LegacyReminderImport, AddsNoneTwiceWhenTheKeyCouldNotBeRemoved) {
    ASSERT_TRUE(defaults_.set("RemindersKey", twice_));
    run();
    ASSERT_TRUE(defaults_.set("RemindersKey", twice_));
    run();
    EXPECT_EQ(store_->reminders().size(), 2u);
    EXPECT_FALSE(defaults_.contains("RemindersKey"));
}

TEST_F(LegacyReminderImport, LeavesWhatDoesNotDecodeOrCannotBeSaved) {
    json wrongTime = twice_, wrongInterval = twice_, missing = twice_;
    wrongTime[1]["time"] = 12345;
    wrongInterval[1]["repeatEveryNMinutes"] = "90";
    missing[1].erase("isOn");
    for (const json& stored : {wrongTime, wrongInterval, missing, json("text"), json(7)}) {
        SCOPED_TRACE(stored.dump());
        ASSERT_TRUE(defaults_.set("RemindersKey", stored));
        run();
        EXPECT_EQ(defaults_.json("RemindersKey"), stored);
        EXPECT_TRUE(store_->reminders().empty());
    }
    ASSERT_TRUE(defaults_.set("RemindersKey", twice_));
    {
        const FullDisk full(0);
        run();
    }
    EXPECT_TRUE(defaults_.contains("RemindersKey"));
    run();
    EXPECT_EQ(store_->reminders().size(), 2u);
}

}  // namespace
}  // namespace tendel
