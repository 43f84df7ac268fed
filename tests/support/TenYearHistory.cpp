#include "tests/support/TenYearHistory.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include "platform/foundation/NSDate.h"

namespace tavrion {
namespace {

/// The fields of a line of comma-separated values; a quoted field may hold commas and doubled
/// quotes.
std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += line[i++];
        } else if (line[i] == '"') {
            quoted = !quoted;
        } else if (line[i] == ',' && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += line[i];
        }
    }
    return fields;
}

}  // namespace

std::vector<TruePlay> truePlays(const std::filesystem::path& file, double from, double to) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(
        ::popen(("gzip -dc '" + file.string() + "'").c_str(), "r"), ::pclose);
    std::multimap<double, std::string> bySecond;
    std::string line;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        const std::vector<std::string> fields = fieldsOf(line);
        line.clear();
        const double unixTime = fields.size() == 4 ? std::atof(fields[0].c_str()) : 0;
        if (unixTime >= from && unixTime < to) {
            bySecond.emplace(
                NSDate::dateWithTimeIntervalSince1970(unixTime).timeIntervalSinceReferenceDate(),
                fields[1] + " / " + fields[3]);
        }
    }
    std::vector<TruePlay> plays;
    for (const auto& [second, song] : bySecond) {
        if (bySecond.count(second) == 1) {
            plays.push_back({second, song});
        }
    }
    return plays;
}

}  // namespace tavrion
