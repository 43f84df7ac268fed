// A page of the History screen for people: totals, chart, and the days with their plays.
//
// Queue: the main thread.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "apps/tavrionctl/AttributedText.h"
#include "timeviews/HistoryPage.h"
#include "timeviews/HistoryRows.h"

namespace tavrion::ctl {

/// The row of a play that is listed. The title that the library has becomes its record's.
HistoryRow shownRow(HistoryRows& rows, const StoreVersion& records, NSManagedObjectID play,
                    const std::optional<UIFont>& font, NSManagedObjectContext& context);

class HistoryText {
  public:
    /// Chart and rows are at most `width` columns wide; no line ends in blanks.
    HistoryText(const HistoryPage& page, std::string rangeTitle, std::size_t width,
                const TerminalAbilities& abilities);

    /// Calls `line` with one after the other, the rows read from `context`.
    void print(NSManagedObjectContext& context,
               const std::function<void(const std::string&)>& line) const;

  private:
    void printTop(const std::function<void(const std::string&)>& line) const;
    void printChart(const std::function<void(const std::string&)>& line) const;
    /// Whether one of its plays is an estimate.
    bool printDay(std::size_t section, NSManagedObjectContext& context, HistoryRows& rows,
                  const std::function<void(const std::string&)>& line) const;
    std::string lineOf(const HistoryRow& row) const;

    const HistoryPage& page_;
    const std::string rangeTitle_;
    const std::size_t width_;
    const TerminalAbilities& abilities_;
    /// Columns of a row.
    std::size_t time_ = 0;
    std::size_t title_ = 0;
    std::size_t artist_ = 0;
};

}  // namespace tavrion::ctl
