// The file of the sample library's state.
//
// Queue: any; several processes too, whose changes come one after the other. A missing file is an
// empty state. A file that cannot be read as one is reported in one line and stays as it is, also
// when something is to be changed. It is replaced whole or not at all.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/foundation/Result.h"
#include "sources/sample/SampleState.h"

namespace tavrion {

class SampleStateFile {
  public:
    explicit SampleStateFile(std::filesystem::path file) : file_(std::move(file)) {}

    const std::filesystem::path& path() const { return file_; }
    Result<SampleState> read() const;
    /// Reads, lets `change` do its work, and writes what has come of it.
    Result<void> change(const std::function<void(SampleState&)>& change) const;

  private:
    std::filesystem::path file_;
};

}  // namespace tavrion
