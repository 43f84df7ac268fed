#include "platform/foundation/SearchFolding.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {
namespace {

struct Row {
    const char* haystack;
    const char* needle;
    bool isFound;
    const char* locale = "en_US";
};

TEST(LocalizedStandardContainsString, IgnoresCaseAndAccentsAndNothingElse) {
    const std::vector<Row> rows{
        {"Ren\xC3\xA9"
         "e",
         "renee", true},
        {"Renee", "\xC3\xA9", true},
        {"Se\xC3\xB1or Ram\xC3\xB3n", "RAMON", true},
        {"G\xC3\xB6teborg", "gote", true},
        {"Sm\xC3\xB8rrebr\xC3\xB8"
         "d",
         "smor", false},
        {"\xC3\x86ther", "aether", false},
        {"\xC5\x81\xC3\xB3"
         "d\xC5\xBA",
         "lodz", false},
        {"Stra\xC3\x9F"
         "e",
         "strasse", true},
        {"Strasse", "\xC3\x9F", true},
        {"\xEF\xAC\x81nal", "final", true},
        {"\xEF\xBC\xA1\xEF\xBC\xA2\xEF\xBC\xA3", "abc", false},
        {"\xE3\x81\x8C\xE3\x81\x8F", "\xE3\x81\x8B\xE3\x81\x8F", false},
        {"\xE3\x82\xAB", "\xE3\x81\x8B", false},
        {"\xC4\xB0stanbul", "istanbul", true, "tr_TR"},
        {"\xC4\xB0stanbul", "istanbul", true},
        {"ISTANBUL", "istanbul", false, "tr_TR"},
        {"ISTANBUL", "istanbul", true},
        {"\xC4\xB1l\xC4\xB1k", "ILIK", true, "tr_TR"},
        {"Don\xE2\x80\x99t", "don't", false},
        {"N/A", "na", false},
        {"N/A", "n/a", true},
        {"cafe\xCC\x81", "caf\xC3\xA9", true},
        {"\xD9\x83\xD9\x90\xD8\xAA\xD8\xA7\xD8\xA8", "\xD9\x83\xD8\xAA\xD8\xA7\xD8\xA8", true},
        {"\xD0\x81\xD0\xBB\xD0\xBA\xD0\xB0", "\xD0\xB5\xD0\xBB\xD0\xBA\xD0\xB0", true},
        {"abc", "", false},
        {"", "", false},
        {"", "a", false},
    };
    for (const Row& row : rows) {
        Regional region(NSTimeZone(), row.locale);
        const Port<Regional>::Plug plug(region);
        EXPECT_EQ(localizedStandardContainsString(row.haystack, row.needle), row.isFound)
            << row.locale << ": " << row.needle << " in " << row.haystack;
    }
}

}  // namespace
}  // namespace tavrion
