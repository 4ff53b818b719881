#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/ExerciseAnimation.h"

namespace tendel {

enum class LibraryCategory { eyes, stretch, move, breathe, body, work };

// A ready-made reminder.
struct ReminderTemplate {
    std::string_view id;  // stable key
    std::string_view title;
    std::string_view details;
    std::string_view systemImage;
    LibraryCategory category = LibraryCategory::eyes;
    int intervalMinutes = 60;
    std::optional<int> durationSeconds;  // the timed break; absent: none
    int startOffsetMinutes = 0;          // of the first alert after the start of the day's window
    bool isBreak = false;
    bool isSuggested = false;
    std::vector<std::string_view> tags;
    std::optional<ExerciseAnimation> animation;  // the figure that shows the exercise

    // The whole catalogue, in its fixed order; built on first use.
    static std::span<const ReminderTemplate> library();
};

// The entry that a title names: by its own title, else by a tag that only one entry carries. Case,
// accents and surrounding blanks do not count. Null when there is none.
const ReminderTemplate* libraryMatch(std::string_view title);

}  // namespace tendel
