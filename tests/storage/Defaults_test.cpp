#include "storage/Defaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Files.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> damagedCopies(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().starts_with("defaults.json.damaged-"))
            found.push_back(entry.path());
    return found;
}

TEST(Defaults, KeepsADamagedFileAsideAndStartsEmpty) {
    const std::string damaged[] = {"",
                                   "{\"a\": 1",
                                   "[1, 2]",
                                   "null",
                                   "{\"a\": 1e999}",
                                   "\xff",
                                   "{\"a\": 1} {}",
                                   std::string(100000, '['),
                                   std::string("{\"a\0\": 1}", 9)};
    const TemporaryFolder folder;
    const fs::path file = folder.path / "defaults.json";
    std::size_t kept = 0;
    for (const std::string& content : damaged) {
        SCOPED_TRACE(content.substr(0, 40));
        write(file, content);
        Defaults defaults(file);
        EXPECT_FALSE(defaults.contains("a"));
        EXPECT_FALSE(fs::exists(file));
        EXPECT_TRUE(defaults.set("b", 2));
        EXPECT_EQ(Defaults(file).integer("b"), 2);
        // One copy more each time, though all happen within a second.
        const auto copies = damagedCopies(folder.path);
        EXPECT_EQ(copies.size(), ++kept);
        EXPECT_TRUE(std::any_of(copies.begin(), copies.end(),
                                [&](const fs::path& copy) { return contentOf(copy) == content; }));
    }
}

TEST(Defaults, AnswersNothingForAnotherType) {
    Defaults defaults;
    ASSERT_TRUE(defaults.set("number", 2.5));
    ASSERT_TRUE(defaults.set("integer", 7));
    ASSERT_TRUE(defaults.set("huge", std::uint64_t{1} << 63));
    ASSERT_TRUE(defaults.set("text", "7"));
    ASSERT_TRUE(defaults.set("boolean", true));
    for (const char* key : {"number", "huge", "text", "boolean", "missing"})
        EXPECT_EQ(defaults.integer(key), std::nullopt) << key;
    for (const char* key : {"number", "integer", "text", "missing"})
        EXPECT_EQ(defaults.boolean(key), std::nullopt) << key;
    for (const char* key : {"number", "integer", "boolean", "missing"})
        EXPECT_EQ(defaults.text(key), std::nullopt) << key;
    for (const char* key : {"text", "boolean", "missing"})
        EXPECT_EQ(defaults.number(key), std::nullopt) << key;
    EXPECT_EQ(defaults.number("integer"), 7.0);
}

TEST(Defaults, AFailedWriteLeavesTheOldFileAndIsTriedAgain) {
    const TemporaryFolder folder;
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
    const Defaults again(file);
    EXPECT_EQ(again.integer("later"), 2);
    EXPECT_EQ(again.integer("more"), 3);
    EXPECT_FALSE(again.contains("kept"));
}

TEST(Defaults, WritesWhereItCanAndSaysWhereItCannot) {
    const TemporaryFolder folder;
    Defaults deep(folder.path / "not" / "there" / "defaults.json");
    EXPECT_TRUE(deep.set("a", 1));
    EXPECT_EQ(Defaults(folder.path / "not" / "there" / "defaults.json").integer("a"), 1);

    write(folder.path / "file", "in the way");
    for (const fs::path& file :
         {folder.path / "file" / "defaults.json", fs::path("/proc/tendel/defaults.json")}) {
        Defaults defaults(file);
        const auto written = defaults.set("a", 1);
        ASSERT_FALSE(written);
        EXPECT_NE(written.error().find("Couldn't write \"defaults.json\": "), std::string::npos);
        EXPECT_EQ(defaults.integer("a"), 1);
    }

    // A folder in its place is kept aside like a damaged file.
    fs::create_directory(folder.path / "defaults.json");
    EXPECT_TRUE(Defaults(folder.path / "defaults.json").set("a", 1));
    fs::remove(folder.path / "defaults.json");

    // A link, as those have who keep their settings under version control, stays one.
    write(folder.path / "elsewhere.json", "{}");
    fs::create_symlink("elsewhere.json", folder.path / "defaults.json");
    Defaults linked(folder.path / "defaults.json");
    EXPECT_TRUE(linked.set("text", std::string("not UTF-8: \xff")));
    EXPECT_TRUE(fs::is_symlink(folder.path / "defaults.json"));
    EXPECT_TRUE(Defaults(folder.path / "elsewhere.json").text("text"));
}

}  // namespace
}  // namespace tendel
