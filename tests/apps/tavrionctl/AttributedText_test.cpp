#include "apps/tavrionctl/AttributedText.h"

#include <gtest/gtest.h>

#include "apps/tavrionctl/TextTable.h"
#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

constexpr TerminalAbilities everything{true, true};
constexpr TerminalAbilities signsOnly{true, false};
constexpr TerminalAbilities nothing{false, false};

NSAttributedString withSymbol(const char* symbol, const char* text) {
    NSAttributedString made =
        NSAttributedString::attributedStringWithAttachment(UIImage::systemImageNamed(symbol));
    made.appendString(std::string(" ") + text);
    return made;
}

NSAttributedString explicitTitle(const char* title) {
    NSAttributedString made(title);
    made.appendString("\u2004");
    made.appendAttachment(
        UIImage::systemImageNamed("e.square.fill").imageWithTintColor(UIColor::systemGray2Color()));
    return made;
}

TEST(AttributedText, aSymbolIsASignWhereSignsAreShown) {
    EXPECT_EQ(printed(withSymbol("play.fill", "12x"), signsOnly), "▶ 12x");
    EXPECT_EQ(printed(withSymbol("stopwatch", "10 min"), signsOnly), "⏱ 10 min");
    EXPECT_EQ(printed(explicitTitle("Loud"), signsOnly), "Loud\u2004Ⓔ");
}

TEST(AttributedText, aColouredSymbolIsGreyWhereColoursAreShown) {
    EXPECT_EQ(printed(explicitTitle("Loud"), everything), "Loud\u2004\033[2mⒺ\033[0m");
    EXPECT_EQ(printed(withSymbol("play.fill", "12x"), everything), "▶ 12x");
}

TEST(AttributedText, withoutSignsASymbolIsALetterOrLeftOutWithItsBlank) {
    EXPECT_EQ(printed(withSymbol("play.fill", "12x"), nothing), "12x");
    EXPECT_EQ(printed(withSymbol("star.fill", "yes"), nothing), "* yes");
    EXPECT_EQ(printed(explicitTitle("Loud"), nothing), "Loud\u2004E");
    EXPECT_EQ(printed(NSAttributedString(" plain "), nothing), " plain ");
}

TEST(AttributedText, aPictureThatIsNoSignIsLeftOut) {
    EXPECT_EQ(printed(withSymbol("no.such.symbol", "text"), signsOnly), "text");
    NSAttributedString picture =
        NSAttributedString::attributedStringWithAttachment(UIImage::imageNamed("star.fill"));
    picture.appendString(" text");
    EXPECT_EQ(printed(picture, signsOnly), "text");
}

TEST(AttributedText, isFilledToItsColumns) {
    EXPECT_EQ(fitted(withSymbol("play.fill", "12x"), 8, signsOnly), "▶ 12x   ");
    EXPECT_EQ(fitted(explicitTitle("日本"), 8, everything), "日本\u2004\033[2mⒺ\033[0m  ");
    EXPECT_EQ(fitted(NSAttributedString(), 3, signsOnly), "   ");
}

TEST(AttributedText, isCutToItsColumns) {
    EXPECT_EQ(fitted(withSymbol("play.fill", "123456x"), 6, signsOnly), "▶ 123…");
    EXPECT_EQ(fitted(withSymbol("star.fill", "123456x"), 6, nothing), "* 123.");
    EXPECT_EQ(fitted(explicitTitle("A longer title"), 6, everything), "A lon…");
    EXPECT_EQ(fitted(NSAttributedString("日本語"), 4, signsOnly), "日… ");
    EXPECT_EQ(fitted(NSAttributedString("日本語"), 6, signsOnly), "日本語");
    EXPECT_EQ(fitted(NSAttributedString("abc"), 0, signsOnly), "");
    EXPECT_EQ(fitted(NSAttributedString("ab\tc\x7F"), 5, signsOnly), "ab c ");
}

TEST(AttributedText, whatCanBeShownIsToldByTheEnvironment) {
    const auto shows = [](const char* locale, const char* terminal, bool isTerminal) {
        const auto abilities = TerminalAbilities::fromValues(locale, terminal, isTerminal);
        return std::pair(abilities.showsSymbols, abilities.showsColors);
    };
    EXPECT_EQ(shows("de_DE.UTF-8", "xterm-256color", true), std::pair(true, true));
    EXPECT_EQ(shows("C.utf8", "xterm", true), std::pair(true, true));
    EXPECT_EQ(shows("C.UTF-8", "xterm", false), std::pair(true, false));
    EXPECT_EQ(shows("C.UTF-8", nullptr, false), std::pair(true, false));
    EXPECT_EQ(shows("C.UTF-8", "linux", true), std::pair(false, true));
    EXPECT_EQ(shows("C.UTF-8", "dumb", true), std::pair(false, false));
    EXPECT_EQ(shows("de_DE.ISO-8859-1", "xterm", true), std::pair(false, true));
    EXPECT_EQ(shows("C", "xterm", true), std::pair(false, true));
    EXPECT_EQ(shows(nullptr, "xterm", false), std::pair(false, false));
}

TEST(TextTable, cellsAreAlignedByTheirColumns) {
    EXPECT_EQ(fitted("Größe", 7), "Größe  ");
    EXPECT_EQ(fitted("日本", 6), "日本  ");
    EXPECT_EQ(fitted("日本語", 5), "日本…");
    EXPECT_EQ(fitted("日本語", 4), "日… ");
    EXPECT_EQ(fitted("e\u0301te\u0301", 4), "e\u0301te\u0301 ");
    EXPECT_EQ(fitted("a\nb", 3), "a b");
    EXPECT_EQ(fitted("abc", 0), "");
    EXPECT_EQ(displayWidth(fitted("アメリカ合衆国", 9)), 9U);
}

}  // namespace
}  // namespace tavrion::ctl
