#pragma once

#include <string_view>

namespace tendel {

enum class LogLevel { debug, info, warning, error };

// Writes `level subsystem: message` as one line to standard error (the journal, when started by the
// session). Nothing personal (titles, details) above `debug`. Debug lines appear only with
// TENDEL_LOG=debug. Any thread.
void log(LogLevel level, std::string_view subsystem, std::string_view message);

}  // namespace tendel
