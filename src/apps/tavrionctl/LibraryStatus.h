// What tavrionctl library says about the chosen library.
//
// Queue: the main thread.
#pragma once

namespace tavrion {
struct LibraryChoice;
}

namespace tavrion::ctl {

class Session;

/// Songs and playlists of the published library, as a user counts them, what it can do, and the
/// songs that came with one identifier.
void writePublishedStatus(const Session& session, const LibraryChoice& choice);
void writeStatusWithoutLibrary(const Session& session);

}  // namespace tavrion::ctl
