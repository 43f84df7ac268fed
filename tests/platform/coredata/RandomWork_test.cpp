// Random work in contexts at three levels against a plain map that does the same.

#include <array>
#include <map>
#include <random>

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

struct PlainSong {
    std::string title;
    double length = 0;
    bool operator==(const PlainSong&) const = default;
};
using PlainSongs = std::map<NSManagedObjectID, PlainSong>;

class RandomWorkTest : public CoreDataTest {
  protected:
    static PlainSongs songsOf(NSManagedObjectContext& context) {
        PlainSongs songs;
        for (const NSManagedObject& object :
             context.executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Song"))
                 .value()) {
            songs[object.objectID()] = {Song(object).title().value_or(""), Song(object).length()};
        }
        return songs;
    }

    std::string anyTitle() { return "t" + std::to_string(random() % 40); }

    void workOnce(NSManagedObjectContext& context, PlainSongs& plain) {
        const auto victim = [&] {
            auto chosen = plain.begin();
            std::advance(chosen, static_cast<std::ptrdiff_t>(random() % plain.size()));
            return chosen;
        };
        switch (plain.empty() ? 0 : random() % 5) {
            case 0:
            case 1: {
                const std::string title = anyTitle();
                const double length = static_cast<double>(random() % 3);
                plain[Song::insert(context, title, length).objectID()] = {title, length};
                break;
            }
            case 2: {
                const auto song = victim();
                song->second.title = anyTitle();
                Song(NSManagedObject(context, song->first)).setTitle(song->second.title);
                break;
            }
            case 3: {
                const auto song = victim();
                song->second.length = static_cast<double>(random() % 3);
                Song(NSManagedObject(context, song->first)).setLength(song->second.length);
                break;
            }
            default: {
                const auto song = victim();
                context.deleteObject(NSManagedObject(context, song->first));
                plain.erase(song);
                break;
            }
        }
    }

    void expectSame(NSManagedObjectContext& context, const PlainSongs& plain) {
        // Before the fetches, which take the open changes into a version.
        for (int i = 0; i < 4; ++i) {
            const std::string title = anyTitle();
            const double length = static_cast<double>(random() % 3);
            std::vector<RecordCounter> expected;
            for (const auto& [id, song] : plain) {
                if (song == PlainSong{title, length}) {
                    expected.push_back(id.counter);
                }
            }
            const std::array<PropertyValue, 2> conditions{
                {{SongKey::title, std::string_view(title)}, {SongKey::length, length}}};
            ASSERT_EQ(context.recordsWhere(TestEntity::Song, conditions), expected);
            ASSERT_EQ(
                countOf(context, "Song",
                        NSPredicate::andPredicateWithSubpredicates(
                            {titled(title), NSPredicate::comparison(
                                                "length", NSPredicate::Operator::equal, length)})),
                expected.size());
        }
        ASSERT_EQ(songsOf(context), plain);
    }

    std::mt19937 random{20260301};
};

TEST_F(RandomWorkTest, threeLevelsOfContextsAgreeWithAPlainMap) {
    PlainSongs plain;
    for (int round = 0; round < 120; ++round) {
        const auto child = NSManagedObjectContext::below(main);
        const auto grandchild = NSManagedObjectContext::below(child);
        for (auto* const context : {main.get(), child.get(), grandchild.get()}) {
            context->performBlockAndWait([&] {
                for (int i = 0; i < 8; ++i) {
                    workOnce(*context, plain);
                    expectSame(*context, plain);
                }
            });
        }
        grandchild->performBlockAndWait([&] { save(*grandchild); });
        child->performBlockAndWait([&] {
            expectSame(*child, plain);
            save(*child);
        });
        expectSame(*main, plain);
        if (round % 10 == 0) {
            save(*main);
            reopen();
            expectSame(*main, plain);
        }
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(RandomWorkTest, tablesOfManyLeavesKeepEveryRecord) {
    PlainSongs plain;
    for (int i = 0; i < 9000; ++i) {
        const std::string title = "song " + std::to_string(i);
        plain[Song::insert(*main, title, i).objectID()] = {title, static_cast<double>(i)};
    }
    save(*main);
    for (int pass = 0; pass < 3; ++pass) {
        for (auto entry = plain.begin(); entry != plain.end();) {
            const auto choice = random() % 3;
            if (choice == 0) {
                main->deleteObject(NSManagedObject(*main, entry->first));
                entry = plain.erase(entry);
                continue;
            }
            if (choice == 1) {
                entry->second.title += "*";
                Song(NSManagedObject(*main, entry->first)).setTitle(entry->second.title);
            }
            ++entry;
        }
        ASSERT_EQ(songsOf(*main), plain);
        save(*main);
        reopen();
        ASSERT_EQ(songsOf(*main), plain);
    }
}

}  // namespace
}  // namespace tavrion
