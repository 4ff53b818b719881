#pragma once

#include <filesystem>

namespace tendel {

// Where the user's files lie, by the XDG base directory rules. Without an absolute path in the
// environment the usual folder below the home directory is taken.
std::filesystem::path defaultsFile();  // $XDG_CONFIG_HOME/tendel/defaults.json
std::filesystem::path storeFile();     // $XDG_DATA_HOME/tendel/Tendel.store

}  // namespace tendel
