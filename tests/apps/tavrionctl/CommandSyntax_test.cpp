#include "apps/tavrionctl/CommandSyntax.h"

#include <gtest/gtest.h>

using namespace tavrion;
using namespace tavrion::ctl;

namespace {

/// A program with one command that has an option of every kind.
class CommandSyntaxTest : public testing::Test {
  protected:
    CommandSyntaxTest() {
        syntax_.program().wantsCommand();
        syntax_.program().flag("--loud", isLoud_, "Loudly");
        command_ = syntax_.program().command("sing", "Sings");
        command_.text("SONG", song_, "Which song").required();
        command_.texts("--voice", voices_, "Who sings");
        const OptionSyntax key = command_.text("--key", key_, "In which key");
        command_.number("--verse", verse_, "Which verse").valueName("N").excludes(key);
        command_.text("--mode", mode_, "How").oneOf({"major", "minor"});
        command_.taken(
            "--beat",
            [](const std::string& text) {
                return text == "4/4" ? std::nullopt : std::optional(text + " is no beat");
            },
            "Which beat");
        words_ = syntax_.program().command("say", "Says");
        words_.takesAllWords();
    }

    CommandLineSyntax::Parsed parse(std::vector<const char*> words) {
        words.insert(words.begin(), "program");
        return syntax_.parse(static_cast<int>(words.size()), words.data());
    }
    std::string faultOf(std::vector<const char*> words) {
        return parse(std::move(words)).fault.value_or("");
    }

    CommandLineSyntax syntax_{"program", "Makes music", "program 7"};
    CommandSyntax command_;
    CommandSyntax words_;
    bool isLoud_ = false;
    std::string song_;
    std::string mode_ = "as it comes";
    std::vector<std::string> voices_;
    std::optional<std::string> key_;
    std::optional<std::int64_t> verse_;
};

TEST_F(CommandSyntaxTest, valuesGoWhereTheyWereDescribedTo) {
    EXPECT_EQ(faultOf({"sing", "Aria", "--voice", "alto", "tenor", "--verse=-3", "--beat", "4/4",
                       "--loud"}),
              "");
    EXPECT_TRUE(command_.isChosen());
    EXPECT_FALSE(words_.isChosen());
    EXPECT_TRUE(isLoud_);
    EXPECT_EQ(song_, "Aria");
    EXPECT_EQ(voices_, (std::vector<std::string>{"alto", "tenor"}));
    EXPECT_EQ(verse_, -3);
    EXPECT_EQ(key_, std::nullopt);
    EXPECT_EQ(mode_, "as it comes");
}

TEST_F(CommandSyntaxTest, whatIsWrongIsSaidInALine) {
    EXPECT_EQ(faultOf({"sing"}), "SONG is required");
    EXPECT_EQ(faultOf({"sing", "Aria", "--mode", "blue"}), "--mode: blue not in {major,minor}");
    EXPECT_EQ(faultOf({"sing", "Aria", "--beat", "3/4"}), "--beat: 3/4 is no beat");
    EXPECT_EQ(faultOf({"sing", "Aria", "--verse", "1", "--key", "A"}), "--key excludes --verse");
    EXPECT_EQ(faultOf({"sing", "Aria", "--verse", "x"}), "Could not convert: --verse = x");
    EXPECT_EQ(faultOf({}), "A subcommand is required");
    EXPECT_FALSE(parse({"sing"}).isAnswered);
}

TEST_F(CommandSyntaxTest, aCommandMayTakeAllWordsAsTheyAre) {
    EXPECT_EQ(faultOf({"say", "a", "--loud", "-int", "sing"}), "");
    EXPECT_TRUE(words_.isChosen());
    EXPECT_FALSE(isLoud_);
    EXPECT_EQ(words_.allWords(), (std::vector<std::string>{"a", "--loud", "-int", "sing"}));
}

TEST_F(CommandSyntaxTest, helpAndVersionAreAnswered) {
    testing::internal::CaptureStdout();
    const bool answered = parse({"sing", "--help"}).isAnswered;
    const std::string help = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(answered);
    EXPECT_NE(help.find("--verse N Excludes: --key"), std::string::npos) << help;
    EXPECT_NE(help.find("--mode TEXT:{major,minor}"), std::string::npos) << help;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(parse({"--version"}).isAnswered);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "program 7\n");
}

TEST(CommandSyntax, oneThatIsNowhereIsNotChosen) {
    EXPECT_FALSE(CommandSyntax().isChosen());
}

}  // namespace
