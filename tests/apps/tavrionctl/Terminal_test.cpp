// What a scan shows on a true terminal: the question about suspect plays, and the progress bar.

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace tavrion {
namespace {

struct TerminalRun {
    int status = -1;
    std::string screen;
};

class TerminalTest : public testing::Test {
  protected:
    TerminalTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrionctl-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
    }
    ~TerminalTest() override { std::filesystem::remove_all(directory); }

    /// Runs the program on a terminal of its own, and types `answer` once the screen shows
    /// `prompt`.
    TerminalRun run(std::vector<std::string> arguments, const std::string& prompt = "",
                    const std::string& answer = "") const {
        const std::string data = (directory / "data").string();
        arguments.insert(arguments.begin(), {TAVRIONCTL, "--data-dir", data});
        std::vector<char*> raw;
        for (std::string& argument : arguments) {
            raw.push_back(argument.data());
        }
        raw.push_back(nullptr);
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            ::execv(TAVRIONCTL, raw.data());
            ::_exit(127);
        }
        TerminalRun result;
        std::array<char, 4096> buffer{};
        bool answered = prompt.empty();
        // Reading fails when the program has gone and its terminal with it.
        for (ssize_t count = 0; (count = ::read(terminal, buffer.data(), buffer.size())) > 0;) {
            result.screen.append(buffer.data(), static_cast<std::size_t>(count));
            if (!answered && result.screen.find(prompt) != std::string::npos) {
                answered = true;
                EXPECT_EQ(::write(terminal, answer.data(), answer.size()),
                          static_cast<ssize_t>(answer.size()));
            }
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(terminal);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return result;
    }
    void writeExport(int songs, int plays, const std::string& lastPlayed) const {
        std::ofstream file(directory / "Library.xml");
        file << "<plist version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        for (int id = 1; id <= songs; ++id) {
            file << "<key>" << id << "</key><dict><key>Track ID</key><integer>" << id
                 << "</integer><key>Name</key><string>Song " << id
                 << "</string><key>Play Count</key><integer>" << plays
                 << "</integer><key>Play Date UTC</key><date>" << lastPlayed
                 << "</date><key>Total Time</key><integer>" << 1000 * id
                 << "</integer><key>Persistent ID</key><string>" << 1000000000000000 + id
                 << "</string></dict>\n";
        }
        file << "</dict></dict></plist>\n";
    }
    void useExport() const {
        ASSERT_EQ(run({"library", "use", "music-xml", (directory / "Library.xml").string()}).status,
                  0);
    }

    std::filesystem::path directory;
};

TEST_F(TerminalTest, theQuestionAboutSuspectPlaysIsAskedAndItsAnswerHolds) {
    writeExport(1, 1, "2026-02-28T10:00:00Z");
    useExport();
    EXPECT_EQ(run({"--now", "2026-03-01T12:00:00Z", "scan", "--since", "all"}).status, 0);
    writeExport(1, 10, "2026-03-01T13:00:00Z");
    const TerminalRun scan =
        run({"--now", "2026-03-01T14:00:00Z", "scan"}, "[2] Keep Most Recent: ", "2\n");
    EXPECT_EQ(scan.status, 0);
    EXPECT_NE(scan.screen.find("unusually high number of unrecorded plays"), std::string::npos);
    EXPECT_NE(scan.screen.find("1 new plays"), std::string::npos) << scan.screen;
}

TEST_F(TerminalTest, anUnclearAnswerIsAskedAgainAndKeepAllKeepsAll) {
    writeExport(1, 1, "2026-02-28T10:00:00Z");
    useExport();
    EXPECT_EQ(run({"--now", "2026-03-01T12:00:00Z", "scan", "--since", "all"}).status, 0);
    writeExport(1, 10, "2026-03-01T13:00:00Z");
    const TerminalRun scan =
        run({"--now", "2026-03-01T14:00:00Z", "scan"}, "[2] Keep Most Recent: ", "what?\n1\n");
    EXPECT_NE(scan.screen.find("9 new plays"), std::string::npos) << scan.screen;
}

TEST_F(TerminalTest, aScanOfMoreThanAHundredSongsShowsItsProgress) {
    writeExport(100, 1, "2026-02-28T10:00:00Z");
    useExport();
    const TerminalRun few = run({"--now", "2026-03-01T12:00:00Z", "scan", "--since", "all"});
    EXPECT_EQ(few.screen.find('%'), std::string::npos) << few.screen;
    writeExport(3000, 1, "2026-02-28T10:00:00Z");
    const TerminalRun many = run({"--now", "2026-03-01T12:30:00Z", "scan", "--since", "all"});
    EXPECT_NE(many.screen.find('%'), std::string::npos) << many.screen;
    writeExport(3000, 2, "2026-02-28T11:00:00Z");
    const TerminalRun quiet =
        run({"--quiet", "--now", "2026-03-01T13:00:00Z", "scan", "--since", "all"});
    EXPECT_EQ(quiet.screen.find('%'), std::string::npos) << quiet.screen;
}

}  // namespace
}  // namespace tavrion
