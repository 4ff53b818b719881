#include "platform/linux/PanelCutout.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using namespace std::string_literals;

std::optional<PanelCutout> describedBy(const std::map<std::string, std::string>& files) {
    const test::TemporaryFolder root;
    for (const auto& [name, text] : files) {
        std::filesystem::create_directories((root.path / name).parent_path());
        std::ofstream(root.path / name, std::ios::binary) << text;
    }
    return panelCutout(root.path);
}

TEST(PanelCutoutTest, KnowsMachinesByEachOfTheirDescriptions) {
    const std::string compatible = "proc/device-tree/compatible";
    const std::string model = "proc/device-tree/model";
    const std::string vendor = "sys/class/dmi/id/sys_vendor";
    const std::string product = "sys/class/dmi/id/product_name";
    struct Row {
        std::map<std::string, std::string> files;
        double panelHeight;  // 0: unknown
    };
    for (const Row& row : {
             Row{{{compatible, "apple,j314s\0apple,t6000\0apple,arm-platform\0"s}}, 1964},
             Row{{{compatible, "apple,j416c\0apple,t6021\0"s}}, 2234},
             Row{{{compatible, "apple,j413\0"s}}, 1664},
             Row{{{model, "Apple MacBook Air (15-inch, M2, 2023)\0"s}}, 1864},
             Row{{{vendor, "Apple\n"}, {product, "MacBook Air (13-inch, M2, 2022)\n"}}, 1664},
             Row{{{product, "Apple MacBook Pro (16-inch, M1 Max, 2021)\n"}}, 2234},
             // Their siblings without a housing, others, and none at all.
             Row{{{compatible, "apple,j493\0apple,t8112\0"s}}, 0},
             Row{{{compatible, "apple,j31\0apple,t6000\0"s}}, 0},
             Row{{{vendor, "LENOVO\n"}, {product, "20XW\n"}}, 0},
             Row{{{compatible, ""}, {product, "\n"}}, 0},
             Row{{}, 0},
         }) {
        const auto found = describedBy(row.files);
        EXPECT_EQ(found ? found->panel.height : 0, row.panelHeight)
            << (row.files.empty() ? "nothing" : row.files.begin()->second);
    }
}

TEST(PanelCutoutTest, TakesItsPlaceOnTheBuiltInPanelWhereTheStripIsShown) {
    const PanelCutout cutout{{3024, 1964}, {370, 74}};
    struct Row {
        const char* connector;
        Size frame;
        std::optional<Size> housing;
    };
    for (const Row& row : {
             Row{"eDP-1", {3024, 1964}, Size{370, 74}},
             Row{"eDP-1", {1512, 982}, Size{185, 37}},
             Row{"eDP-1", {2016, 1309}, Size{247, 50}},  // at 1.5, both rounded
             Row{"eDP-1", {3024, 1890}, std::nullopt},   // without the strip
             Row{"eDP-1", {1512, 945}, std::nullopt},
             Row{"eDP-1", {1964, 3024}, std::nullopt},  // turned on its side
             Row{"HDMI-A-1", {3024, 1964}, std::nullopt},
         })
        EXPECT_EQ(housingOn(cutout, row.connector, row.frame), row.housing)
            << row.connector << " " << row.frame.width << "x" << row.frame.height;
}

}  // namespace
}  // namespace tendel
