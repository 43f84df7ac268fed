#include "platform/foundation/NSLocalizedString.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <vector>

namespace tavrion {
namespace {

void appendNumber(std::string& bytes, std::size_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    }
}

/// A catalogue in the form that gettext reads: after a header the places of all keys, those of all
/// texts, then the strings themselves.
std::string catalogue(const std::map<std::string, std::string>& texts) {
    const std::size_t headerSize = 28;
    const std::size_t tableSize = 8 * texts.size();
    std::string strings;
    std::string keyTable;
    std::string textTable;
    const auto add = [&](std::string& table, const std::string& text) {
        appendNumber(table, text.size());
        appendNumber(table, headerSize + 2 * tableSize + strings.size());
        strings += text;
        strings += '\0';
    };
    for (const auto& [key, text] : texts) {
        add(keyTable, key);
    }
    for (const auto& [key, text] : texts) {
        add(textTable, text);
    }
    std::string bytes;
    for (const std::size_t number :
         {std::size_t{0x950412de}, std::size_t{0}, texts.size(), headerSize, headerSize + tableSize,
          std::size_t{0}, headerSize + 2 * tableSize}) {
        appendNumber(bytes, number);
    }
    return bytes + keyTable + textTable + strings;
}

std::string plural(const char* a, const char* b) {
    return std::string(a) + '\0' + b;
}

/// Catalogues for a made-up pair of languages, bound for the life of the test.
class NSLocalizedStringTest : public testing::Test {
  protected:
    NSLocalizedStringTest() {
        ::unsetenv("LANGUAGE");
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrion-texts-XXXXXX").string();
        directory_ = ::mkdtemp(pattern.data());
        write("de", {{"",
                      "Content-Type: text/plain; charset=UTF-8\n"
                      "Plural-Forms: nplurals=2; plural=(n != 1);\n"},
                     {"Today", "Heute"},
                     {"%@ of %@", "von %2$@: %1$@"},
                     {plural("1 song", "%lu songs"), plural("1 Lied", "%lu Lieder")}});
        write("pl", {{"",
                      "Content-Type: text/plain; charset=UTF-8\n"
                      "Plural-Forms: nplurals=3; plural=(n==1 ? 0 : n%10>=2 && n%10<=4 && "
                      "(n%100<10 || n%100>=20) ? 1 : 2);\n"},
                     {plural("1 song", "%lu songs"),
                      plural("%lu utwór", "%lu utwory") + '\0' + "%lu utworów"}});
    }
    ~NSLocalizedStringTest() override {
        std::filesystem::remove_all(directory_);
        ::unsetenv("LANGUAGE");
        bindTranslations(directory_, "en_US");
        ::unsetenv("LANGUAGE");
    }

    void write(const std::string& language, const std::map<std::string, std::string>& texts) const {
        const auto folder = directory_ / language / "LC_MESSAGES";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "tavrion.mo", std::ios::binary) << catalogue(texts);
    }
    void bind(const std::string& locale) const { bindTranslations(directory_, locale); }
    static std::string songs(std::uint64_t count) {
        return localizedCount("1 song", "%lu songs", count);
    }

  private:
    std::filesystem::path directory_;
};

TEST_F(NSLocalizedStringTest, withoutATranslationTheEnglishTextIsRead) {
    bind("fr_FR");
    EXPECT_EQ(NSLocalizedString("Today"), "Today");
    EXPECT_EQ(songs(0), "0 songs");
    EXPECT_EQ(songs(1), "1 song");
    EXPECT_EQ(songs(2), "2 songs");
    EXPECT_EQ(NSLocalizedString(""), "");
}

TEST_F(NSLocalizedStringTest, theLanguageIsThatOfTheLocale) {
    bind("de_DE");
    EXPECT_EQ(NSLocalizedString("Today"), "Heute");
    EXPECT_EQ(NSLocalizedString("Yesterday"), "Yesterday");
    EXPECT_EQ(songs(1), "1 Lied");
    EXPECT_EQ(songs(0), "0 Lieder");
    EXPECT_EQ(songs(21), "21 Lieder");
    EXPECT_EQ(NSLocalizedString(""), "");
}

TEST_F(NSLocalizedStringTest, aLanguageHasItsOwnRuleForTheFormOfACount) {
    bind("pl_PL");
    EXPECT_EQ(songs(1), "1 utwór");
    EXPECT_EQ(songs(3), "3 utwory");
    EXPECT_EQ(songs(5), "5 utworów");
    EXPECT_EQ(songs(22), "22 utwory");
    EXPECT_EQ(NSLocalizedString("Today"), "Today");
}

TEST_F(NSLocalizedStringTest, theUsersListOfLanguagesComesFirst) {
    ::setenv("LANGUAGE", "xx:pl:de", 1);
    bind("fr_FR");
    EXPECT_EQ(songs(3), "3 utwory");
    EXPECT_EQ(NSLocalizedString("Today"), "Heute");
}

TEST_F(NSLocalizedStringTest, aTranslationMayTakeItsValuesInAnotherOrder) {
    bind("de_DE");
    EXPECT_EQ(stringWithFormat(NSLocalizedString("%@ of %@"), {"3", "10"}), "von 10: 3");
}

TEST(StringWithFormat, fillsThePlacesInTheirTurn) {
    EXPECT_EQ(stringWithFormat("Today at %@", {std::string("15:04")}), "Today at 15:04");
    EXPECT_EQ(stringWithFormat("%lux", {12}), "12x");
    EXPECT_EQ(stringWithFormat("%ld", {-12}), "-12");
    EXPECT_EQ(stringWithFormat("%lu", {std::numeric_limits<std::uint64_t>::max()}),
              "18446744073709551615");
    EXPECT_EQ(stringWithFormat("%@ of %@", {"a", "b"}), "a of b");
    EXPECT_EQ(stringWithFormat("", {"a"}), "");
    EXPECT_EQ(stringWithFormat("plain", {"a"}), "plain");
}

TEST(StringWithFormat, textsThatArePutInAreNotReadAgain) {
    EXPECT_EQ(stringWithFormat("%@ %@", {"%@", "%lu"}), "%@ %lu");
}

TEST(StringWithFormat, aPercentSignIsDoubled) {
    EXPECT_EQ(stringWithFormat("%lu%% of %@", {5, "all"}), "5% of all");
    EXPECT_EQ(stringWithFormat("100%%", {}), "100%");
}

TEST(StringWithFormat, whatIsNoPlaceStays) {
    EXPECT_EQ(stringWithFormat("%", {"a"}), "%");
    EXPECT_EQ(stringWithFormat("50 % of %@", {"a"}), "50 % of a");
    EXPECT_EQ(stringWithFormat("%s %d %l", {"a"}), "%s %d %l");
    EXPECT_EQ(stringWithFormat("%0$@ %3$@ %2$", {"a"}), "%0$@ %3$@ %2$");
    EXPECT_EQ(stringWithFormat("%@ %@", {"a"}), "a %@");
    EXPECT_EQ(stringWithFormat("%99999999999999999999$@", {"a"}), "%99999999999999999999$@");
    EXPECT_EQ(stringWithFormat("%1$%", {"a"}), "%1$%");
}

}  // namespace
}  // namespace tavrion
