#include "storage/Persistence.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Files.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;

constexpr Instant t0{std::chrono::seconds(1'700'000'000)};

using Names = std::set<std::string>;

Names names(const fs::path& folder) {
    Names found;
    for (const auto& entry : fs::directory_iterator(folder))
        found.insert(entry.path().filename());
    return found;
}

TEST(Persistence, MovesAsideEveryFileOfTheStoreAndNoOther) {
    const test::TemporaryFolder folder;
    const fs::path store = folder.path / "Tendel.store";
    for (const char* name : {"Tendel.store", "Tendel.store-wal", "Tendel.store-shm",
                             "Tendel.store.version-1", "Tendel.stor", "old Tendel.store"})
        write(folder.path / name, name);
    const auto first = moveAside(store, t0);
    ASSERT_TRUE(first);
    EXPECT_EQ(names(first.value()), (Names{"Tendel.store", "Tendel.store-shm", "Tendel.store-wal",
                                           "Tendel.store.version-1"}));
    EXPECT_EQ(contentOf(first.value() / "Tendel.store-wal"), "Tendel.store-wal");
    // Again within the second.
    write(store, "next");
    const auto second = moveAside(store, t0);
    ASSERT_TRUE(second);
    EXPECT_EQ(contentOf(second.value() / "Tendel.store"), "next");
    EXPECT_EQ(names(folder.path),
              (Names{"Damaged Store 2023-11-14T22-13-20Z", "Damaged Store 2023-11-14T22-13-20Z 2",
                     "Tendel.stor", "old Tendel.store"}));
    EXPECT_EQ(resetNotice(first.value()).text,
              "Your reminders and stats were reset so Tendel can keep working. The old data was "
              "kept in a folder named \"Damaged Store 2023-11-14T22-13-20Z\"");
}

TEST(Persistence, WhereNoStoreCanBeBothReasonsAreTold) {
    const test::TemporaryFolder folder;
    write(folder.path / "file", "in the way");
    const auto opened = openOrStartFresh(folder.path / "file" / "Tendel.store", t0);
    ASSERT_FALSE(opened);
    EXPECT_EQ(
        opened.error(),
        "Couldn't open the reminders store: the folder \"file\" cannot be made: Not a directory; "
        "starting fresh failed too: Couldn't move \"Tendel.store\" aside: Not a directory");
    EXPECT_EQ(contentOf(folder.path / "file"), "in the way");
}

// A full disk is no reason to hide the old store from the next start, nor to leave beside it the
// journal of the fresh one, which was made half.
TEST(Persistence, PutsTheOldStoreBackWhenAFreshOneCannotBeMade) {
    for (const rlim_t room : {rlim_t{1000}, rlim_t{32'768}}) {
        SCOPED_TRACE(room);
        const test::TemporaryFolder folder;
        const fs::path store = folder.path / "Tendel.store";
        const std::string damaged(20'000, 'x');
        write(store, damaged);
        {
            const FullDisk full(room);
            const auto opened = openOrStartFresh(store, t0);
            ASSERT_FALSE(opened);
            EXPECT_EQ(opened.error().find("Couldn't open the reminders store: \"Tendel.store\": "
                                          "file is not a database; starting fresh failed too: "),
                      0u);
        }
        EXPECT_EQ(contentOf(store), damaged);
        EXPECT_EQ(names(folder.path), (Names{"Tendel.store", "Tendel.store-state"}));
        const auto later = openOrStartFresh(store, t0);
        ASSERT_TRUE(later);
        EXPECT_TRUE(later->damagedStoreBackup);
    }
}

}  // namespace
}  // namespace tendel
