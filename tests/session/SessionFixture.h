// A session in a data directory of the test's own, with nobody at the screen.
//
// Queue: the test's thread is the main queue. The environment is the test's own for its life: UTC,
// English, and a cache beside the data directory.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "session/Session.h"
#include "tests/support/RecordingEnvironment.h"
#include "tests/support/TestFolder.h"

namespace tavrion::test {

class SessionTest : public ::testing::Test {
  protected:
    SessionTest() {
        setEnvironment("XDG_CACHE_HOME", (folder.path() / "cache-home").string());
        setEnvironment("TZ", "UTC");
        setEnvironment("LC_ALL", "");
        setEnvironment("LC_TIME", "");
        setEnvironment("LC_COLLATE", "");
        setEnvironment("LC_MESSAGES", "");
        setEnvironment("LANG", "en_US.UTF-8");
    }
    ~SessionTest() override {
        for (const auto& [name, value] : before_) {
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
        }
    }

    std::filesystem::path data() const { return folder.path() / "data"; }
    std::filesystem::path cache() const { return folder.path() / "cache-home" / "tavrion"; }
    std::filesystem::path exportFile() const { return folder.path() / "Library.xml"; }

    void setEnvironment(const std::string& name, const std::string& value) {
        const char* const was = std::getenv(name.c_str());
        before_.try_emplace(name, was != nullptr ? std::optional<std::string>(was) : std::nullopt);
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::unique_ptr<Session> opened() {
        auto session = Session::open({data().string(), now, {}}, {presenter, failures, &log});
        EXPECT_TRUE(session.ok()) << session.error().localizedDescription;
        return std::move(session).value();
    }
    static Writer& writerOf(Session& session) {
        auto writer = session.becomeWriter();
        EXPECT_TRUE(std::holds_alternative<Writer*>(writer));
        return *std::get<Writer*>(writer);
    }
    void choose(Session& session, const std::string& kind, const std::string& location) {
        EXPECT_TRUE(writerOf(session).chooseLibrary({kind, location}));
        const Result<void> read = session.openLibrary();
        EXPECT_TRUE(read.ok()) << read.error().localizedDescription;
    }
    /// An export of songs that were each played once.
    void writeExport(const std::vector<std::string>& titles) const {
        std::ofstream file(exportFile());
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                "<key>Tracks</key><dict>\n";
        for (std::size_t i = 1; i <= titles.size(); ++i) {
            file << "<key>" << i << "</key><dict><key>Track ID</key><integer>" << i
                 << "</integer><key>Name</key><string>" << titles[i - 1]
                 << "</string><key>Total Time</key><integer>180000</integer>"
                    "<key>Play Count</key><integer>1</integer><key>Play Date UTC</key>"
                    "<date>2026-02-28T10:00:0"
                 << i << "Z</date><key>Persistent ID</key><string>" << std::string(15, '0') << i
                 << "</string></dict>\n";
        }
        file << "</dict><key>Playlists</key><array/></dict></plist>\n";
    }
    static mode_t modeOf(const std::filesystem::path& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    const TestFolder folder;
    std::optional<NSDate> now = dateFromIsoText("2026-03-01T12:00:00Z");
    RecordingScanPresenter presenter;
    RecordingFailurePresenter failures;
    RecordingLogSink log;

  private:
    std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace tavrion::test
