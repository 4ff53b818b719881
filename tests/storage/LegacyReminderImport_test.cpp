#include "storage/LegacyReminderImport.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "Files.h"

namespace tendel {
namespace {

using nlohmann::json;

class LegacyReminderImport : public testing::Test {
protected:
    // Starts with this under the key, and tells what is there then.
    json importing(const json& entries) {
        EXPECT_TRUE(defaults_.set("RemindersKey", entries));
        importLegacyReminders(*store_, defaults_, Calendar("Asia/Kathmandu", "en_US"), now_);
        return defaults_.json("RemindersKey");
    }

    const Instant now_{std::chrono::hours(500'000)};
    test::TemporaryFolder folder_;
    std::unique_ptr<Store> store_ = std::move(Store::open(folder_.path / "Tendel.store").value());
    Defaults defaults_;
    const json two_ = json::parse(
        R"([{"title": "Stretch", "description": "Arms up", "time": "2020-05-04T03:20:00Z",
             "isOn": false, "repeatEveryNMinutes": 45},
            {"title": "", "description": "", "time": "2020-05-04T03:20:00+05:45",
             "isOn": true, "repeatEveryNMinutes": 90}])");
};

TEST_F(LegacyReminderImport, TakesThemOverOnce) {
    EXPECT_EQ(importing(two_), nullptr);
    // The key may come back when the program ends between the save and the removal.
    EXPECT_EQ(importing(two_), nullptr);
    ASSERT_EQ(store_->reminders().size(), 2u);
    Reminder stretch;
    stretch.id = store_->reminders()[0].id;
    stretch.title = "Stretch";
    stretch.details = "Arms up";
    stretch.setStart({9, 5});  // at UTC+5:45
    stretch.intervalMinutes = 45;
    stretch.isOn = false;
    stretch.createdAt = now_;
    EXPECT_EQ(store_->reminders()[0], stretch);
    EXPECT_EQ(store_->reminders()[1].start(), (TimeOfDay{3, 20}));
}

TEST_F(LegacyReminderImport, LeavesWhatDoesNotDecodeOrCannotBeSaved) {
    json wrongTime = two_, wrongInterval = two_, missing = two_;
    wrongTime[1]["time"] = 12345;
    wrongInterval[1]["repeatEveryNMinutes"] = "90";
    missing[1].erase("isOn");
    for (const json& stored : {wrongTime, wrongInterval, missing, json("text"), json(7)})
        EXPECT_EQ(importing(stored), stored);
    {
        const FullDisk full(0);
        EXPECT_EQ(importing(two_), two_);
    }
    EXPECT_TRUE(store_->reminders().empty());
    EXPECT_EQ(importing(two_), nullptr);
    EXPECT_EQ(store_->reminders().size(), 2u);
}

}  // namespace
}  // namespace tendel
