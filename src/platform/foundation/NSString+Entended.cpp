#include <unicode/coll.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <map>
#include <memory>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSString+Entended.h"
#include "platform/foundation/SearchFolding.h"

namespace tavrion {

namespace {

/// The collators of one locale. Nothing changes them after they were made, and ICU lets any number
/// of threads call the const functions of one object.
struct Collators {
    /// The order: letters and accents, digits as numbers.
    std::unique_ptr<const icu::Collator> order;
    /// Decides between what the order takes for the same: also case and width.
    std::unique_ptr<const icu::Collator> tieBreak;
    /// As the order, but digits are signs like others.
    std::unique_ptr<const icu::Collator> digitByDigit;
};

std::unique_ptr<const icu::Collator> openCollator(const std::string& locale, bool isTieBreak,
                                                  bool readsNumbers) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale(locale.c_str()), status));
    precondition(U_SUCCESS(status) && collator, "ICU has its collation data");
    const auto set = [&](UColAttribute attribute, UColAttributeValue value) {
        collator->setAttribute(attribute, value, status);
    };
    set(UCOL_STRENGTH, isTieBreak ? UCOL_TERTIARY : UCOL_SECONDARY);
    set(UCOL_CASE_LEVEL, isTieBreak ? UCOL_ON : UCOL_OFF);
    set(UCOL_NUMERIC_COLLATION, readsNumbers ? UCOL_ON : UCOL_OFF);
    // Said for every locale, since some leave out spaces and punctuation by default.
    set(UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE);
    set(UCOL_NORMALIZATION_MODE, UCOL_ON);
    precondition(U_SUCCESS(status), "ICU takes the collation attributes");
    return collator;
}

/// All locales that were asked for; a process uses one, a test several.
class OpenedCollators {
  public:
    std::shared_ptr<const Collators> forLocale(const std::string& locale) {
        const MutexLock lock(mutex_);
        auto& collators = byLocale_[locale];
        if (!collators) {
            collators = std::make_shared<const Collators>(
                Collators{openCollator(locale, false, true), openCollator(locale, true, true),
                          openCollator(locale, false, false)});
        }
        return collators;
    }

  private:
    Mutex mutex_;
    std::map<std::string, std::shared_ptr<const Collators>> byLocale_ TAVRION_GUARDED_BY(mutex_);
};

/// Each thread remembers the collators it used last, so that a sort takes the lock once and not for
/// every comparison.
const Collators& currentCollators() {
    static OpenedCollators opened;
    thread_local std::string lastLocale;
    thread_local std::shared_ptr<const Collators> last;
    const std::string& locale = Port<Regional>::current().orderLocale();
    if (!last || lastLocale != locale) {
        last = opened.forLocale(locale);
        lastLocale = locale;
    }
    return *last;
}

icu::StringPiece pieceOf(std::string_view text) {
    return icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size()));
}

NSComparisonResult resultOf(int order) {
    if (order == 0) {
        return NSComparisonResult::same;
    }
    return order < 0 ? NSComparisonResult::ascending : NSComparisonResult::descending;
}

int compareWith(const icu::Collator& collator, std::string_view a, std::string_view b) {
    UErrorCode status = U_ZERO_ERROR;
    return collator.compareUTF8(pieceOf(a), pieceOf(b), status);
}

/// Cuts the next run of ASCII digits off the front and gives its length; 0 when there is none left.
std::size_t nextDigitRun(std::string_view& text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto start = std::find_if(text.begin(), text.end(), isDigit);
    const auto end = std::find_if_not(start, text.end(), isDigit);
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    return static_cast<std::size_t>(end - start);
}

/// The same numbers may be written with leading zeros: the first run of another length decides, the
/// shorter first.
int compareDigitRuns(std::string_view a, std::string_view b) {
    for (;;) {
        const std::size_t lengthA = nextDigitRun(a);
        const std::size_t lengthB = nextDigitRun(b);
        if (lengthA == 0 || lengthB == 0) {
            return 0;
        }
        if (lengthA != lengthB) {
            return lengthA < lengthB ? -1 : 1;
        }
    }
}

/// The character that starts at the front of a text that is not empty; U+FFFD for a broken
/// sequence.
UChar32 firstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    return first < 0x80 ? first
                        : icu::UnicodeString::fromUTF8(pieceOf(text.substr(0, 4))).char32At(0);
}

std::size_t bytesOf(UChar32 character) {
    return static_cast<std::size_t>(U8_LENGTH(character));
}

bool isPunctuation(UChar32 character) {
    return (U_GET_GC_MASK(character) & U_GC_P_MASK) != 0;
}

/// Where the last character of a text that is not empty starts.
std::size_t startOfLastCharacter(std::string_view text) {
    std::size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < 4 && U8_IS_TRAIL(text[start])) {
        start -= 1;
    }
    return start;
}

std::string_view withoutSurroundingPunctuation(std::string_view text) {
    while (!text.empty() && isPunctuation(firstCharacter(text))) {
        text.remove_prefix(bytesOf(firstCharacter(text)));
    }
    while (!text.empty()) {
        const std::size_t start = startOfLastCharacter(text);
        const UChar32 last = firstCharacter(text.substr(start));
        if (!isPunctuation(last) || bytesOf(last) != text.size() - start) {
            break;
        }
        text.remove_suffix(text.size() - start);
    }
    return text;
}

std::string_view sortedText(const std::optional<std::string>& text) {
    const std::string_view stripped =
        text ? withoutSurroundingPunctuation(*text) : std::string_view();
    return stripped.empty() ? std::string_view("~") : stripped;
}

/// Writes into the buffer, which grows to the longest text and stays so; gives the length.
std::int32_t toUTF16(std::string_view text, std::vector<UChar>& units) {
    if (units.size() < text.size()) {
        units.resize(text.size());  // never more units than bytes
    }
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length,
                         text.data(), static_cast<std::int32_t>(text.size()), 0xFFFD, nullptr,
                         &status);
    return length;
}

/// Makes sort keys by one collator; its buffers grow to the longest text and stay so.
class KeyMaker {
  public:
    explicit KeyMaker(const icu::Collator& collator) : collator_(collator) {}

    /// Valid until the next call.
    std::string_view keyOf(std::string_view text) {
        const std::int32_t length = toUTF16(text, units_);
        std::int32_t size = write(length);
        if (static_cast<std::size_t>(size) > key_.size()) {
            key_.resize(static_cast<std::size_t>(size) * 2);
            size = write(length);
        }
        // Without the zero at its end.
        return std::string_view(key_).substr(0, static_cast<std::size_t>(std::max(size - 1, 0)));
    }

  private:
    std::int32_t write(std::int32_t length) {
        return collator_.getSortKey(units_.data(), length,
                                    reinterpret_cast<std::uint8_t*>(key_.data()),
                                    static_cast<std::int32_t>(key_.size()));
    }

    const icu::Collator& collator_;
    std::vector<UChar> units_ = std::vector<UChar>(64);
    std::string key_ = std::string(256, '\0');
};

std::uint32_t hashOf(std::string_view bytes) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(bytes));
}

}  // namespace

NSComparisonResult localizedStandardCompare(std::string_view a, std::string_view b) {
    if (a == b) {
        return NSComparisonResult::same;
    }
    const Collators& collators = currentCollators();
    int order = compareWith(*collators.order, a, b);
    if (order == 0) {
        order = compareDigitRuns(a, b);
    }
    if (order == 0) {
        order = compareWith(*collators.tieBreak, a, b);
    }
    // The bytes of UTF-8 are ordered as its code points.
    return resultOf(order != 0 ? order : a.compare(b));
}

NSComparisonResult localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) {
    if (a == b || foldedForCase(a) == foldedForCase(b)) {
        return NSComparisonResult::same;
    }
    return resultOf(compareWith(*currentCollators().digitByDigit, a, b));
}

std::vector<std::string> collationKeys(const std::vector<std::string_view>& texts) {
    std::vector<std::string> keys;
    keys.reserve(texts.size());
    KeyMaker maker(*currentCollators().order);
    for (const std::string_view text : texts) {
        keys.emplace_back(maker.keyOf(text));
    }
    return keys;
}

std::vector<CaselessHashes> caselessHashes(const std::vector<std::string_view>& texts) {
    std::vector<CaselessHashes> hashes;
    hashes.reserve(texts.size());
    KeyMaker maker(*currentCollators().digitByDigit);
    for (const std::string_view text : texts) {
        hashes.push_back({hashOf(foldedForCase(text)), hashOf(maker.keyOf(text))});
    }
    return hashes;
}

namespace Entended {

NSComparisonResult smartAlphabeticalCompare(const std::optional<std::string>& a,
                                            const std::optional<std::string>& b) {
    const std::string_view textA = sortedText(a);
    const std::string_view textB = sortedText(b);
    const bool isNumeralA = stringBeginsWithNumeral(textA);
    if (isNumeralA != stringBeginsWithNumeral(textB)) {
        return isNumeralA ? NSComparisonResult::descending : NSComparisonResult::ascending;
    }
    return localizedStandardCompare(textA, textB);
}

std::vector<std::string> smartAlphabeticalKeys(
    const std::vector<std::optional<std::string>>& texts) {
    std::vector<std::string_view> sorted;
    sorted.reserve(texts.size());
    for (const std::optional<std::string>& text : texts) {
        sorted.push_back(sortedText(text));
    }
    std::vector<std::string> keys = collationKeys(sorted);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i].insert(keys[i].begin(), stringBeginsWithNumeral(sorted[i]) ? '\2' : '\1');
    }
    return keys;
}

bool stringBeginsWithNumeral(std::string_view text) {
    if (text.empty()) {
        return false;
    }
    const UChar32 first = firstCharacter(text);
    const bool isLetter = (U_GET_GC_MASK(first) & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
    // Beyond the basic plane the first unit is half of a pair, and that is no letter.
    return first > 0xFFFF || !isLetter;
}

}  // namespace Entended
}  // namespace tavrion
