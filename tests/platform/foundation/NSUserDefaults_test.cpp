#include "platform/foundation/NSUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "tests/platform/foundation/DefaultsTestFolder.h"

namespace tavrion {
namespace {

using ::testing::HasSubstr;

/// Counts how often a file of that name was put in place of another one.
class ReplacementCounter {
  public:
    explicit ReplacementCounter(const std::filesystem::path& file)
        : name_(file.filename().string()), descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(descriptor_, file.parent_path().c_str(), IN_MOVED_TO), 0);
    }
    ~ReplacementCounter() { ::close(descriptor_); }
    ReplacementCounter(const ReplacementCounter&) = delete;
    ReplacementCounter& operator=(const ReplacementCounter&) = delete;

    int count() {
        alignas(inotify_event) std::array<char, 16384> buffer{};
        ssize_t length = 0;
        while ((length = ::read(descriptor_, buffer.data(), buffer.size())) > 0) {
            for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                count_ += name_ == buffer.data() + at + sizeof event ? 1 : 0;
                at += sizeof event + event.len;
            }
        }
        return count_;
    }

  private:
    std::string name_;
    int descriptor_;
    int count_ = 0;
};

class NSUserDefaultsTest : public test::DefaultsTest {};

TEST_F(NSUserDefaultsTest, aMissingKeyReadsAsAbsentNoOrZero) {
    const auto defaults = opened();
    EXPECT_TRUE(defaults->objectForKey("key").isAbsent());
    EXPECT_FALSE(defaults->boolForKey("key"));
    EXPECT_EQ(defaults->integerForKey("key"), 0);
    EXPECT_EQ(defaults->dateForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->stringForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->dataForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->arrayForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->dictionaryForKey("key"), std::nullopt);
    EXPECT_TRUE(defaults->dictionaryRepresentation().empty());
}

TEST_F(NSUserDefaultsTest, readingAndRemovingWhatIsNotThereMakesNoFile) {
    const auto defaults = opened();
    defaults->objectForKey("key");
    defaults->removeObject("key");
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(NSUserDefaultsTest, keepsValuesOfEveryTypeFromOneOpeningToTheNext) {
    const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(794059200.1234567);
    const Value::Dictionary values{{"bool", true},
                                   {"integer", std::int64_t{-9007199254740993}},
                                   {"real", 0.1},
                                   {"date", date},
                                   {"text", "Señor 😀"},
                                   {"data", NSData{std::string("\0\xFF", 2)}},
                                   {"array", Value::Array{Value(1), Value("two")}},
                                   {"dictionary", Value::Dictionary{{"in", Value(date)}}}};
    {
        const auto writer = opened();
        for (const auto& [key, value] : values) {
            writer->setObject(key, value);
        }
        EXPECT_EQ(writer->dictionaryRepresentation(), values);
    }
    const auto reader = opened();
    EXPECT_EQ(reader->dictionaryRepresentation(), values);
    EXPECT_TRUE(reader->boolForKey("bool"));
    EXPECT_EQ(reader->integerForKey("integer"), -9007199254740993);
    EXPECT_EQ(reader->dateForKey("date"), date);
    EXPECT_EQ(reader->stringForKey("text"), "Señor 😀");
    EXPECT_EQ(reader->dataForKey("data"), (NSData{std::string("\0\xFF", 2)}));
    EXPECT_EQ(reader->arrayForKey("array"), (Value::Array{Value(1), Value("two")}));
    EXPECT_EQ(reader->dictionaryForKey("dictionary"), (Value::Dictionary{{"in", Value(date)}}));
}

TEST_F(NSUserDefaultsTest, readsNumbersAcrossTheirTypes) {
    const auto defaults = NSUserDefaults::inMemory();
    struct Row {
        Value value;
        bool asBool;
        std::int64_t asInteger;
    };
    using Integers = std::numeric_limits<std::int64_t>;
    for (const Row& row :
         {Row{true, true, 1}, Row{false, false, 0}, Row{0, false, 0}, Row{-3, true, -3},
          Row{2.9, true, 2}, Row{-2.9, true, -2}, Row{0.5, true, 0}, Row{0.0, false, 0},
          Row{1e300, true, Integers::max()}, Row{-1e300, true, Integers::min()},
          Row{std::nan(""), true, 0}, Row{"1", false, 0}, Row{NSDate(), false, 0},
          Row{Value::Array{Value(1)}, false, 0}}) {
        defaults->setObject("key", row.value);
        EXPECT_EQ(defaults->boolForKey("key"), row.asBool) << row.asInteger;
        EXPECT_EQ(defaults->integerForKey("key"), row.asInteger);
    }
}

TEST_F(NSUserDefaultsTest, aValueOfAnotherTypeReadsAsAbsent) {
    const auto defaults = NSUserDefaults::inMemory();
    defaults->setObject("key", 5.0);
    EXPECT_EQ(defaults->dateForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->stringForKey("key"), std::nullopt);
    EXPECT_EQ(defaults->dataForKey("key"), std::nullopt);
}

TEST_F(NSUserDefaultsTest, keysAreAnyText) {
    const std::string withZero("a\0b", 3);
    for (const std::string& key :
         {std::string(), std::string("Größe 😀"), std::string("<&>\"'"),
          std::string("com.example.a b/c"), std::string("broken \xFF"), withZero}) {
        opened()->setObject(key, "value of " + key);
        EXPECT_TRUE(opened()->stringForKey(key)) << key;
    }
    EXPECT_EQ(opened()->dictionaryRepresentation().size(), 6u);
}

TEST_F(NSUserDefaultsTest, textThatAListCannotHoldReadsTheSameBeforeAndAfterOpeningAgain) {
    const auto defaults = opened();
    defaults->setObject("key", std::string("a\xFFz\0end", 7));
    EXPECT_EQ(defaults->stringForKey("key"),
              "a\xEF\xBF\xBDz\xEF\xBF\xBD"
              "end");
    EXPECT_EQ(opened()->stringForKey("key"), defaults->stringForKey("key"));
}

TEST_F(NSUserDefaultsTest, removesAKeyFromMemoryAndFile) {
    const auto defaults = opened();
    defaults->setObject("a", 1);
    defaults->setObject("b", 2);
    defaults->setObject("c", 3);
    defaults->removeObject("a");
    defaults->setObject("b", Value());
    EXPECT_TRUE(defaults->objectForKey("a").isAbsent());
    EXPECT_EQ(opened()->dictionaryRepresentation(), (Value::Dictionary{{"c", Value(3)}}));
}

TEST_F(NSUserDefaultsTest, theSameValueAgainDoesNotTouchTheFile) {
    const auto defaults = opened();
    defaults->setObject("key", Value::Array{Value(1.5), Value("x")});
    ReplacementCounter counter(file);
    const auto before = status();
    defaults->setObject("key", Value::Array{Value(1.5), Value("x")});
    opened()->setObject("key", Value::Array{Value(1.5), Value("x")});
    defaults->removeObject("never there");
    EXPECT_EQ(counter.count(), 0);
    EXPECT_EQ(status().st_ino, before.st_ino);
    EXPECT_EQ(status().st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(NSUserDefaultsTest, anotherTypeOfTheSameNumberIsAnotherValue) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    defaults->setObject("key", true);
    EXPECT_EQ(opened()->objectForKey("key"), Value(true));
}

TEST_F(NSUserDefaultsTest, gatheredWritesAreOneWrite) {
    const auto defaults = opened();
    defaults->setObject("before", 1);
    ReplacementCounter counter(file);
    {
        const GatheredDefaultsWrites gathered(*defaults);
        for (int i = 0; i < 20; ++i) {
            defaults->setObject("key", i);
            const GatheredDefaultsWrites inner(*defaults);
            defaults->setObject("other " + std::to_string(i), i);
        }
        EXPECT_EQ(defaults->integerForKey("key"), 19);
        EXPECT_EQ(counter.count(), 0);
        EXPECT_TRUE(opened()->objectForKey("key").isAbsent());
    }
    EXPECT_EQ(counter.count(), 1);
    EXPECT_EQ(opened()->dictionaryRepresentation().size(), 22u);
}

TEST_F(NSUserDefaultsTest, gatheredWritesThatEndWhereTheyBeganWriteNothing) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    ReplacementCounter counter(file);
    defaults->beginGathering();
    defaults->setObject("key", 2);
    defaults->setObject("key", 1);
    defaults->setObject("new", 1);
    defaults->removeObject("new");
    defaults->endGathering();
    EXPECT_EQ(counter.count(), 0);
}

TEST_F(NSUserDefaultsTest, synchronizeWritesBeforeTheGatheringEnds) {
    const auto defaults = opened();
    const GatheredDefaultsWrites gathered(*defaults);
    defaults->setObject("key", 1);
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsTest, theEndOfTheObjectWritesWhatIsStillGathered) {
    {
        const auto defaults = opened();
        defaults->beginGathering();
        defaults->setObject("key", 1);
    }
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsTest, inMemoryThereIsNoFile) {
    const auto defaults = NSUserDefaults::inMemory();
    {
        const GatheredDefaultsWrites gathered(*defaults);
        defaults->setObject("key", 1);
    }
    defaults->setObject("gone", 1);
    defaults->removeObject("gone");
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(defaults->dictionaryRepresentation(), (Value::Dictionary{{"key", Value(1)}}));
    EXPECT_TRUE(NSUserDefaults::inMemory()->dictionaryRepresentation().empty());
}

TEST_F(NSUserDefaultsTest, thePluggedObjectIsTheStandardOne) {
    const auto defaults = NSUserDefaults::inMemory();
    const Port<NSUserDefaults>::Plug plug(*defaults);
    EXPECT_EQ(&NSUserDefaults::standardUserDefaults(), defaults.get());
}

TEST_F(NSUserDefaultsTest, aFirstFileIsForItsUserAloneAndLaterOnesKeepItsRights) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    EXPECT_EQ(status().st_mode & 07777, 0600u);
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    defaults->setObject("key", 2);
    EXPECT_EQ(status().st_mode & 07777, 0640u);
}

TEST_F(NSUserDefaultsTest, aLinkToTheFileStaysALink) {
    const auto target = folder / "elsewhere.plist";
    std::filesystem::create_symlink(target, file);
    std::ofstream(target) << R"(<plist version="1.0"><dict/></plist>)";
    opened()->setObject("key", 1);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsTest, aRelativePathIsFollowedOnce) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    const auto defaults = NSUserDefaults::open("defaults.plist");
    std::filesystem::current_path(before);
    ASSERT_TRUE(defaults.ok());
    defaults.value()->setObject("key", 1);
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsTest, leavesNothingButTheFileAndItsLock) {
    std::ofstream(folder / "defaults.plist.new") << std::string(10000, 'x');
    opened()->setObject("key", 1);
    EXPECT_TRUE(std::filesystem::exists(folder / "defaults.plist.lock"));
    EXPECT_FALSE(std::filesystem::exists(folder / "defaults.plist.new"));
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsTest, anXmlListIsReadAndBecomesABinaryOne) {
    writeBytes(
        R"(<plist version="1.0"><dict><key>a</key><date>2026-03-01T12:00:00Z</date></dict></plist>)");
    opened()->setObject("b", 1);
    EXPECT_EQ(bytes().substr(0, 8), "bplist00");
    EXPECT_EQ(opened()->dateForKey("a"), dateFromIsoText("2026-03-01T12:00:00Z"));
}

TEST_F(NSUserDefaultsTest, aDamagedFileIsAnErrorThatNamesItAndStaysAsItIs) {
    for (const char* content :
         {"", "not a list", "bplist00 cut off", "<plist version=\"1.0\"><array/></plist>"}) {
        writeBytes(content);
        const auto defaults = NSUserDefaults::open(file);
        ASSERT_FALSE(defaults.ok()) << content;
        EXPECT_THAT(defaults.error().localizedDescription, HasSubstr(file.string()));
        EXPECT_EQ(defaults.error().localizedDescription.find('\n'), std::string::npos);
        EXPECT_EQ(bytes(), content);
    }
}

TEST_F(NSUserDefaultsTest, whatIsNoFileIsAnError) {
    std::filesystem::create_directory(file);
    const auto fromFolder = NSUserDefaults::open(file);
    ASSERT_FALSE(fromFolder.ok());
    EXPECT_THAT(fromFolder.error().localizedDescription, HasSubstr("not a plain file"));
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_FALSE(NSUserDefaults::open(file).ok());
}

TEST_F(NSUserDefaultsTest, aFileThatGetsDamagedIsNotWrittenOverAndSynchronizeTells) {
    const auto defaults = opened();
    defaults->setObject("old", 1);
    const std::string good = bytes();
    writeBytes("damaged");
    EXPECT_EQ(defaults->integerForKey("old"), 1);
    defaults->setObject("new", 2);
    defaults->setObject("old", 3);
    EXPECT_EQ(defaults->dictionaryRepresentation(),
              (Value::Dictionary{{"new", Value(2)}, {"old", Value(3)}}));
    EXPECT_EQ(bytes(), "damaged");
    const auto told = defaults->synchronize();
    ASSERT_FALSE(told.ok());
    EXPECT_THAT(told.error().localizedDescription, HasSubstr(file.string()));

    writeBytes(good);
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(opened()->dictionaryRepresentation(),
              (Value::Dictionary{{"new", Value(2)}, {"old", Value(3)}}));
}

TEST_F(NSUserDefaultsTest, damageIsReportedAlsoWhenNothingWaitsToBeWritten) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    writeBytes("damaged");
    EXPECT_FALSE(defaults->synchronize().ok());
    EXPECT_FALSE(defaults->synchronize().ok());
}

class WriteThatFails : public NSUserDefaultsTest,
                       public ::testing::WithParamInterface<const char*> {};

TEST_P(WriteThatFails, keepsTheValueInMemoryTellsAndIsTriedAgain) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    const std::string before = bytes();
    const auto obstacle = folder / GetParam();
    std::filesystem::remove(obstacle);
    std::filesystem::create_directory(obstacle);
    defaults->setObject("key", 2);
    EXPECT_EQ(defaults->integerForKey("key"), 2);
    EXPECT_EQ(bytes(), before);
    const auto told = defaults->synchronize();
    ASSERT_FALSE(told.ok());
    EXPECT_THAT(told.error().localizedDescription, HasSubstr(file.string()));
    EXPECT_THAT(told.error().localizedDescription, HasSubstr("cannot be written"));

    std::filesystem::remove(obstacle);
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(opened()->integerForKey("key"), 2);
    EXPECT_TRUE(defaults->synchronize().ok());
}

TEST_P(WriteThatFails, isTriedAgainWhenTheSameValueIsSet) {
    const auto defaults = opened();
    const auto obstacle = folder / GetParam();
    std::filesystem::create_directory(obstacle);
    defaults->setObject("key", 2);
    std::filesystem::remove(obstacle);
    defaults->setObject("key", 2);
    EXPECT_EQ(opened()->integerForKey("key"), 2);
}

INSTANTIATE_TEST_SUITE_P(Obstacles, WriteThatFails,
                         ::testing::Values("defaults.plist.new", "defaults.plist.lock"));

TEST_F(NSUserDefaultsTest, aRemovedFileIsAnEmptyList) {
    const auto defaults = opened();
    defaults->setObject("key", 1);
    std::filesystem::remove(file);
    EXPECT_TRUE(defaults->dictionaryRepresentation().empty());
    defaults->setObject("other", 2);
    EXPECT_EQ(opened()->dictionaryRepresentation(), (Value::Dictionary{{"other", Value(2)}}));
}

TEST_F(NSUserDefaultsTest, aDamagedFileThatIsRemovedIsAnEmptyListToo) {
    const auto defaults = opened();
    writeBytes("damaged");
    EXPECT_FALSE(defaults->synchronize().ok());
    std::filesystem::remove(file);
    EXPECT_TRUE(defaults->synchronize().ok());
}

using NSUserDefaultsDeathTest = NSUserDefaultsTest;

TEST_F(NSUserDefaultsDeathTest, aReferenceAndAGatheringThatNeverBeganAreBrokenPromises) {
    const auto defaults = NSUserDefaults::inMemory();
    EXPECT_DEATH(defaults->setObject("key", ObjectReference{7}), "reference");
    EXPECT_DEATH(defaults->endGathering(), "gathering");
}

}  // namespace
}  // namespace tavrion
