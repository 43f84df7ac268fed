#include "platform/foundation/SystemZone.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <map>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSNumberFormatter.h"
#include "platform/foundation/NSString+Entended.h"

namespace tavrion {
namespace {

std::string nameOf(const std::optional<NSTimeZone>& zone) {
    return zone ? zone->name() : "absent";
}

/// A folder of its own, removed at the end.
class OwnFolder {
  public:
    OwnFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "zone-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~OwnFolder() { std::filesystem::remove_all(path_); }
    std::filesystem::path file(const char* name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// Sets variables for the life of the scope; a null value takes one out.
class Environment {
  public:
    explicit Environment(const std::map<std::string, const char*>& variables) {
        for (const auto& [name, value] : variables) {
            const char* before = std::getenv(name.c_str());
            before_[name] = before == nullptr ? std::nullopt : std::optional<std::string>(before);
            set(name, value);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : before_) {
            set(name, value ? value->c_str() : nullptr);
        }
    }

  private:
    static void set(const std::string& name, const char* value) {
        if (value == nullptr) {
            ::unsetenv(name.c_str());
        } else {
            ::setenv(name.c_str(), value, 1);
        }
    }
    std::map<std::string, std::optional<std::string>> before_;
};

TEST(SystemZone, theVariableNamesAZoneOrItsFile) {
    EXPECT_EQ(nameOf(SystemZone::fromVariable("Europe/Berlin")), "Europe/Berlin");
    EXPECT_EQ(nameOf(SystemZone::fromVariable(":Europe/Berlin")), "Europe/Berlin");
    EXPECT_EQ(nameOf(SystemZone::fromVariable(":/usr/share/zoneinfo/Asia/Kolkata")),
              "Asia/Kolkata");
    EXPECT_EQ(nameOf(SystemZone::fromVariable("")), "UTC");
    EXPECT_EQ(nameOf(SystemZone::fromVariable(":")), "UTC");
    EXPECT_EQ(nameOf(SystemZone::fromVariable("Europe/Nowhere")), "absent");
    EXPECT_EQ(nameOf(SystemZone::fromVariable("/somewhere/Europe/Berlin")), "absent");
    EXPECT_EQ(nameOf(SystemZone::fromVariable(nullptr)), "absent");
}

TEST(SystemZone, aLinkLeadsToAZone) {
    const OwnFolder folder;
    std::filesystem::create_symlink("../usr/share/zoneinfo/America/Havana", folder.file("link"));
    std::filesystem::create_symlink("/somewhere/else", folder.file("other"));
    EXPECT_EQ(nameOf(SystemZone::fromLink(folder.file("link"))), "America/Havana");
    EXPECT_EQ(nameOf(SystemZone::fromLink(folder.file("other"))), "absent");
    EXPECT_EQ(nameOf(SystemZone::fromLink(folder.file("missing"))), "absent");
}

TEST(SystemZone, aFileNamesAZone) {
    const OwnFolder folder;
    std::ofstream(folder.file("timezone")) << "Pacific/Apia\n";
    std::ofstream(folder.file("other")) << "Pacific/Nowhere\n";
    EXPECT_EQ(nameOf(SystemZone::fromFile(folder.file("timezone"))), "Pacific/Apia");
    EXPECT_EQ(nameOf(SystemZone::fromFile(folder.file("other"))), "absent");
    EXPECT_EQ(nameOf(SystemZone::fromFile(folder.file("missing"))), "absent");
}

TEST(SystemZone, theFirstValueGivesTheLocale) {
    EXPECT_EQ(SystemZone::localeName({"de_DE.UTF-8@euro", "fr_FR", "ja_JP"}), "de_DE");
    EXPECT_EQ(SystemZone::localeName({nullptr, "fr_FR.UTF-8", "ja_JP"}), "fr_FR");
    EXPECT_EQ(SystemZone::localeName({"", nullptr, "sv_SE@euro"}), "sv_SE");
    EXPECT_EQ(SystemZone::localeName({"C", "fr_FR", "ja_JP"}), "en_US");
    EXPECT_EQ(SystemZone::localeName({"C.UTF-8"}), "en_US");
    EXPECT_EQ(SystemZone::localeName({"POSIX"}), "en_US");
    EXPECT_EQ(SystemZone::localeName({nullptr, "", nullptr}), "en_US");
}

TEST(Regional, comesFromTheEnvironment) {
    const Environment environment({{"TZ", ":Africa/Cairo"},
                                   {"LC_ALL", nullptr},
                                   {"LC_TIME", nullptr},
                                   {"LC_COLLATE", nullptr},
                                   {"LC_MESSAGES", nullptr},
                                   {"LANG", "fr_FR.UTF-8"}});
    const Regional region = Regional::fromEnvironment();
    EXPECT_EQ(region.timeZone().name(), "Africa/Cairo");
    EXPECT_EQ(region.locales(), (Locales{"fr_FR", "fr_FR", "fr_FR"}));
    EXPECT_EQ(region.locale(), "fr_FR");
}

TEST(Regional, eachVariableDecidesItsOwnMatter) {
    const Environment environment({{"TZ", "UTC"},
                                   {"LC_ALL", nullptr},
                                   {"LC_TIME", "de_DE.UTF-8"},
                                   {"LC_COLLATE", "da_DK.UTF-8"},
                                   {"LC_MESSAGES", "C"},
                                   {"LANG", "fr_FR.UTF-8"}});
    const Regional region = Regional::fromEnvironment();
    EXPECT_EQ(region.locales(), (Locales{"de_DE", "da_DK", "en_US"}));
    EXPECT_EQ(region.locale(), "de_DE");
    EXPECT_EQ(region.orderLocale(), "da_DK");
}

TEST(Regional, lcAllGoesBeforeTheOthers) {
    const Environment environment({{"TZ", "UTC"},
                                   {"LC_ALL", "th_TH.UTF-8"},
                                   {"LC_TIME", "de_DE.UTF-8"},
                                   {"LC_COLLATE", "da_DK.UTF-8"},
                                   {"LC_MESSAGES", "sv_SE.UTF-8"},
                                   {"LANG", "fr_FR.UTF-8"}});
    EXPECT_EQ(Regional::fromEnvironment().locales(), (Locales{"th_TH", "th_TH", "th_TH"}));
}

/// Swedish puts Ä behind Z, German beside A: names go by the order, numbers by the formats.
TEST(Regional, namesAreOrderedByTheirOwnLocale) {
    Regional region(NSTimeZone(), Locales{"de_DE", "sv_SE", "en_US"});
    const Port<Regional>::Plug plug(region);
    EXPECT_EQ(Entended::smartAlphabeticalCompare("Ära", "Zebra"), NSComparisonResult::descending);
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::decimal).stringFromNumber(1.5), "1,5");
}

}  // namespace
}  // namespace tavrion
