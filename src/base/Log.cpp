#include "base/Log.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace tendel {

void log(LogLevel level, std::string_view subsystem, std::string_view message) {
    static const bool showsDebug = [] {
        const char* chosen = std::getenv("TENDEL_LOG");
        return chosen && std::string_view(chosen) == "debug";
    }();
    if (level == LogLevel::debug && !showsDebug) return;
    constexpr std::string_view names[] = {"debug", "info", "warning", "error"};
    std::string line(names[static_cast<int>(level)]);
    line.append(" ").append(subsystem).append(": ").append(message).append("\n");
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tendel
