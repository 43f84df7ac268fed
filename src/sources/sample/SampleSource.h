// A library to try the program on: it is nowhere, counts plays all the same, and takes likes,
// playlists and a player's commands.
//
// Queue: any; changes may come while it is read. The location is the number of songs. Everything
// follows from that number and NSDate::date(), in the zone of the current calendar; only what the
// user changes is kept, in a file of its own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/mediaplayer/Source.h"
#include "platform/mediaplayer/SourceRegistry.h"
#include "sources/sample/SampleCatalogue.h"
#include "sources/sample/SampleMusicPlayer.h"
#include "sources/sample/SamplePlayer.h"
#include "sources/sample/SampleStateFile.h"

namespace tavrion {

class SampleSource final : public Source {
  public:
    static constexpr const char* kindName = "sample";
    static constexpr std::uint32_t usualSize = 3000;
    /// The library that everybody tries.
    static constexpr std::uint64_t usualSeed = 1;

    /// `songs` is from 1 to SampleCatalogue::mostSongs; `stateFile` keeps what the user changes.
    SampleSource(std::uint32_t songs, std::filesystem::path stateFile,
                 std::uint64_t seed = usualSeed);

    std::string kind() const override { return kindName; }
    std::string location() const override;
    SourceCapabilities capabilities() const override;
    Result<std::shared_ptr<const MediaSnapshot>> read() override;
    Result<void> setLiked(std::uint64_t persistentID, std::uint32_t likedState) override;
    Result<std::uint64_t> createPlaylist(const std::string& name,
                                         std::span<const std::uint64_t> songs) override;
    Result<void> addToPlaylist(std::uint64_t playlistID,
                               std::span<const std::uint64_t> songs) override;
    /// Of what the user changes, in whichever process; what is heard comes with the clock alone.
    Result<Observation> watch(Work changed) override;
    MPMusicPlayerController* player() override { return &musicPlayer_; }

    const SampleCatalogue& catalogue() const { return catalogue_; }
    SamplePlayer& samplePlayer() { return player_; }

  private:
    const SampleCatalogue catalogue_;
    const SampleStateFile file_;
    SamplePlayer player_;
    SampleMusicPlayer musicPlayer_;
};

/// Makes "sample" known. `stateFile` is where the user's changes are kept; its folder exists.
void registerSampleSource(SourceRegistry& registry, const std::filesystem::path& stateFile);

}  // namespace tavrion
