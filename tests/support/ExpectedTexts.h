// Reads a table of expected texts: a file of lines parted by tabs, with one column a locale.
//
// Queue: the test's. Lines that are empty or start with # are for people. The first other line
// names the columns. "=" in a locale's column is the text of en_US; marks that one does not see are
// spelled ⟨NNBSP⟩ and the like, see the files.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavrion::test {

inline constexpr std::array expectedLocales{"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG"};

struct ExpectedText {
    int line = 0;
    std::map<std::string, std::string> cells;

    /// Of a column; a column that the table does not have is a mistake in the test.
    const std::string& cell(const std::string& column) const { return cells.at(column); }
    std::string inLocale(const std::string& locale) const {
        const std::string& text = cell(locale);
        return withMarks(text == "=" ? cell("en_US") : text);
    }

  private:
    static std::string withMarks(std::string text) {
        static constexpr std::array<std::pair<const char*, const char*>, 4> marks{
            {{"⟨NNBSP⟩", "\u202F"},
             {"⟨NBSP⟩", "\u00A0"},
             {"⟨RLM⟩", "\u200F"},
             {"⟨ALM⟩", "\u061C"}}};
        for (const auto& [name, mark] : marks) {
            for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name)) {
                text.replace(at, std::string(name).size(), mark);
            }
        }
        return text;
    }
};

inline std::vector<std::string> cutAt(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

/// The table tests/data/<name>.
inline std::vector<ExpectedText> expectedTexts(const std::string& name) {
    std::ifstream file(std::filesystem::path(TAVRION_SOURCE_DIR) / "tests" / "data" / name);
    EXPECT_TRUE(file.good()) << "tests/data/" << name << " is not there";
    std::vector<std::string> columns;
    std::vector<ExpectedText> rows;
    std::string text;
    for (int line = 1; std::getline(file, text); ++line) {
        if (text.empty() || text.starts_with('#')) {
            continue;
        }
        std::vector<std::string> cells = cutAt(text, '\t');
        if (columns.empty()) {
            columns = std::move(cells);
            continue;
        }
        EXPECT_LE(cells.size(), columns.size()) << name << ":" << line << ": too many columns";
        cells.resize(columns.size());
        ExpectedText row{line, {}};
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row.cells[columns[i]] = cells[i];
        }
        rows.push_back(std::move(row));
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

}  // namespace tavrion::test
