#include "platform/linux/PanelCutout.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace tendel {

namespace {

// The sizes of the panels are those that their maker publishes. The height is the strip above the
// 16:10 area, which is what the display driver leaves out when it hides the housing; the housing
// ends within it. The widths are not published: they are estimates from the 37 mm that the housing
// takes of a panel of 254 (MacBook Pro) or 224 pixels an inch (MacBook Air), not measured.
constexpr PanelCutout pro14{{3024, 1964}, {370, 1964 - 1890}};
constexpr PanelCutout pro16{{3456, 2234}, {370, 2234 - 2160}};
constexpr PanelCutout air13{{2560, 1664}, {326, 1664 - 1600}};
constexpr PanelCutout air15{{2880, 1864}, {326, 1864 - 1800}};

// By the names in the kernel's device trees (`compatible` and `model` of the root).
struct Machine {
    std::string_view compatible;
    std::string_view model;
    const PanelCutout& cutout;
};
constexpr Machine machines[] = {
    {"apple,j314s", "Apple MacBook Pro (14-inch, M1 Pro, 2021)", pro14},
    {"apple,j314c", "Apple MacBook Pro (14-inch, M1 Max, 2021)", pro14},
    {"apple,j316s", "Apple MacBook Pro (16-inch, M1 Pro, 2021)", pro16},
    {"apple,j316c", "Apple MacBook Pro (16-inch, M1 Max, 2021)", pro16},
    {"apple,j413", "Apple MacBook Air (13-inch, M2, 2022)", air13},
    {"apple,j414s", "Apple MacBook Pro (14-inch, M2 Pro, 2023)", pro14},
    {"apple,j414c", "Apple MacBook Pro (14-inch, M2 Max, 2023)", pro14},
    {"apple,j415", "Apple MacBook Air (15-inch, M2, 2023)", air15},
    {"apple,j416s", "Apple MacBook Pro (16-inch, M2 Pro, 2023)", pro16},
    {"apple,j416c", "Apple MacBook Pro (16-inch, M2 Max, 2023)", pro16},
};

// The texts of a file, which end with a zero (device tree) or a line (DMI).
std::vector<std::string> texts(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::vector<std::string> found(1);
    for (auto c = std::istreambuf_iterator<char>(in); c != std::istreambuf_iterator<char>(); ++c)
        if (*c == '\0' || *c == '\n')
            found.emplace_back();
        else
            found.back() += *c;
    return found;
}

std::vector<std::string> descriptions(const std::filesystem::path& root) {
    auto all = texts(root / "proc/device-tree/compatible");
    for (auto& model : texts(root / "proc/device-tree/model"))
        all.push_back(std::move(model));
    // Firmware that describes the machine by DMI takes the model's name over, with or without the
    // vendor.
    const auto dmi = root / "sys/class/dmi/id";
    const std::string vendor = texts(dmi / "sys_vendor").front();
    const std::string product = texts(dmi / "product_name").front();
    all.push_back(product);
    all.push_back(vendor + " " + product);
    return all;
}

bool isBuiltIn(std::string_view connector) {
    return connector.starts_with("eDP");
}

}  // namespace

std::optional<PanelCutout> panelCutout(const std::filesystem::path& root) {
    const auto found = descriptions(root);
    for (const Machine& machine : machines)
        for (const std::string& text : found)
            if (text == machine.compatible || text == machine.model) return machine.cutout;
    return std::nullopt;
}

std::optional<Size> housingOn(const PanelCutout& cutout, std::string_view connector,
                              const Size& frame) {
    if (!isBuiltIn(connector)) return std::nullopt;
    // The desktop may scale the screen, and round its size.
    const double scale = frame.width / cutout.panel.width;
    const double withStrip = cutout.panel.height * scale;
    if (std::abs(frame.height - withStrip) > cutout.housing.height * scale / 4) return std::nullopt;
    return Size{std::ceil(cutout.housing.width * scale), std::ceil(cutout.housing.height * scale)};
}

}  // namespace tendel
