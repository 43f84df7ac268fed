#include "tests/support/ScanHome.h"

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>

namespace tavrion {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

}  // namespace

ScanHome::ScanHome(std::size_t songs, std::mt19937& random)
    : truth(songs, random), data_(folder_.path() / "data") {
    publish();
    const ProgramEnd used =
        start({"--quiet", "library", "use", "music-xml", (folder_.path() / "Library.xml").string()})
            ->wait();
    EXPECT_TRUE(used.isDone()) << used.told();
}

std::unique_ptr<ProgramRun> ScanHome::start(const std::vector<std::string>& command,
                                            ProgramRun::Environment environment,
                                            const std::optional<fs::path>& data) const {
    const std::string directory = data.value_or(data_).string();
    std::vector<std::string> words{"--data-dir", directory};
    words.insert(words.end(), command.begin(), command.end());
    environment.try_emplace("TAVRION_LOG", "stderr");
    // Named so that its files are among those whose changes are counted.
    environment.try_emplace("XDG_CACHE_HOME", directory + "-cache");
    return std::make_unique<ProgramRun>(TAVRIONCTL, words, folder_.path(), environment);
}

std::vector<std::string> ScanHome::scanCommand() const {
    std::vector<std::string> words{"--json", "--now", truth.nowText(), "scan"};
    if (isNew) {
        words.insert(words.end(), {"--since", "all"});
    }
    return words;
}

ProgramRun::Environment ScanHome::troubled(const fs::path& data, const fs::path& report,
                                           const std::string& trouble) const {
    ProgramRun::Environment environment{{"LD_PRELOAD", DISK_TROUBLE},
                                        {"TAVRION_TROUBLE_FOLDER", data.string()},
                                        {"TAVRION_TROUBLE_REPORT", report.string()}};
    if (!trouble.empty()) {
        environment["TAVRION_TROUBLE"] = trouble;
    }
    // AddressSanitizer wants to be the first library of a process, which is of no matter here.
    const char* const options = std::getenv("ASAN_OPTIONS");
    environment["ASAN_OPTIONS"] =
        (options != nullptr ? std::string(options) + ":" : "") + "verify_asan_link_order=0";
    return environment;
}

fs::path ScanHome::copyOfData(const std::string& name) const {
    const fs::path copy = folder_.path() / name;
    for (const char* const ending : {"", "-cache"}) {
        fs::remove_all(copy.string() + ending);
        if (fs::exists(data_.string() + ending)) {
            fs::copy(data_.string() + ending, copy.string() + ending, fs::copy_options::recursive);
        }
    }
    return copy;
}

ToldRecords ScanHome::ask(const fs::path& data) const {
    ToldRecords told;
    const ProgramEnd plays = start({"--json", "plays"}, {}, data)->wait();
    const ProgramEnd histories = start({"--json", "histories"}, {}, data)->wait();
    EXPECT_TRUE(plays.isDone()) << plays.told();
    EXPECT_TRUE(histories.isDone()) << histories.told();
    if (!plays.isDone() || !histories.isDone()) {
        return told;
    }
    for (const json& play : json::parse(plays.out)) {
        const std::string title = play["title"].is_string() ? play["title"] : "(no song)";
        const double instant = play["eventDate"]["reference"];
        ++told.playsOfTitles[title];
        if (!told.plays.emplace(title, instant).second) {
            told.doubled.push_back(title + " at " + std::to_string(instant));
        }
    }
    for (const json& history : json::parse(histories.out)) {
        if (!told.countsOfTitles.emplace(history["title"], history["playCount"]).second) {
            told.doubled.push_back(history["title"]);
        }
    }
    return told;
}

}  // namespace tavrion
