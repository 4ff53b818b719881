#pragma once

#include <string_view>

namespace tendel {

// Short named sounds: "Glass" for something that is over, "Hero" for something that begins again.
class SystemSounds {
public:
    virtual ~SystemSounds() = default;
    virtual void play(std::string_view name) = 0;
};

}  // namespace tendel
