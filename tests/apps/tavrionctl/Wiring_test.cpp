// The composition root plugs every port.

#include <gtest/gtest.h>

#include <filesystem>

#include "apps/tavrionctl/Session.h"
#include "recording/ScanPresenter.h"

namespace tavrion {
namespace {

TEST(WiringTest, everyPortIsPluggedWhileASessionLivesAndTakenOutAfterwards) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tavrion-wiring-XXXXXX").string();
    const std::filesystem::path directory = ::mkdtemp(pattern.data());
    ctl::Options options;
    options.dataDirectory = directory.string();
    const auto plugged = [] {
        return std::vector<bool>{
            Port<Clock>::isPlugged(),           Port<Regional>::isPlugged(),
            Port<NSUserDefaults>::isPlugged(),  Port<NSNotificationCenter>::isPlugged(),
            Port<MainQueue>::isPlugged(),       Port<TimerService>::isPlugged(),
            Port<MPMediaLibrary>::isPlugged(),  Port<MirroringService>::isPlugged(),
            Port<AwardSink>::isPlugged(),       Port<ScanPresenter>::isPlugged(),
            Port<RecordStore>::isPlugged(),     Port<RVCoreDataManager>::isPlugged(),
            Port<FailurePresenter>::isPlugged()};
    };
    EXPECT_EQ(plugged(), std::vector<bool>(13, false));
    {
        const auto session = ctl::Session::open(options);
        ASSERT_TRUE(session);
        EXPECT_EQ(plugged(), std::vector<bool>(13, true));
    }
    EXPECT_EQ(plugged(), std::vector<bool>(13, false));
    std::filesystem::remove_all(directory);
}

}  // namespace
}  // namespace tavrion
