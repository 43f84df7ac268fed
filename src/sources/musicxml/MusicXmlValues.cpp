#include "sources/musicxml/MusicXmlValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tavrion {

namespace {

constexpr double secondsOfDay = 86400.0;

/// The two or four digits at `start`, or -1.
int digitsAt(std::string_view text, std::size_t start, std::size_t count) {
    int number = 0;
    for (std::size_t i = start; i < start + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return -1;
        }
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

bool isLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysOfMonth(int year, int month) {
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

/// Days from 2001-01-01; leap days are counted in years that begin in March.
int daysSince2001(int year, int month, int day) {
    const int marchYear = month > 2 ? year : year - 1;
    const int marchMonth = month > 2 ? month - 3 : month + 9;
    const int leapDays = marchYear / 4 - marchYear / 100 + marchYear / 400;
    constexpr int daysBefore2001 = 730792;
    return marchYear * 365 + leapDays + (marchMonth * 153 + 2) / 5 + day - daysBefore2001;
}

bool isWithinADayOf(NSDate date, int year, int month, int day) {
    const double days = std::floor(date.timeIntervalSinceReferenceDate() / secondsOfDay);
    return std::abs(days - daysSince2001(year, month, day)) <= 1.0;
}

}  // namespace

std::optional<std::int64_t> musicXmlInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint64_t> musicXmlPersistentID(std::string_view text) {
    constexpr std::size_t mostDigits = 16;
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number, 16);
    const bool isRead = error == std::errc() && stopped == end && text.size() <= mostDigits;
    return isRead ? std::optional(number) : std::nullopt;
}

std::optional<NSDate> musicXmlDate(std::string_view text) {
    constexpr std::string_view form = "YYYY-MM-DDTHH:MM:SSZ";
    if (text.size() != form.size()) {
        return std::nullopt;
    }
    for (const std::size_t place : {4U, 7U, 10U, 13U, 16U, 19U}) {
        if (text[place] != form[place]) {
            return std::nullopt;
        }
    }
    const int year = digitsAt(text, 0, 4);
    const int month = digitsAt(text, 5, 2);
    const int day = digitsAt(text, 8, 2);
    const int hour = digitsAt(text, 11, 2);
    const int minute = digitsAt(text, 14, 2);
    const int second = digitsAt(text, 17, 2);
    if (year < 1 || month < 1 || month > 12 || day < 1 || day > daysOfMonth(year, month) ||
        hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
        return std::nullopt;
    }
    return NSDate::dateWithTimeIntervalSinceReferenceDate(
        daysSince2001(year, month, day) * secondsOfDay + hour * 3600.0 + minute * 60.0 + second);
}

std::string musicXmlTextForPeople(std::string_view text) {
    constexpr std::size_t most = 40;
    std::size_t length = std::min(text.size(), most);
    while (length > 0 && length < text.size() &&
           (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    std::string line(text.substr(0, length));
    for (char& byte : line) {
        const auto code = static_cast<unsigned char>(byte);
        byte = code < 0x20 || code == 0x7F ? ' ' : byte;
    }
    return length < text.size() ? line + "..." : line;
}

bool isNeverInMusicXml(NSDate date) {
    return isWithinADayOf(date, 1904, 1, 1) || isWithinADayOf(date, 2040, 2, 6);
}

}  // namespace tavrion
