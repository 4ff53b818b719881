#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "model/Reminder.h"

namespace tendel {

// The forms that a table and JSON have in common.
inline void append(std::string& out, int number) {
    out += std::to_string(number);
}
inline void append(std::string& out, bool value) {
    out += value ? "true" : "false";
}
inline void append(std::string& out, ReminderId id) {
    out += std::to_string(id.value);
}

// Takes the next piece of a text.
using TextSink = std::function<void(std::string_view)>;

}  // namespace tendel
