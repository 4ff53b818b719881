#include "base/Text.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

TEST(TextTest, TrimsWhiteSpaceOfEveryKindAndNothingElse) {
    const char* cases[][2] = {
        {"", ""},
        {" \t\r\n", ""},
        {"  a b  ", "a b"},
        {"\u00a0\u2003water\u3000\u2028", "water"},
        {"\u200bwater", "\u200bwater"},  // no space by Unicode's table
        {" \xff ", "\xff"},
        {" caf\xc3", "caf\xc3"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(trimmed(text), expected);
}

TEST(TextTest, FoldsWhatAPersonCallsTheSameWord) {
    const char* cases[][2] = {
        {"CAFÉ", "cafe"},         {"Cafe\u0301", "cafe"},   {"Straße", "strasse"},
        {"İstanbul", "istanbul"}, {"ΟΔΟΣ", "οδοσ"},         {"Ångström", "angstrom"},
        {"हिन्दी", "हिनदी"},       {"中文 10%", "中文 10%"}, {"a\xff", "a\ufffd"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(foldedForSearch(text), expected) << text;
    EXPECT_NE(foldedForSearch("कि"), foldedForSearch("क"));
}

}  // namespace
}  // namespace tendel
