#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/Signal.h"
#include "stats/StatsRecord.h"
#include "storage/Store.h"

namespace tendel {

// The store's whole history, held small for the statistics: titles are kept once each. Read when it
// is first asked for; after a save only what is new is read. Main thread only; the store must
// outlive it.
class StatsHistory {
public:
    explicit StatsHistory(Store& store);

    // Each valid until it is called again or the store saves.
    std::span<const StatsRecord> records();
    std::span<const FocusRecord> focus();

    Signal<> changed;  // after a save that changed what the two answered

private:
    enum class Difference { none, some };
    struct TextHash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    static constexpr std::int64_t none = std::numeric_limits<std::int64_t>::min();

    void noteWritten(const Store::Written& written);
    void lookAgain();
    Difference readEvents();
    Difference forgetDeletedReminders();
    Difference readFocus();

    Store& store_;
    bool hasReadEvents_ = false;
    bool hasReadFocus_ = false;
    bool isOutdated_ = false;  // what was answered had to be dropped

    std::unordered_set<std::string, TextHash, std::equal_to<>> titles_;
    std::vector<StatsRecord> records_;
    std::size_t onDisk_ = 0;  // how many of them; the store still tries to save the others
    std::int64_t lastEvent_ = none;
    std::vector<ReminderId> reminders_;  // those that there were at the last look

    std::vector<FocusRecord> focus_;
    std::vector<std::int64_t> focusIds_;                                  // of each of them
    std::int64_t staleFocus_ = std::numeric_limits<std::int64_t>::max();  // from this one on

    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel
