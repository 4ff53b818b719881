#include "platform/linux/DataFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace tendel {

namespace {

std::filesystem::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

std::filesystem::path folder(const char* variable, const char* belowHome) {
    // A relative path is to be ignored by the XDG base directory rules.
    if (const char* chosen = std::getenv(variable); chosen && *chosen == '/') return chosen;
    return homeFolder() / belowHome;
}

}  // namespace

std::filesystem::path defaultsFile() {
    return folder("XDG_CONFIG_HOME", ".config") / "tendel" / "defaults.json";
}

std::filesystem::path storeFile() {
    return folder("XDG_DATA_HOME", ".local/share") / "tendel" / "Tendel.store";
}

}  // namespace tendel
