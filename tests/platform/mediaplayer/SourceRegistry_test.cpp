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

TEST(SourceRegistry, MakesASourceOfAKnownKind) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("plain"));
    const auto source = registry.create("plain", "somewhere");
    ASSERT_TRUE(source.ok());
    EXPECT_EQ(source.value()->location(), "somewhere");
}

TEST(SourceRegistry, ListsTheKindsForAnUnknownOne) {
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

TEST(SourceRegistryDeathTest, RefusesASecondKindOfOneName) {
    SourceRegistry registry;
    registry.registerKind(kindNamed("one"));
    EXPECT_DEATH(registry.registerKind(kindNamed("one")), "registered once");
}

TEST(Source, CanDoNothingButReadUnlessItSaysSo) {
    PlainSource source("x");
    EXPECT_FALSE(source.capabilities().canWriteLikes);
    EXPECT_FALSE(source.capabilities().canWritePlaylists);
    EXPECT_FALSE(source.capabilities().canPlay);
    EXPECT_TRUE(source.watches().empty());
    const auto written = source.setLiked(1, 2);
    ASSERT_FALSE(written.ok());
    EXPECT_NE(written.error().localizedDescription.find("plain"), std::string::npos);
}

}  // namespace
}  // namespace tavrion
