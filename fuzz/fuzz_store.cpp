// Lets any bytes be a store: opening it reads the records, after which they can be asked for and
// added to, or refuses the file in one line and leaves it as it is.
#include <cstdint>

#include "fuzz/ScratchFile.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"

using namespace tavrion;
using fuzz::require;
using fuzz::requireOneLine;

namespace {

/// Looks at every value of every record; the number only keeps the compiler from leaving it out.
std::size_t readEverything(NSManagedObjectContext& context) {
    std::size_t sum = 0;
    for (const NSManagedObject& object :
         context.executeFetchRequest(PlaybackHistory::fetchRequest()).value()) {
        const PlaybackHistory song(object);
        sum += song.title().value_or("").size() + song.artist().value_or("").size() +
               song.albumID().value_or("").size() + song.genre().value_or("").size() +
               song.storeID().value_or("").size() + song.libraryID().value_or("").size() +
               song.plays().size();
        sum += song.duration() > 1 && song.playCount() > song.skipCount() ? 1 : 0;
    }
    for (const NSManagedObject& object :
         context.executeFetchRequest(PlayEvent::fetchRequest()).value()) {
        const PlayEvent event(object);
        sum += isoTextOfDate(event.eventDate().value_or(NSDate::distantPast())).size();
        sum += event.isInterpolated() && event.parentHistory() ? 1 : 0;
    }
    for (const NSManagedObject& object :
         context.executeFetchRequest(Achievement::fetchRequest()).value()) {
        const Achievement award(object);
        sum += award.identifier().value_or("").size() + (award.dates() ? 1 : 0);
    }
    return sum;
}

void add(NSManagedObjectContext& context) {
    PlaybackHistory song = PlaybackHistory::insert(context);
    song.setTitle("Song");
    PlayEvent event = PlayEvent::insert(context);
    event.setEventDate(NSDate::dateWithTimeIntervalSinceReferenceDate(1));
    song.addPlaysObject(event);
    const Result<void> saved = context.save();
    if (!saved) {
        requireOneLine(saved.error().localizedDescription);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFile file("Nerinda.sqlite");
    static NSNotificationCenter centre;
    static const Port<NSNotificationCenter>::Plug centrePlug(centre);
    static const std::shared_ptr<MainQueue> mainQueue = MainQueue::make();
    for (const auto& entry : std::filesystem::directory_iterator(file.folder())) {
        std::filesystem::remove(entry.path());
    }
    file.write(data, size);
    auto opened = NSPersistentStore::open(file.path(), nerindaModel(), nerindaStoreFormat());
    if (!opened) {
        requireOneLine(opened.error().localizedDescription);
        require(file.content() == std::string(reinterpret_cast<const char*>(data), size));
        return 0;
    }
    const auto context = NSManagedObjectContext::overStore(std::move(opened).value(), mainQueue);
    readEverything(*context);
    add(*context);
    readEverything(*context);
    return 0;
}
