#include "platform/mediaplayer/SourceRegistry.h"

#include <gtest/gtest.h>

namespace tavrion {
namespace {

class PlainSource : public Source {
  public:
    explicit PlainSource(std::string location) : location_(std::move(location)) {}
    std::string kind() const override { return "plain"; }
    std::string location() const override { return location_; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override { return MediaSnapshot::empty(); }

  private:
    std::string location_;
};

SourceRegistry::Kind kindNamed(const std::string& name) {
    return {name, "reads " + name, [](std::string location) -> Result<std::unique_ptr<Source>> {
                return std::unique_ptr<Source>(std::make_unique<PlainSource>(std::move(location)));
            }};
}

TEST(SourceRegistry, makesASourceOfAKnownKind) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("plain"));
    const auto source = registry.create("plain", "somewhere");
    ASSERT_TRUE(source.ok());
    EXPECT_EQ(source.value()->location(), "somewhere");
}

TEST(SourceRegistry, listsTheKindsForAnUnknownOne) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("one"));
    registry.registerKind(kindNamed("two"));
    const auto source = registry.create("three", "x");
    ASSERT_FALSE(source.ok());
    EXPECT_EQ(source.error().localizedDescription,
              "There is no kind of media library named \"three\"; use one of: one, two.");
    ASSERT_EQ(registry.kinds().size(), 2U);
    EXPECT_EQ(registry.kinds()[1].help, "reads two");
}

TEST(SourceRegistry, tellsOfAKindByItsName) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("one"));
    SourceRegistry::Kind counted = kindNamed("two");
    counted.locationIsPath = false;
    registry.registerKind(counted);
    ASSERT_NE(registry.kindNamed("one"), nullptr);
    EXPECT_TRUE(registry.kindNamed("one")->locationIsPath);
    EXPECT_FALSE(registry.kindNamed("two")->locationIsPath);
    EXPECT_EQ(registry.kindNamed("three"), nullptr);
}

TEST(SourceRegistryDeathTest, refusesASecondKindOfOneName) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("one"));
    EXPECT_DEATH(registry.registerKind(kindNamed("one")), "registered once");
}

TEST(Source, canDoNothingButReadUnlessItSaysSo) {
    PlainSource source("x");
    EXPECT_FALSE(source.capabilities().canWriteLikes);
    EXPECT_FALSE(source.capabilities().canWritePlaylists);
    EXPECT_FALSE(source.capabilities().canPlay);
    EXPECT_TRUE(source.watch([] {}).ok());
    EXPECT_EQ(source.player(), nullptr);
    const auto written = source.setLiked(1, 2);
    ASSERT_FALSE(written.ok());
    EXPECT_NE(written.error().localizedDescription.find("plain"), std::string::npos);
    const std::vector<std::uint64_t> songs{1, 2};
    const auto made = source.createPlaylist("Mine", songs);
    ASSERT_FALSE(made.ok());
    EXPECT_NE(made.error().localizedDescription.find("plain"), std::string::npos);
    const auto added = source.addToPlaylist(1, songs);
    ASSERT_FALSE(added.ok());
    EXPECT_NE(added.error().localizedDescription.find("plain"), std::string::npos);
}

}  // namespace
}  // namespace tavrion
