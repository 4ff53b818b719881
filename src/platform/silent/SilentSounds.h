#pragma once

#include "alerts/NotchAlertController.h"

namespace tendel {

// Plays nothing: for a computer without sound, and for tests.
class SilentSounds : public SystemSounds {
public:
    void play(std::string_view) override {}
};

}  // namespace tendel
