#include "storage/Archive.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Files.h"

namespace tendel {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;
using std::chrono::seconds;

constexpr Instant t0{microseconds(1'700'000'000'123'456)};
constexpr ArchiveFormat formats[] = {ArchiveFormat::csv, ArchiveFormat::json};

Reminder reminder(std::string title, Instant createdAt = t0) {
    Reminder made;
    made.title = std::move(title);
    made.createdAt = createdAt;
    return made;
}

class ArchiveTest : public testing::Test {
protected:
    std::unique_ptr<Store> fresh() {
        return std::move(Store::open(folder_.path / std::to_string(++stores_) / "store").value());
    }
    void add(Store& store, const std::function<void(Store::Writer&)>& changes) {
        ASSERT_TRUE(store.save(changes));
    }
    // "2 1 0": what importing `content` added, or the message.
    std::string import(Store& store, const std::string& content) {
        write(file_, content);
        const auto counts = importArchive(store, file_);
        if (!counts) return counts.error();
        return std::to_string(counts->reminders) + " " + std::to_string(counts->events) + " " +
               std::to_string(counts->focusBlocks);
    }
    static std::string json(const Store& store) {
        return Archive::of(store).text(ArchiveFormat::json);
    }

    test::TemporaryFolder folder_;
    fs::path file_ = folder_.path / "x.csv";
    int stores_ = 0;
};

TEST_F(ArchiveTest, ComesBackByteForByteIntoAFreshStore) {
    const std::string texts[] = {"'",
                                 "",
                                 "''",
                                 "'tis",
                                 "=1+1",
                                 "'=1",
                                 "-5",
                                 "+",
                                 "@x",
                                 "\tx",
                                 "\r",
                                 "\n",
                                 "\r\n",
                                 " x ",
                                 "a,b;c",
                                 "\"",
                                 "say \"so\"",
                                 "\\n \\ /",
                                 "1",
                                 "true",
                                 "null",
                                 "漢字 é 🙂",
                                 "\x01\x1f\x7f",
                                 "\uff1dx",
                                 "\u2028",
                                 "\ufeff",
                                 std::string(9000, '"')};
    const auto store = fresh();
    add(*store, [&](Store::Writer& writer) {
        writer.remove(writer.insert(reminder("gone, so that numbers are no identifiers")));
        int number = 0;
        for (const std::string& text : texts) {
            Reminder made = reminder(text, Instant{microseconds(-1) * number});
            made.kindRaw = made.details = text;
            if (++number % 2 == 0) {
                made.symbolName = made.animationChoice = text;
                made.durationSeconds = number;
                made.skipsWhenAwayChoice = number % 4 == 0;
                made.isBreakSuggestion = false;
                made.isOn = false;
            }
            made.id = writer.insert(made);
            ReminderEvent event(made, t0 - microseconds(number), Outcome::snoozed,
                                Instant{microseconds(-number)});
            event.outcomeRaw = event.kindRaw = text;
            event.reminderTitle = text + "!";
            writer.insert(event);
            event.reminder.reset();
            event.reminderTitle = text;
            event.respondedAt = t0 + seconds(number);
            writer.insert(event);
            writer.insert(event);
        }
        writer.insert(FocusBlock{.start = t0, .end = t0 + microseconds(1), .finished = true});
    });
    const Archive archive = Archive::of(*store);
    for (const ArchiveFormat format : formats) {
        ASSERT_TRUE(exportArchive(*store, file_, format));
        const std::string exported = contentOf(file_);
        EXPECT_EQ(exported, archive.text(format));
        const auto parsed = Archive::parse(exported);
        ASSERT_TRUE(parsed) << parsed.error();
        EXPECT_EQ(parsed.value(), archive);
        const auto other = fresh();
        EXPECT_EQ(import(*other, exported), "27 81 1");
        EXPECT_EQ(Archive::of(*other).text(format), exported);
        EXPECT_EQ(import(*other, exported), "0 0 0");
        EXPECT_EQ(import(*store, exported), "0 0 0");
    }
}

TEST_F(ArchiveTest, HoldsOnlyWhatItTakesBack) {
    const auto store = fresh();
    add(*store, [&](Store::Writer& writer) {
        Reminder odd = reminder(std::string("NUL\0\xff", 5));
        odd.startHour = 99;
        odd.startMinute = -1;
        odd.intervalMinutes = 0;
        odd.durationSeconds = -3;
        odd.kindRaw = "private";
        odd.id = writer.insert(odd);
        // The store reads them as the ends of its range.
        ReminderEvent event(odd, Instant::max(), Outcome::done, Instant::min());
        event.reminderTitle.clear();
        event.kindRaw = "work";
        writer.insert(event);
        writer.insert(FocusBlock{.start = t0, .end = {}, .focusedSeconds = 90});
    });
    const Archive archive = Archive::of(*store);
    EXPECT_EQ(archive.reminders[0].title, "NUL\ufffd\ufffd");
    EXPECT_EQ(archive.reminders[0].start(), (TimeOfDay{23, 0}));
    EXPECT_EQ(archive.events[0].reminderTitle, "NUL\ufffd\ufffd");
    EXPECT_EQ(archive.events[0].kindRaw, "private");
    EXPECT_EQ(archive.focusBlocks[0].end, t0 + seconds(90));
    for (const ArchiveFormat format : formats) {
        EXPECT_EQ(import(*store, archive.text(format)), "0 0 0");
        const auto other = fresh();
        EXPECT_EQ(import(*other, archive.text(format)), "1 1 1");
        EXPECT_EQ(Archive::of(*other), archive);
        EXPECT_TRUE(other->focusBlocksWithoutEnd().empty());
    }
}

TEST_F(ArchiveTest, AddsToAStoreThatWentOnOnlyWhatIsNotThere) {
    const auto store = fresh();
    std::vector<Reminder> made{reminder("alone", t0 - seconds(9)),
                               reminder("A"),
                               reminder("B"),
                               reminder("C"),
                               reminder("C"),
                               reminder("twin"),
                               reminder("twin")};
    made[2].details = "of B";
    made[3].intervalMinutes = 5;
    FocusBlock running{.start = t0, .end = {}, .plannedMinutes = 25};
    add(*store, [&](Store::Writer& writer) {
        writer.remove(writer.insert(reminder("gone, so that numbers are no identifiers")));
        for (Reminder& each : made) {
            each.id = writer.insert(each);
            writer.insert(ReminderEvent(each, t0, Outcome::done, t0));
        }
        running.id = writer.insert(running);
    });
    const std::string before = json(*store);

    // All but one are renamed, edited, deleted, answered again.
    add(*store, [&](Store::Writer& writer) {
        made[0].title = made[0].details = "all new";
        made[0].startHour = 3;
        writer.update(made[0]);
        writer.remove(made[1].id);
        made[2].title = "B2";
        writer.update(made[2]);
        made[3].intervalMinutes = 6;
        writer.update(made[3]);
        writer.insert(ReminderEvent(made[0], t0 + seconds(1), Outcome::skipped, t0));
        running.end = t0 + seconds(7);
        running.focusedSeconds = 7;
        writer.update(running);
    });
    const std::vector<Reminder> changed = store->reminders();
    EXPECT_EQ(import(*store, before), "1 0 0");
    ASSERT_EQ(store->reminders().size(), 7u);
    EXPECT_TRUE(std::equal(changed.begin(), changed.end(), store->reminders().begin()));
    EXPECT_EQ(store->reminders()[6].title, "A");
    EXPECT_EQ(store->focusBlocks(), std::vector{running});

    // The events of a file go to the reminders that the store has, each as often as it is there.
    Archive more = Archive::parse(before).value();
    more.events = {more.events[0], more.events[0], more.events[2], more.events[6]};
    more.events[2].fireDate += microseconds(1);
    more.events[3].fireDate += microseconds(1);
    more.focusBlocks.push_back(more.focusBlocks[0]);
    const std::string content = more.text(ArchiveFormat::csv);
    write(file_, content);
    {
        const FullDisk full(4);
        EXPECT_FALSE(importArchive(*store, file_));
    }
    EXPECT_EQ(import(*store, content), "0 3 1");
    const std::vector<ReminderEvent> events = store->events();
    ASSERT_EQ(events.size(), 11u);
    EXPECT_EQ(events[8].reminder, made[0].id);
    EXPECT_EQ(events[9].reminder, made[2].id);
    EXPECT_EQ(events[10].reminder, made[6].id);
}

TEST_F(ArchiveTest, TakesTheFormsOfOtherPrograms) {
    const Archive expected = Archive::parse(
                                 "record,reminder,title,createdAt,isOn,fireDate,outcome\n"
                                 "reminder,1,a;b,2026-03-02T08:00:00Z,false,,\n"
                                 "event,1,\"x\n\"\"y\"\"\",,,2026-03-02T08:15:30.5Z,done\n")
                                 .value();
    ASSERT_EQ(expected.events[0].respondedAt, expected.events[0].fireDate);
    const std::string others[] = {
        "\xef\xbb\xbf\r\n\"a,b\";fireDate;\"outcome\";title;reminder;record;createdAt;isOn\r\n"
        "?;2026-03-02T09:15:30.500000+01:00;done;\"x\n\"\"y\"\"\";7;event;;;;\r\n;;;;;;;\r\n"
        "\r\n;;;\"a;b\";7;reminder;2026-03-02T08:00:00.0000001Z;FALSE",
        "record\treminder\ttitle\tcreatedAt\tisOn\tfireDate\toutcome\r"
        "event\t2\t\"x\n\"\"y\"\"\"\t\t\t2026-03-02T08:15:30.5Z\tdone\r"
        "reminder\t2\ta;b\t2026-03-02T08:00:00Z\t0\t\t\r",
        "\xef\xbb\xbf {\"more\": [[1e3, {\"events\": 1}]], \"events\": [{\"outcome\": \"done\", "
        "\"reminder\": 3, \"x\": [{}], \"title\": \"x\\u000a\\\"y\\\"\", \"kind\": null, "
        "\"fireDate\": \"2026-03-02T08:15:30.5Z\"}], \"reminders\":\n[{\"isOn\": false, "
        "\"createdAt\": \"2026-03-02T08:00:00Z\", \"reminder\": 3, \"title\": \"a;b\"}], "
        "\"after\": {\"x\": {}}, \"format\": 1}"};
    for (const std::string& other : others) {
        const auto parsed = Archive::parse(other);
        ASSERT_TRUE(parsed) << parsed.error() << "\n" << other;
        EXPECT_EQ(parsed.value(), expected) << other;
    }
}

TEST_F(ArchiveTest, SaysInWhichLineABadFileIsWrongAndChangesNothing) {
    const std::string columns = "record,reminder,title,fireDate,outcome,isOn,startHour,createdAt\n";
    const std::string good = columns +
                             "reminder,1,T,,,true,9,2026-03-02T08:00:00Z\n"
                             "event,1,\"a\nb\",2026-03-02T08:15:30Z,done,,,\n";
    const std::string lists =
        "{\"format\": 1,\n\"reminders\": [\n{\"reminder\": 1, \"title\": \"T\", "
        "\"createdAt\": \"2026-03-02T08:00:00Z\"}],\n";
    // What stands from line 5 on, behind a good file, and from line 4 on in the other format.
    const std::pair<const char*, const char*> rows[] = {
        {"\xff", "line 5: this is not UTF-8 text"},
        {"habit,,,,,,,", "line 5: record is not \"reminder\", \"event\" or \"focus\""},
        {"event,1,x", "line 5: it has 3 columns instead of 8"},
        {"event,,,,,,,,9", "line 5: it has 9 columns instead of 8"},
        {"\nevent,1,\"x\n\n,,,", "line 6: the quote that begins here is not closed"},
        {"event,1,\"x\n\"y,,,,,", "line 6: there is text behind a closing quote"},
        {"event,1,x,2026-02-30T08:00:00Z,done,,,", "line 5: fireDate is not a date"},
        {"event,1,x,,done,,,", "line 5: fireDate is missing"},
        {"event,1,x,2026-03-02T08:00:00Z,,,,", "line 5: outcome is missing"},
        {"event,2,x,2026-03-02T08:00:00Z,done,,,", "line 5: there is no reminder 2 in this file"},
        {"event,x,x,2026-03-02T08:00:00Z,done,,,", "line 5: reminder is not a whole number"},
        {"event,0,x,2026-03-02T08:00:00Z,done,,,",
         "line 5: reminder is not between 1 and 9223372036854775807"},
        {"reminder,1,,,,,,2026-03-02T08:00:00Z", "line 5: reminder 1 is there already, in line 2"},
        {"reminder,,,,,yes,,2026-03-02T08:00:00Z", "line 5: isOn is not true or false"},
        {"reminder,,,,,,24,2026-03-02T08:00:00Z", "line 5: startHour is not between 0 and 23"},
        {"reminder,,,,,,99999999999999999999,", "line 5: startHour is not between 0 and 23"}};
    const std::pair<const char*, const char*> members[] = {
        {R"("events": {}})", "line 4: events is not a list"},
        {"\"events\": [\n7\n]}", "line 5: events holds something that is not an object"},
        {"\"events\": [\n[]]}", "line 5: events holds something that is not an object"},
        {"\"events\": [\n{\n\n}]}", "line 5: fireDate is missing"},
        {"\"events\": [\n{\"fireDate\":\n17\n}]}", "line 6: fireDate is not a date"},
        {R"("events": [{"fireDate": "2026-03-02T08:00:00Z", "outcome": ""}]})",
         "line 4: outcome is missing"},
        {"\"events\": [{\"title\":\n[]}]}", "line 5: title is not a text"},
        {"\"events\": [{\"kind\": \"\",\n\"kind\": \"\"}]}", "line 5: kind is there twice"},
        {"\"focusBlocks\": [{\"start\": \"2026-03-02T08:00:00Z\",\n\"plannedMinutes\":\n"
         "18446744073709551615\n}]}",
         "line 6: plannedMinutes is not between 0 and 2147483647"},
        {R"("reminders": [{"title": "", "startHour": 1.5}]})",
         "line 4: startHour is not a whole number"},
        {"\"events\": [\n", "line 4: the file ends too early"},
        {"\"events\": [\n],,\n}", "line 5: this is not JSON"},
        {"\"events\": [{\"title\": \"x\ny\"}]}", "line 4: this is not JSON"},
        {"\"events\": []} }\n", "line 4: this is not JSON"}};
    std::vector<std::pair<std::string, const char*>> cases{
        {"", "it is empty"},
        {" \r\n\n", "it is empty"},
        {"Dear diary,\n", "line 1: there is no column \"record\""},
        {"\n\ntitle,kind\n", "line 3: there is no column \"record\""},
        {"record,title,title\n", "line 1: the column \"title\" is there twice"},
        {"record\r\n\r\nx", "line 3: record is not \"reminder\", \"event\" or \"focus\""},
        {"record,record\n", "line 1: the column \"record\" is there twice"},
        {"record,title\nevent,x\n", "line 1: there is no column \"fireDate\""},
        {std::string("ELF\n\0", 5), "line 2: this is not UTF-8 text"},
        {"\xff\xfe", "line 1: this is UTF-16; only UTF-8 can be read"},
        {"[\n]", "line 1: this is not a JSON object"},
        {std::string(100'000, '['), "line 1: this is not a JSON object"},
        {"{}", "line 1: there is no \"format\", as every export of Tendel has"},
        {"{\"format\": \"1\"}", "line 1: format is not a version of Tendel's exports"},
        {"{\"events\": 1,\n\"format\": 2}",
         "line 2: it comes from a newer version of Tendel (its format is 2, this version knows "
         "1)"}};
    for (const auto& [row, why] : rows)
        cases.emplace_back(good + row, why);
    for (const auto& [member, why] : members)
        cases.emplace_back(lists + member, why);
    const auto store = fresh();
    ASSERT_EQ(import(*store, good), "1 1 0");
    const std::string before = json(*store);
    const Subscription saved = store->saved.connect([] { ADD_FAILURE() << "saved"; });
    for (const auto& [content, why] : cases)
        EXPECT_EQ(import(*store, content), "Couldn't import \"x.csv\": " + std::string(why))
            << content;
    EXPECT_EQ(json(*store), before);
}

TEST_F(ArchiveTest, TakesOrRefusesWhateverHappenedToAFile) {
    const auto store = fresh();
    add(*store, [&](Store::Writer& writer) {
        Reminder made = reminder("T \" é");
        made.symbolName = "'";
        made.id = writer.insert(made);
        writer.insert(ReminderEvent(made, t0, Outcome::done, t0));
        writer.insert(FocusBlock{.start = t0, .end = t0});
    });
    const std::string pieces[] = {
        "\"",   ",",    "\r\n",  "'",      "{", "]", "-1",
        "null", "\xc3", "\\u00", "record", "1", ":", std::string(1, '\0')};
    std::mt19937 random(7);
    const auto below = [&](std::size_t end) { return std::size_t{random()} % end; };
    int taken = 0;
    for (int round = 0; round < 4000; ++round) {
        const ArchiveFormat format = formats[round % 2];
        std::string text = Archive::of(*store).text(format);
        for (std::size_t change = 0; change <= below(3); ++change) {
            const std::size_t at = below(text.size());
            text.replace(at, below(2) * below(9), below(4) ? pieces[below(std::size(pieces))] : "");
        }
        const auto parsed = Archive::parse(text);
        if (!parsed) {
            EXPECT_TRUE(parsed.error().starts_with("line ")) << parsed.error() << text;
            continue;
        }
        ++taken;
        const std::string again = parsed->text(format);
        EXPECT_EQ(Archive::parse(again).value(), parsed.value()) << text;
        if (taken % 16 != 0) continue;
        import(*store, text);
        EXPECT_EQ(import(*store, again), "0 0 0") << text;
    }
    EXPECT_GT(taken, 300);
}

TEST_F(ArchiveTest, WritesAndReadsFilesOnly) {
    const auto store = fresh();
    add(*store, [&](Store::Writer& writer) { writer.insert(reminder("T")); });
    const auto exported = [&](const fs::path& file) {
        const auto done = exportArchive(*store, file, ArchiveFormat::csv);
        return done ? "" : done.error();
    };
    EXPECT_EQ(exported(file_), "");
    struct stat state {};
    ASSERT_EQ(::stat(file_.c_str(), &state), 0);
    EXPECT_EQ(state.st_mode & 0777, 0600u);
    write(file_, "the user's own");
    write(file_.string() + ".new", "this too");
    {
        const FullDisk full(100);
        EXPECT_EQ(exported(file_), "Couldn't export to \"x.csv\": File too large");
    }
    EXPECT_EQ(contentOf(file_), "the user's own");
    EXPECT_EQ(exported(file_), "");
    EXPECT_EQ(contentOf(file_.string() + ".new"), "this too");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path), {}), 3);
    EXPECT_EQ(exported(folder_.path),
              "Couldn't export to \"" + folder_.path.filename().string() + "\": it is not a file");
    EXPECT_EQ(exported("/proc/tendel/x.csv"),
              "Couldn't export to \"x.csv\": No such file or directory");

    ASSERT_EQ(::mkfifo((folder_.path / "pipe").c_str(), 0600), 0);
    write(folder_.path / "large", "");
    fs::resize_file(folder_.path / "large", 600'000'000);
    const std::pair<fs::path, const char*> unread[] = {
        {folder_.path / "missing", "Couldn't import \"missing\": No such file or directory"},
        {folder_.path / "pipe", "Couldn't import \"pipe\": it is not a file"},
        {folder_.path / "large", "Couldn't import \"large\": it is larger than 500 MB"}};
    for (const auto& [file, why] : unread)
        EXPECT_EQ(importArchive(*store, file).error(), why);
}

}  // namespace
}  // namespace tendel
