// One flipped byte in a store, at many places: whoever opens the file neither breaks nor writes,
// and tells what is found wrong in one line with what to do.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"
#include "tests/support/Environment.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t headerLength = 100;

/// A part of the file that holds one kind of thing.
struct Region {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Which pages a store has, and what is where on them.
class StoreMap {
  public:
    explicit StoreMap(const fs::path& file) : bytes_(contentOfFile(file)) {
        pageSize_ = number(16, 2);
        // A connection that may not write would leave an empty log beside the file.
        const auto database = SQLiteDatabase::open(file, SQLiteDatabase::Mode::readWrite);
        auto pages = database.value()->prepare("SELECT pageno, pagetype FROM dbstat");
        std::map<std::size_t, std::string> kinds;
        while (pages.value().step().value()) {
            kinds[static_cast<std::size_t>(pages.value().integer(0))] = pages.value().text(1);
        }
        for (std::size_t page = 1; page <= bytes_.size() / pageSize_; ++page) {
            const auto kind = kinds.find(page);
            addPage(page, kind == kinds.end() ? "free" : kind->second);
        }
    }

    /// Every kind of thing with the places where it is found.
    const std::map<std::string, std::vector<Region>>& regions() const { return regions_; }

  private:
    std::size_t number(std::size_t offset, std::size_t length) const {
        std::size_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            value = value << 8U | static_cast<unsigned char>(bytes_[offset + i]);
        }
        return value;
    }
    void add(const std::string& what, std::size_t begin, std::size_t end) {
        if (begin < end) {
            regions_[what].push_back({begin, end});
        }
    }
    void addPage(std::size_t page, const std::string& kind) {
        const std::size_t start = (page - 1) * pageSize_;
        const std::size_t end = start + pageSize_;
        if (kind != "leaf" && kind != "internal") {
            add(kind + " page", start, end);
            return;
        }
        const std::size_t header = page == 1 ? start + headerLength : start;
        const std::size_t pointers = header + (kind == "internal" ? 12 : 8);
        const std::size_t gap = pointers + 2 * number(header + 3, 2);
        const std::size_t content = start + number(header + 5, 2);
        const std::string owner = page == 1 ? "schema" : kind;
        add(owner + " page header", header, pointers);
        add(owner + " cell pointers", pointers, gap);
        add(owner + " gap", gap, content);
        add(owner + " cells", content, end);
    }

    std::string bytes_;
    std::size_t pageSize_ = 0;
    std::map<std::string, std::vector<Region>> regions_;
};

struct Flip {
    std::string where;
    std::size_t offset = 0;
    unsigned char mask = 0xFF;
};

class FlippedBytesTest : public testing::Test {
  protected:
    FlippedBytesTest() {
        makeStore();
        whole = contentOfFile(store());
    }

    fs::path store() const { return folder.path() / "data" / "Nerinda.sqlite"; }
    std::shared_ptr<NSManagedObjectContext> open() const {
        auto opened = NSPersistentStore::open(store(), nerindaModel(), nerindaStoreFormat());
        return opened ? NSManagedObjectContext::overStore(opened.value(), mainQueue) : nullptr;
    }
    /// A store with every kind of page: inner pages, leaves with holes, overflow, free pages.
    void makeStore() const;
    /// `count` places: half of the file's header, and all kinds of things on the pages in turn.
    std::vector<Flip> flips(std::size_t count) const;
    void write(const Flip& flip) const {
        std::string bytes = whole;
        bytes[flip.offset] = static_cast<char>(bytes[flip.offset] ^ flip.mask);
        std::ofstream(store(), std::ios::binary) << bytes;
    }
    /// What SQLite itself says about a copy of the file; empty when it finds nothing.
    std::string damageFoundBySQLite() const;
    /// Every file beside the store, with its content.
    std::map<std::string, std::string> filesNow() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(folder.path() / "data")) {
            files[entry.path().filename()] = contentOfFile(entry.path());
        }
        return files;
    }
    static std::size_t readEverything(NSManagedObjectContext& context);
    /// The files are as they were.
    void expectUntouched(const std::map<std::string, std::string>& before) const;
    void expectLibraryBears(const Flip& flip);
    void expectCommandBears(const Flip& flip, const std::vector<std::string>& command);
    void expectTold(const std::string& line) const {
        EXPECT_EQ(line.find('\n'), std::string::npos) << line;
        EXPECT_NE(line.find(store().string() + ": "), std::string::npos) << line;
        EXPECT_NE(line.find("; "), std::string::npos) << line << " says nothing to do";
    }

    TestFolder folder;
    NSNotificationCenter centre;
    Port<NSNotificationCenter>::Plug centrePlug{centre};
    std::shared_ptr<MainQueue> mainQueue = MainQueue::make();
    std::string whole;
    std::size_t refused = 0;
};

void FlippedBytesTest::makeStore() const {
    fs::create_directory(folder.path() / "data");
    // What a command makes; it would have something to say about any other.
    fs::permissions(folder.path() / "data", fs::perms::owner_all);
    const auto context = open();
    ASSERT_NE(context, nullptr);
    std::vector<PlayEvent> plays;
    for (int song = 0; song < 300; ++song) {
        PlaybackHistory history = PlaybackHistory::insert(*context);
        history.setTitle("Song number " + std::to_string(song));
        history.setArtist("An artist");
        history.setStoreID("S" + std::to_string(song));
        history.setDuration(180 + song);
        for (int play = 0; play < 12; ++play) {
            PlayEvent event = PlayEvent::insert(*context);
            event.setEventDate(
                NSDate::dateWithTimeIntervalSinceReferenceDate(7.9e8 + song * 0.25 + play * 86400));
            history.addPlaysObject(event);
            plays.push_back(event);
        }
    }
    Achievement award = Achievement::insert(*context);
    award.setIdentifier("rv_award.some");
    award.setDates(NSData{std::string(20000, 'd')});
    ASSERT_TRUE(context->save());
    for (std::size_t i = 0; i < plays.size(); ++i) {
        if ((i > 500 && i < 1700) || i % 7 == 0) {
            context->deleteObject(plays[i]);
        }
    }
    ASSERT_TRUE(context->save());
}

std::vector<Flip> FlippedBytesTest::flips(std::size_t count) const {
    std::mt19937 random(static_cast<unsigned>(numberFromEnvironment("TAVRION_SEED", 1)));
    const auto below = [&](std::size_t bound) { return random() % bound; };
    const auto anyMask = [&] { return static_cast<unsigned char>(1 + below(255)); };
    std::vector<Flip> flips;
    for (std::size_t offset = 0; offset < headerLength; offset += 2) {
        flips.push_back({"file header", offset + below(2), anyMask()});
    }
    const StoreMap map(store());
    for (auto kind = map.regions().begin(); flips.size() < count;) {
        const Region& region = kind->second[below(kind->second.size())];
        flips.push_back({kind->first, region.begin + below(region.end - region.begin), anyMask()});
        if (++kind == map.regions().end()) {
            kind = map.regions().begin();
        }
    }
    return flips;
}

std::string FlippedBytesTest::damageFoundBySQLite() const {
    const fs::path copy = folder.path() / "copy.sqlite";
    fs::copy_file(store(), copy, fs::copy_options::overwrite_existing);
    const auto database = SQLiteDatabase::open(copy, SQLiteDatabase::Mode::readWrite);
    const auto found = database.value()->quickCheck();
    return found ? found.value().value_or("") : found.error().localizedDescription;
}

std::size_t FlippedBytesTest::readEverything(NSManagedObjectContext& context) {
    std::size_t length = 0;
    for (const NSManagedObject& object :
         context.executeFetchRequest(PlaybackHistory::fetchRequest()).value()) {
        const PlaybackHistory song(object);
        for (const auto& text : {song.title(), song.artist(), song.albumID(), song.genre(),
                                 song.storeID(), song.libraryID()}) {
            length += text.value_or("").size();
        }
        length += song.plays().size();
        length += song.duration() > 0 && song.playCount() >= song.skipCount() ? 1 : 0;
    }
    for (const NSManagedObject& object :
         context.executeFetchRequest(PlayEvent::fetchRequest()).value()) {
        const PlayEvent event(object);
        length += isoTextOfDate(event.eventDate().value_or(NSDate::distantPast())).size();
        length += event.isInterpolated() && event.parentHistory() ? 1 : 0;
    }
    for (const NSManagedObject& object :
         context.executeFetchRequest(Achievement::fetchRequest()).value()) {
        const Achievement award(object);
        length += award.identifier().value_or("").size() + (award.tier() > 0 ? 1 : 0);
        length += award.dates() ? award.dates()->bytes.size() : 0;
    }
    return length;
}

void FlippedBytesTest::expectUntouched(const std::map<std::string, std::string>& before) const {
    const std::map<std::string, std::string> after = filesNow();
    for (const auto& [name, content] : after) {
        EXPECT_TRUE(before.contains(name)) << name << " is new, " << content.size() << " bytes";
        EXPECT_TRUE(!before.contains(name) || before.at(name) == content) << name << " was written";
    }
    EXPECT_EQ(after.size(), before.size());
}

void FlippedBytesTest::expectLibraryBears(const Flip& flip) {
    SCOPED_TRACE(flip.where + ", byte " + std::to_string(flip.offset));
    write(flip);
    const std::string found = damageFoundBySQLite();
    const auto before = filesNow();
    {
        const auto opened = NSPersistentStore::open(store(), nerindaModel(), nerindaStoreFormat());
        if (opened) {
            EXPECT_EQ(found, "") << "was not told";
            EXPECT_GT(readEverything(*NSManagedObjectContext::overStore(opened.value(), mainQueue)),
                      0U);
        } else {
            ++refused;
            expectTold(opened.error().localizedDescription);
        }
    }
    expectUntouched(before);
}

void FlippedBytesTest::expectCommandBears(const Flip& flip,
                                          const std::vector<std::string>& command) {
    SCOPED_TRACE(flip.where + ", byte " + std::to_string(flip.offset) + ": " + command.back());
    write(flip);
    const bool isDamaged = !damageFoundBySQLite().empty();
    const auto before = filesNow();
    std::vector<std::string> arguments{"--data-dir", (folder.path() / "data").string()};
    arguments.insert(arguments.end(), command.begin(), command.end());
    const ProgramEnd end = ProgramRun(TAVRIONCTL, arguments, folder.path()).wait();
    EXPECT_TRUE(end.status == 0 || end.status == 1) << end.told();
    EXPECT_EQ(end.errorLines(), end.status == 0 ? 0U : 1U) << end.told();
    const bool readsStore = command.front() != "library";
    EXPECT_FALSE(isDamaged && readsStore && end.status == 0) << "was not told";
    if (end.status == 1) {
        EXPECT_EQ(end.out, "");
        expectTold(end.err.substr(0, end.err.size() - 1));
    } else if (command.front() == "--json") {
        EXPECT_TRUE(nlohmann::json::accept(end.out));
    }
    expectUntouched(before);
}

TEST_F(FlippedBytesTest, theLibraryBearsThemAll) {
    for (const Flip& flip : flips(numberFromEnvironment("TAVRION_FLIPS", 200))) {
        expectLibraryBears(flip);
    }
    std::printf("%zu places were told and refused\n", refused);
    EXPECT_GT(refused, 0U);
}

TEST_F(FlippedBytesTest, theCommandsBearThem) {
    const std::vector<std::vector<std::string>> commands{{"plays"},
                                                         {"--json", "plays"},
                                                         {"histories"},
                                                         {"--json", "histories"},
                                                         {"library", "status"}};
    const std::vector<Flip> all = flips(numberFromEnvironment("TAVRION_FLIPS", 200));
    for (std::size_t i = 0; i < all.size(); i += 4) {
        expectCommandBears(all[i], commands[i / 4 % commands.size()]);
    }
}

}  // namespace
}  // namespace tavrion
