#include "sources/sample/SampleState.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "sources/sample/SampleStateFile.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

SampleState fullState() {
    SampleState state;
    state.likedStates = {{1, 2}, {0xFFFF'FFFF'FFFF'FFFF, 3}, {7, 0}};
    state.playlists = {{42, "Für \"mich\"\n", {3, 2, 3}}, {43, "", {}}};
    state.endings = {{5, NSDate::dateWithTimeIntervalSinceReferenceDate(794059200.123456), true},
                     {6, NSDate::dateWithTimeIntervalSinceReferenceDate(-1), false}};
    state.queue = {
        {9, 8, 7}, 1, 12.345, NSDate::dateWithTimeIntervalSinceReferenceDate(794059300.1)};
    return state;
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(SampleState, readsBackWhatWasWritten) {
    const auto read = SampleState::fromText(fullState().text());
    ASSERT_TRUE(read) << read.error().localizedDescription;
    EXPECT_EQ(read.value(), fullState());
    SampleState paused = fullState();
    paused.queue.playingSince.reset();
    EXPECT_EQ(SampleState::fromText(paused.text()).value(), paused);
    EXPECT_EQ(SampleState::fromText(SampleState().text()).value(), SampleState());
}

TEST(SampleState, aNameThatIsNotTextIsKeptAsFarAsItIs) {
    SampleState state;
    state.playlists = {{1, "a\xFFz", {}}};
    EXPECT_EQ(SampleState::fromText(state.text()).value().playlists[0].name, "a\xEF\xBF\xBDz");
}

/// The text of fullState() with one part replaced.
std::string changed(const std::string& from, const std::string& to) {
    std::string text = fullState().text();
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(SampleState, whatIsNotAsItWasWrittenIsAnError) {
    for (const std::string& text :
         {std::string(),
          std::string("{"),
          std::string("[]"),
          std::string("null"),
          std::string("{}"),
          changed("\"format\": 1", "\"format\": 2"),
          changed("\"format\": 1", "\"format\": \"1\""),
          changed("likedStates", "liked"),
          changed("\"0000000000000001\": 2", "\"0000000000000001\": 4"),
          changed("\"0000000000000001\": 2", "\"0000000000000001\": -1"),
          changed("\"0000000000000001\": 2", "\"000000000000001\": 2"),
          changed("\"0000000000000001\": 2", "\"000000000000000g\": 2"),
          changed("\"000000000000002A\"", "42"),
          changed("\"whole\": true", "\"whole\": 1"),
          changed("\"index\": 1", "\"index\": 4"),
          changed("\"index\": 1", "\"index\": -1"),
          changed("\"position\": 12.345", "\"position\": -2"),
          changed("\"position\": 12.345", "\"position\": null"),
          changed("\"position\": 12.345", "\"position\": 1e999"),
          changed("\"playingSince\": 794059300.1", "\"playingSince\": \"now\""),
          changed("\"player\": {", "\"player\": [], \"other\": {"),
          changed("\"0000000000000008\"", "[[[]]]"),
          std::string(100'000, '[')}) {
        const auto read = SampleState::fromText(text);
        ASSERT_FALSE(read) << text.substr(0, 400);
        EXPECT_FALSE(read.error().localizedDescription.empty());
        EXPECT_EQ(read.error().localizedDescription.find('\n'), std::string::npos);
    }
}

TEST(SampleStateFile, aMissingFileIsAnEmptyStateAndAChangeMakesIt) {
    const TestFolder folder;
    const SampleStateFile file(folder.path() / "state.json");
    EXPECT_EQ(file.read().value(), SampleState());
    ASSERT_TRUE(file.change([](SampleState&) {}));
    EXPECT_FALSE(std::filesystem::exists(file.path())) << "nothing changed";
    ASSERT_TRUE(file.change([](SampleState& state) { state = fullState(); }));
    EXPECT_EQ(SampleStateFile(file.path()).read().value(), fullState());
    EXPECT_EQ(std::filesystem::status(file.path()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "state.json.new"));
}

TEST(SampleStateFile, aBrokenFileIsReportedInOneLineAndStays) {
    const TestFolder folder;
    const SampleStateFile file(folder.path() / "state.json");
    std::ofstream(file.path()) << "{\"format\": 1, ";
    const auto read = file.read();
    ASSERT_FALSE(read);
    EXPECT_NE(read.error().localizedDescription.find(file.path().string()), std::string::npos);
    EXPECT_NE(read.error().localizedDescription.find("move it away"), std::string::npos);
    EXPECT_EQ(read.error().localizedDescription.find('\n'), std::string::npos);
    bool isAsked = false;
    EXPECT_FALSE(file.change([&](SampleState&) { isAsked = true; }));
    EXPECT_FALSE(isAsked);
    EXPECT_EQ(contentOf(file.path()), "{\"format\": 1, ");
}

TEST(SampleStateFile, whatCanNotBeWrittenIsReportedAndTheOldFileStays) {
    const TestFolder folder;
    const SampleStateFile file(folder.path() / "state.json");
    ASSERT_TRUE(file.change([](SampleState& state) { state = fullState(); }));
    std::filesystem::create_directory(folder.path() / "state.json.new");
    const auto written = file.change([](SampleState& state) { state.likedStates[9] = 2; });
    ASSERT_FALSE(written);
    EXPECT_NE(written.error().localizedDescription.find(file.path().string()), std::string::npos);
    EXPECT_EQ(file.read().value(), fullState());
    const SampleStateFile nowhere(folder.path() / "missing" / "state.json");
    EXPECT_FALSE(nowhere.change([](SampleState& state) { state.likedStates[9] = 2; }));
    const SampleStateFile directory(folder.path());
    EXPECT_FALSE(directory.read());
}

TEST(SampleStateFile, changesOfSeveralWritersAreAllKept) {
    const TestFolder folder;
    std::vector<std::thread> writers;
    constexpr std::uint64_t changes = 25;
    for (std::uint64_t writer = 0; writer < 4; ++writer) {
        writers.emplace_back([&folder, writer] {
            const SampleStateFile file(folder.path() / "state.json");
            for (std::uint64_t i = 0; i < changes; ++i) {
                EXPECT_TRUE(file.change(
                    [&](SampleState& state) { state.likedStates[writer * changes + i] = 2; }));
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(SampleStateFile(folder.path() / "state.json").read().value().likedStates.size(),
              4 * changes);
}

}  // namespace
}  // namespace tavrion
