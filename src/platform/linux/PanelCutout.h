#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "model/Geometry.h"

namespace tendel {

// The camera housing that reaches into a laptop's built-in panel at the middle of its top edge, in
// the panel's own pixels.
struct PanelCutout {
    Size panel{};
    Size housing{};

    friend constexpr bool operator==(const PanelCutout&, const PanelCutout&) = default;
};

// That of this machine, looked up by how the files of /proc/device-tree and /sys/class/dmi/id below
// `root` describe it. Nothing for machines that are not in the table.
std::optional<PanelCutout> panelCutout(const std::filesystem::path& root = "/");

// Its size on a screen of `frame`'s size, in the pixels of that. Nothing when `connector` is not
// the built-in panel's, or the screen leaves out the strip beside the housing.
std::optional<Size> housingOn(const PanelCutout& cutout, std::string_view connector,
                              const Size& frame);

}  // namespace tendel
