// A data directory with a library that is played on, and the true tavrionctl over it.
//
// Queue: the test's thread.
#pragma once

#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ListeningTruth.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestFolder.h"

namespace tavrion {

/// What tavrionctl tells of a store.
struct ToldRecords {
    /// Title and instant of every play.
    std::set<std::pair<std::string, double>> plays;
    std::map<std::string, std::size_t> playsOfTitles;
    /// A title or an instant that stands there twice, for the message of a failed expectation.
    std::vector<std::string> doubled;
    std::map<std::string, std::uint64_t> countsOfTitles;
};

class ScanHome {
  public:
    ScanHome(std::size_t songs, std::mt19937& random);

    const std::filesystem::path& data() const { return data_; }
    const std::filesystem::path& outputFolder() const { return folder_.path(); }
    /// Starts a command on the data directory, or on another one.
    std::unique_ptr<ProgramRun> start(const std::vector<std::string>& command,
                                      ProgramRun::Environment environment = {},
                                      const std::optional<std::filesystem::path>& data = {}) const;
    /// A scan that looks as the truth's clock says.
    std::vector<std::string> scanCommand() const;
    /// The environment that counts the changes of the disk in `report` and lets `trouble` happen.
    ProgramRun::Environment troubled(const std::filesystem::path& data,
                                     const std::filesystem::path& report,
                                     const std::string& trouble = "") const;
    /// A copy of the data directory and its cache as they are now, in the place of the last one of
    /// that name.
    std::filesystem::path copyOfData(const std::string& name) const;
    /// Asks for plays and histories; fails the test when that fails.
    ToldRecords ask(const std::filesystem::path& data) const;
    /// Writes the library as the truth has it now.
    void publish() const { truth.write(folder_.path() / "Library.xml"); }

    /// Whether the first scan is still to come.
    bool isNew = true;
    ListeningTruth truth;

  private:
    TestFolder folder_;
    std::filesystem::path data_;
};

}  // namespace tavrion
