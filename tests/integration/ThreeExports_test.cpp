// One person's library, exported on three days and scanned at the exports' own dates.

#include <gtest/gtest.h>

#include <algorithm>

#include "sources/musicxml/MusicXmlSource.h"
#include "tests/support/RealData.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class ThreeExportsTest : public testing::Test {
  protected:
    void scanExport(const std::string& day, const char* instant) {
        SourceRegistry registry;
        registerMusicXmlSource(registry);
        const std::filesystem::path file =
            *realDataDirectory() / "music-xml" / ("one-library-" + day + ".xml");
        const auto source = registry.create("music-xml", file.string());
        ASSERT_TRUE(source);
        auto snapshot = source.value()->read();
        ASSERT_TRUE(snapshot) << snapshot.error().localizedDescription;
        environment.library.library().publish(snapshot.value());
        environment.clock.set(*dateFromIsoText(instant));
        ASSERT_TRUE(environment.scan());
    }
    std::size_t estimates() {
        const std::vector<RecordedPlay> plays = environment.plays();
        return static_cast<std::size_t>(
            std::count_if(plays.begin(), plays.end(),
                          [](const RecordedPlay& play) { return play.isInterpolated; }));
    }
    RecordingEnvironment environment;
};

TEST_F(ThreeExportsTest, everyPlayBetweenTheExportsIsRecordedOnce) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    scanExport("2021-12-19", "2021-12-19T19:45:00Z");
    EXPECT_EQ(environment.plays().size(), 764U);
    EXPECT_EQ(estimates(), 0U);
    scanExport("2021-12-20", "2021-12-20T19:45:04Z");
    EXPECT_EQ(environment.plays().size(), 764U + 25U);
    EXPECT_EQ(estimates(), 3U);
    EXPECT_EQ(environment.histories().size(), 764U)
        << "songs that left the library keep their records";
    scanExport("2021-12-22", "2021-12-22T19:45:00Z");
    EXPECT_EQ(environment.plays().size(), 764U + 25U);
}

}  // namespace
}  // namespace tavrion
