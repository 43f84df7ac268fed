// A small model and a store in a directory of its own, for the tests of this room.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {

namespace SongKey {
enum : PropertyIndex { title, length, count, added, cover, hidden };
}
namespace PlayKey {
enum : PropertyIndex { date, estimated, song };
}
namespace TestEntity {
enum : EntityIndex { Song, Event, Play };
}

inline std::shared_ptr<const NSManagedObjectModel> testModel() {
    using Type = NSAttributeType;
    const std::vector<NSPropertyDescription> event{
        {"date", Type::date}, {"estimated", Type::boolean}, {"song", Type::reference, "Song"}};
    return std::make_shared<const NSManagedObjectModel>(
        "Test", std::vector<NSEntityDescription>{
                    {.name = "Song",
                     .properties = {{"title", Type::string},
                                    {"length", Type::real},
                                    {"count", Type::integer},
                                    {"added", Type::date},
                                    {"cover", Type::binaryData},
                                    {"hidden", Type::boolean}},
                     .indexes = {{{SongKey::title, SongKey::length}}, {{SongKey::title}}}},
                    {.name = "Event", .isAbstract = true, .properties = event},
                    {.name = "Play",
                     .superentity = "Event",
                     .properties = event,
                     .indexes = {{{PlayKey::date}}, {{PlayKey::song}}}}});
}

inline StoreFormat testFormat() {
    return {.applicationID = 0x1234, .version = 1, .programName = "Test"};
}

class Song : public NSManagedObject {
  public:
    explicit Song(const NSManagedObject& object) : NSManagedObject(object) {}
    static Song insert(NSManagedObjectContext& context, const std::string& title,
                       double length = 1) {
        Song song(context.insertObject(TestEntity::Song));
        song.setTitle(title);
        song.setReal(SongKey::length, length);
        return song;
    }
    std::optional<std::string> title() const { return text(SongKey::title); }
    void setTitle(const std::optional<std::string_view>& value) { setText(SongKey::title, value); }
    double length() const { return real(SongKey::length); }
    void setLength(double value) { setReal(SongKey::length, value); }
    std::int64_t count() const { return integer(SongKey::count); }
    void setCount(std::int64_t value) { setInteger(SongKey::count, value); }
    std::optional<NSDate> added() const { return date(SongKey::added); }
    void setAdded(std::optional<NSDate> value) { setDate(SongKey::added, value); }
    std::optional<NSData> cover() const { return data(SongKey::cover); }
    void setCover(std::optional<NSData> value) { setData(SongKey::cover, std::move(value)); }
    bool hidden() const { return boolean(SongKey::hidden); }
    void setHidden(bool value) { setBoolean(SongKey::hidden, value); }
    std::vector<NSManagedObject> plays() const {
        return referringObjects(TestEntity::Play, PlayKey::song);
    }
};

class Play : public NSManagedObject {
  public:
    explicit Play(const NSManagedObject& object) : NSManagedObject(object) {}
    static Play insert(NSManagedObjectContext& context, double seconds,
                       const std::optional<Song>& of = std::nullopt) {
        Play play(context.insertObject(TestEntity::Play));
        play.setDate(PlayKey::date, NSDate::dateWithTimeIntervalSinceReferenceDate(seconds));
        if (of) {
            play.setReference(PlayKey::song, of->objectID());
        }
        return play;
    }
    std::optional<NSDate> when() const { return date(PlayKey::date); }
    void setWhen(std::optional<NSDate> value) { setDate(PlayKey::date, value); }
    std::optional<NSManagedObject> song() const { return reference(PlayKey::song); }
};

class CoreDataTest : public testing::Test {
  protected:
    CoreDataTest() : mainQueue(MainQueue::make()) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrion-coredata-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
        openMain();
    }
    ~CoreDataTest() override {
        main.reset();
        mainQueue->runUntilIdle();
        std::filesystem::remove_all(directory);
    }

    std::filesystem::path file() const { return directory / "store.sqlite"; }
    void openMain() {
        auto store = NSPersistentStore::open(file(), testModel(), testFormat());
        ASSERT_TRUE(store) << store.error().localizedDescription;
        main = NSManagedObjectContext::overStore(store.value(), mainQueue);
    }
    /// As a new process would find the store.
    void reopen() {
        main.reset();
        openMain();
    }
    static void save(NSManagedObjectContext& context) {
        const Result<void> saved = context.save();
        ASSERT_TRUE(saved) << saved.error().localizedDescription;
    }
    static std::vector<std::string> titles(NSManagedObjectContext& context) {
        std::vector<std::string> found;
        for (const NSManagedObject& object :
             context.executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Song"))
                 .value()) {
            found.push_back(Song(object).title().value_or("(absent)"));
        }
        return found;
    }
    static NSPredicate titled(const std::string& title) {
        return NSPredicate::comparison("title", NSPredicate::Operator::equal, title);
    }
    static std::size_t countOf(NSManagedObjectContext& context, const std::string& entity,
                               std::optional<NSPredicate> predicate = std::nullopt) {
        NSFetchRequest request = NSFetchRequest::fetchRequestWithEntityName(entity);
        request.predicate = std::move(predicate);
        return context.countForFetchRequest(request).value();
    }
    static NSDate at(double seconds) {
        return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    }

    NSNotificationCenter centre;
    Port<NSNotificationCenter>::Plug centrePlug{centre};
    std::shared_ptr<MainQueue> mainQueue;
    std::filesystem::path directory;
    std::shared_ptr<NSManagedObjectContext> main;
};

}  // namespace tavrion
