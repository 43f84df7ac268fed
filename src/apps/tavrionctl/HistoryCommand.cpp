#include "apps/tavrionctl/HistoryCommand.h"

#include <fmt/format.h>

#include "apps/tavrionctl/HistoryText.h"
#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/PlayRows.h"
#include "apps/tavrionctl/RangeArgument.h"
#include "apps/tavrionctl/Session.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion::ctl {
namespace {

constexpr std::size_t columnsWithoutTerminal = 80;

const char* nameOf(HistoryChartForm form) {
    switch (form) {
        case HistoryChartForm::hours:
            return "hours";
        case HistoryChartForm::months:
            return "months";
        case HistoryChartForm::days:
            break;
    }
    return "days";
}

void writeBars(JsonWriter& json, const HistoryPage& page) {
    json.key("form").text(nameOf(historyChartForm(*page.range, *page.interval)));
    json.key("bars").beginArray();
    if (const auto& chart = page.statCell.chart) {
        for (const HistoryBar& bar : chart->bars) {
            json.beginObject().key("x").unsignedInteger(bar.x);
            json.key("label").text(chart->label(bar));
            json.key("seconds").number(bar.y);
            json.key("date").optionalInstant(bar.data).endObject();
        }
    }
    json.endArray();
}

void writeSections(JsonWriter& json, const HistoryPage& page, NSManagedObjectContext& context) {
    const auto records = context.snapshot();
    HistoryRows rows;
    json.key("sections").beginArray();
    for (std::size_t section = 1; section < page.list->numberOfSections(); ++section) {
        json.beginObject().key("title").text(page.titleForHeaderInSection(section).value_or(""));
        json.key("date").instant(*page.list->sectionIdentifier(section).get<NSDate>());
        json.key("plays").beginArray();
        for (std::size_t row = 0; row < page.list->numberOfItemsInSection(section); ++row) {
            const Value item = *page.list->itemIdentifierForIndexPath({section, row});
            const NSManagedObjectID id = NSManagedObjectID::of(*item.get<ObjectReference>());
            const HistoryRow shown = shownRow(rows, *records, id, std::nullopt, context);
            json.beginObject();
            writeKeysOfPlay(json, playRowOf(*records, id.counter));
            json.key("subtitle").optionalText(shown.subtitle);
            json.key("property");
            if (shown.property) {
                json.text(shown.property->textWithoutAttachments());
            } else {
                json.null();
            }
            json.endObject();
        }
        json.endArray().endObject();
    }
    json.endArray();
}

void writePage(const HistoryPage& page, NSManagedObjectContext& context) {
    JsonWriter json(stdout);
    json.beginObject().key("interval").beginObject();
    json.key("start").instant(page.interval->startDate());
    json.key("end").instant(page.interval->endDate()).endObject();
    json.key("songs").unsignedInteger(page.totals.songs);
    json.key("seconds").number(page.totals.seconds);
    json.key("songsText").text(page.statCell.playsLabel);
    json.key("secondsText").text(page.statCell.durationLabel);
    json.key("caption").text(page.statCell.durationCaption);
    writeBars(json, page);
    writeSections(json, page, context);
    json.endObject().finish();
}

void printPage(const HistoryPage& page, const std::string& rangeTitle,
               NSManagedObjectContext& context) {
    const TerminalAbilities abilities = TerminalAbilities::ofStandardOutput();
    HistoryText(page, rangeTitle, terminalColumns().value_or(columnsWithoutTerminal), abilities)
        .print(context, [](const std::string& line) { fmt::print("{}\n", line); });
}

/// Once in the life of a data directory.
void giveHint(Session& session) {
    if (session.defaults().boolForKey(HistoryDefaults::onboardingDateRange)) {
        return;
    }
    const Tooltip hint = RVHistoryTableViewViewController::dateRangeTooltip();
    session.say(hint.title + ": " + hint.text);
    hint.presented();
}

/// A bar that cannot be chosen is reported and leaves the page as it is.
Outcome chooseBar(std::int64_t bar, HistoryPage& page, Session& session,
                  NSManagedObjectContext& context) {
    if (!page.statCell.chart) {
        session.say("there is no bar to choose, because nothing was played in this time");
        return {};
    }
    const auto count = static_cast<std::int64_t>(page.statCell.chart->bars.size());
    if (bar < 0 || bar >= count) {
        return Outcome::usage(
            fmt::format("there is no bar {}; this range has the bars 0 to {}", bar, count - 1));
    }
    const HistoryBar entry = page.statCell.chart->bars[static_cast<std::size_t>(bar)];
    if (!page.highlight(entry)) {
        session.say(page.statCell.chart->isTapHighlightEnabled
                        ? fmt::format("bar {} is empty, so that it can't be chosen", bar)
                        : "the hours of a day can't be chosen");
        return {};
    }
    HistorySelection selection =
        HistorySelection::of(context.snapshot(), *entry.data, page.range->isCurrentYear());
    const PlayTotals totals = selection.totals;
    page.showSelection(std::move(selection));
    page.showSelectionTotals(totals);
    return {};
}

}  // namespace

void HistoryCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command(
        "history", "Show what was played in a range: totals, a chart, and the plays by days");
    described_.text("--range", range_, rangeHelp);
    described_.number("--bar", bar_, "Only the day or month of this bar, counted from 0")
        .valueName("X");
}

Outcome HistoryCommand::execute(Session& session) {
    std::optional<DateRange> asked;
    if (!range_.empty()) {
        auto parsed = dateRange(range_);
        if (!parsed) {
            return Outcome::usage(parsed.error().localizedDescription);
        }
        asked = std::move(parsed).value();
    }
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    // What is recorded can be shown without the library; songs then show title and artist alone.
    if (const Outcome opened = session.openLibrary(); !opened.isDone()) {
        session.say(opened.message);
    }
    if (!asked) {
        asked = DateRange::stored(DateRangeKey::history);
    }
    NSManagedObjectContext& context = *session.data().mainContext();
    HistoryPage page = HistoryPage::of(context.snapshot(), *asked);
    if (bar_) {
        if (Outcome chosen = chooseBar(*bar_, page, session, context); !chosen.isDone()) {
            return chosen;
        }
    }
    if (session.options().json) {
        writePage(page, context);
    } else {
        printPage(page, asked->title(), context);
    }
    giveHint(session);
    return {};
}

}  // namespace tavrion::ctl
