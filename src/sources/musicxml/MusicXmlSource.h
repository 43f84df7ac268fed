// The library of a player that exports a "Library.xml".
//
// Queue: one caller at a time. The location is the file. The source can only read; a changed file
// is replaced whole by its owner, so watch its directory.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/mediaplayer/Source.h"
#include "platform/mediaplayer/SourceRegistry.h"

namespace tavrion {

class MusicXmlSource final : public Source {
  public:
    static constexpr const char* kindName = "music-xml";

    explicit MusicXmlSource(std::filesystem::path file) : file_(std::move(file)) {}

    std::string kind() const override { return kindName; }
    std::string location() const override { return file_.string(); }
    /// Which file it is, its size and its time.
    std::optional<std::string> stamp() const override;
    Result<std::shared_ptr<const MediaSnapshot>> read() override;
    Result<Observation> watch(Work changed) override;

  private:
    std::filesystem::path file_;
};

/// Makes "music-xml" known.
void registerMusicXmlSource(SourceRegistry& registry);

}  // namespace tavrion
