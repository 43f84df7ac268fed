#include "timeviews/HistoryChart.h"

#include <algorithm>
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSDateFormatter.h"
#include "recording/Plays.h"

namespace tavrion {
namespace {

constexpr std::size_t hoursOfDay = 24;
constexpr std::size_t monthsOfYear = 12;
constexpr std::size_t hourLabels = 6;
constexpr std::size_t mostDayLabels = 4;
constexpr std::size_t daysInView = 7;

/// The plays of a range with their lengths.
class BarSums {
  public:
    BarSums(const StoreVersion& records, const NSDateInterval& interval)
        : plays_(records, interval.startDate(), interval.endDate()), durations_(records, plays_) {}

    /// Calls `visit(date, seconds)` for each play, the oldest first.
    template <class Visit>
    void forEach(Visit visit) const {
        plays_.forEachByDate(
            [&](PlayDate date, RecordCounter play) { visit(date.seconds(), durations_.of(play)); });
    }
    /// Calls `visit(day, seconds)` for the plays of a day that follow one another; a day can come
    /// again.
    template <class Visit>
    void forEachDay(const NSTimeZone& zone, Visit visit) const {
        std::optional<CivilDay> current;
        double sum = 0;
        plays_.forEachByDay(
            zone,
            [&](CivilDay day) {
                if (current) {
                    visit(*current, std::exchange(sum, 0));
                }
                current = day;
            },
            [&](PlayDate, RecordCounter play) { sum += durations_.of(play); });
        if (current) {
            visit(*current, sum);
        }
    }

  private:
    const Plays plays_;
    const PlayDurations durations_;
};

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

void makeHours(HistoryChart& chart, const BarSums& plays) {
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    for (std::size_t hour = 0; hour < hoursOfDay; ++hour) {
        chart.bars.push_back({hour, 0, std::nullopt});
    }
    plays.forEach([&](double date, double seconds) {
        chart.bars[static_cast<std::size_t>(zone.civilTime(at(date)).hour)].y += seconds;
    });
    chart.labelCount = hourLabels;
    chart.leastVisible = chart.mostVisible = hoursOfDay;
}

/// The first instant of a month of the year, 12 being the January after it.
NSDate startOfMonth(const NSTimeZone& zone, std::int64_t year, std::size_t month) {
    return zone.startOfDay(
        CivilDay::fromDate(year + static_cast<std::int64_t>(month / monthsOfYear),
                           static_cast<int>(month % monthsOfYear) + 1, 1));
}

void makeMonths(HistoryChart& chart, const BarSums& plays) {
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    const std::int64_t year = zone.civilTime(NSDate::date()).year;
    std::vector<double> starts;
    std::vector<double> ends;
    for (std::size_t month = 0; month < monthsOfYear; ++month) {
        const NSDate start = startOfMonth(zone, year, month);
        // The first day of a month belongs to the bar of the month before, too.
        const NSDate end = Extended::endOfDay(startOfMonth(zone, year, month + 1));
        chart.bars.push_back({month, 0, start});
        starts.push_back(start.timeIntervalSinceReferenceDate());
        ends.push_back(end.timeIntervalSinceReferenceDate());
    }
    plays.forEach([&](double date, double seconds) {
        const auto begun = static_cast<std::size_t>(
            std::lower_bound(starts.begin(), starts.end(), date) - starts.begin());
        for (std::size_t month = begun; month > 0 && date < ends[month - 1]; --month) {
            chart.bars[month - 1].y += seconds;
        }
    });
    chart.isTapHighlightEnabled = true;
    chart.labelCount = monthsOfYear;
    chart.leastVisible = chart.mostVisible = monthsOfYear;
}

void makeDays(HistoryChart& chart, const BarSums& plays, const NSDateInterval& interval) {
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    const std::vector<CalendarDay> days = calendarDaysOf(interval, zone);
    chart.bars.reserve(days.size());
    for (const CalendarDay& day : days) {
        chart.bars.push_back({chart.bars.size(), 0, day.start});
    }
    plays.forEachDay(zone, [&](CivilDay day, double seconds) {
        const auto found =
            std::lower_bound(days.begin(), days.end(), day,
                             [](const CalendarDay& a, CivilDay b) { return a.day < b; });
        if (found != days.end() && found->day == day) {
            chart.bars[static_cast<std::size_t>(found - days.begin())].y += seconds;
        }
    });
    chart.isTapHighlightEnabled = true;
    chart.labelCount = std::min(days.size(), mostDayLabels);
    chart.leastVisible = std::min(days.size(), daysInView);
    chart.mostVisible = daysInView;
    chart.movedToX = days.size();
}

std::string monthName(NSDate date) {
    NSDateFormatter formatter;
    formatter.setDateFormat("MMM");
    return formatter.stringFromDate(date);
}

}  // namespace

std::string HistoryChart::label(const HistoryBar& bar) const {
    switch (form) {
        case HistoryChartForm::hours:
            return bar.x == 0 ? std::string() : RVMetadataManager::formattedHour(bar.x);
        case HistoryChartForm::months:
            return monthName(*bar.data);
        case HistoryChartForm::days:
            break;
    }
    return RVMetadataManager::formattedDate(bar.data, true);
}

HistoryChartForm historyChartForm(const DateRange& range, const NSDateInterval& interval) {
    if (NSCalendar::currentCalendar().isDateInSameDay(interval.startDate(), interval.endDate())) {
        return HistoryChartForm::hours;
    }
    return range.isCurrentYear() ? HistoryChartForm::months : HistoryChartForm::days;
}

HistoryChart historyChart(const StoreVersion& records, const DateRange& range,
                          const NSDateInterval& interval) {
    const BarSums plays(records, interval);
    HistoryChart chart;
    chart.form = historyChartForm(range, interval);
    switch (chart.form) {
        case HistoryChartForm::hours:
            makeHours(chart, plays);
            break;
        case HistoryChartForm::months:
            makeMonths(chart, plays);
            break;
        case HistoryChartForm::days:
            makeDays(chart, plays, interval);
            break;
    }
    return chart;
}

NSDateInterval spanOfHistoryBar(NSDate date, bool isCurrentYear) {
    if (!isCurrentYear) {
        return {Extended::startOfDay(date), Extended::endOfDay(date)};
    }
    const NSCalendar calendar = NSCalendar::currentCalendar();
    const CivilTime time = calendar.timeZone().civilTime(date);
    const bool isDecember = time.month == 12;
    const NSTimeZone& zone = calendar.timeZone();
    return {zone.startOfDay(CivilDay::fromDate(time.year, time.month, 1)),
            zone.startOfDay(isDecember ? CivilDay::fromDate(time.year + 1, 1, 1)
                                       : CivilDay::fromDate(time.year, time.month + 1, 1))};
}

}  // namespace tavrion
