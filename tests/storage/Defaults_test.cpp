#include "storage/Defaults.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "Files.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;

TEST(Defaults, KeepsADamagedFileAsideAndStartsEmpty) {
    const std::string damaged[] = {"",
                                   "{\"a\": 1",
                                   "[1, 2]",
                                   "{\"a\": 1e999}",
                                   "\xff",
                                   "{\"a\": 1} {}",
                                   std::string(100000, '['),
                                   std::string("{\"a\0\": 1}", 9)};
    const test::TemporaryFolder folder;
    const fs::path file = folder.path / "defaults.json";
    // One copy more each time, though all happen within a second.
    std::multiset<std::string> kept;
    for (const std::string& content : damaged) {
        SCOPED_TRACE(content.substr(0, 40));
        write(file, content);
        kept.insert(content);
        Defaults defaults(file);
        EXPECT_FALSE(defaults.contains("a"));
        EXPECT_FALSE(fs::exists(file));
        EXPECT_TRUE(defaults.set("b", 2));
        EXPECT_EQ(Defaults(file).integer("b"), 2);
        std::multiset<std::string> copies;
        for (const auto& entry : fs::directory_iterator(folder.path))
            if (entry.path().filename().string().starts_with("defaults.json.damaged-"))
                copies.insert(contentOf(entry.path()));
        EXPECT_EQ(copies, kept);
    }
    // So is a folder in its place.
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_TRUE(Defaults(file).set("a", 1));
}

TEST(Defaults, AnswersNothingForAnotherType) {
    struct Case {
        nlohmann::json value;
        bool isBoolean, isInteger, isNumber, isText;
    };
    const Case cases[] = {{2.5, false, false, true, false},
                          {7, false, true, true, false},
                          {std::uint64_t{1} << 63, false, false, true, false},
                          {"7", false, false, false, true},
                          {true, true, false, false, false},
                          {nullptr, false, false, false, false}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.value.dump());
        Defaults defaults;
        ASSERT_TRUE(defaults.set("key", each.value));
        EXPECT_EQ(defaults.boolean("key").has_value(), each.isBoolean);
        EXPECT_EQ(defaults.integer("key").has_value(), each.isInteger);
        EXPECT_EQ(defaults.number("key").has_value(), each.isNumber);
        EXPECT_EQ(defaults.text("key").has_value(), each.isText);
    }
}

TEST(Defaults, AFailedWriteLeavesTheOldFileAndIsTriedAgain) {
    const test::TemporaryFolder folder;
    const fs::path file = folder.path / "defaults.json";
    Defaults defaults(file);
    ASSERT_TRUE(defaults.set("kept", 1));
    const std::string before = contentOf(file);
    {
        const FullDisk full(4);
        EXPECT_FALSE(defaults.set("later", 2));
        EXPECT_FALSE(defaults.remove("kept"));
    }
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
    EXPECT_EQ(defaults.integer("later"), 2);
    ASSERT_TRUE(defaults.set("more", 3));
    EXPECT_EQ(nlohmann::json::parse(contentOf(file)), (nlohmann::json{{"later", 2}, {"more", 3}}));
}

TEST(Defaults, WritesWhereItCanAndSaysWhereItCannot) {
    const test::TemporaryFolder folder;
    const fs::path deep = folder.path / "not" / "there" / "defaults.json";
    EXPECT_TRUE(Defaults(deep).set("a", 1));
    EXPECT_EQ(Defaults(deep).integer("a"), 1);

    write(folder.path / "file", "in the way");
    for (const fs::path& file :
         {folder.path / "file" / "defaults.json", fs::path("/proc/tendel/defaults.json")}) {
        Defaults defaults(file);
        const auto written = defaults.set("a", 1);
        ASSERT_FALSE(written);
        EXPECT_NE(written.error().find("Couldn't write \"defaults.json\": "), std::string::npos);
        EXPECT_EQ(defaults.integer("a"), 1);
    }

    // A link, as those have who keep their settings under version control, stays one.
    const fs::path link = folder.path / "defaults.json";
    write(folder.path / "elsewhere.json", "{}");
    fs::create_symlink("elsewhere.json", link);
    EXPECT_TRUE(Defaults(link).set("text", std::string("not UTF-8: \xff")));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(Defaults(folder.path / "elsewhere.json").text("text"));
}

}  // namespace
}  // namespace tendel
