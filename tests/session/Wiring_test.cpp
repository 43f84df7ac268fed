// A session plugs every port.

#include "session/Wiring.h"

#include "tests/session/SessionFixture.h"

namespace tavrion {
namespace {

class WiringTest : public test::SessionTest {};

TEST_F(WiringTest, everyPortIsPluggedWhileASessionLivesAndTakenOutAfterwards) {
    const auto plugged = [] {
        return std::vector<bool>{Port<Clock>::isPlugged(),
                                 Port<Regional>::isPlugged(),
                                 Port<NSUserDefaults>::isPlugged(),
                                 Port<NSNotificationCenter>::isPlugged(),
                                 Port<MainQueue>::isPlugged(),
                                 Port<TimerService>::isPlugged(),
                                 Port<MPMediaLibrary>::isPlugged(),
                                 Port<MPMusicPlayerController>::isPlugged(),
                                 Port<MirroringService>::isPlugged(),
                                 Port<AwardSink>::isPlugged(),
                                 Port<ScanPresenter>::isPlugged(),
                                 Port<RecordStore>::isPlugged(),
                                 Port<RVCoreDataManager>::isPlugged(),
                                 Port<FailurePresenter>::isPlugged(),
                                 Port<LogSink>::isPlugged()};
    };
    EXPECT_EQ(plugged(), std::vector<bool>(15, false));
    {
        const auto session = opened();
        EXPECT_EQ(plugged(), std::vector<bool>(15, true));
    }
    EXPECT_EQ(plugged(), std::vector<bool>(15, false));
}

}  // namespace
}  // namespace tavrion
