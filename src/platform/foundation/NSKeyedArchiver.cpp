#include "platform/foundation/NSKeyedArchiver.h"

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrion {
namespace {

constexpr std::uint64_t archiveVersion = 100000;
constexpr const char* archiverName = "NSKeyedArchiver";
constexpr std::string_view binaryMark = "bplist00";

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreeNode>;

/// Collects the objects of an archive; each is referred to by its place.
class ArchiveWriter {
  public:
    ArchiveWriter() : objects_(plist_new_array()) {
        plist_array_append_item(objects_.get(), plist_new_string("$null"));
        // The root comes first, although what it refers to is written before it is complete.
        plist_array_append_item(objects_.get(), plist_new_dict());
    }

    std::uint64_t addClass(std::initializer_list<const char*> names) {
        plist_t classes = plist_new_array();
        for (const char* const name : names) {
            plist_array_append_item(classes, plist_new_string(name));
        }
        plist_t description = plist_new_dict();
        plist_dict_set_item(description, "$classname", plist_new_string(*names.begin()));
        plist_dict_set_item(description, "$classes", classes);
        return add(description);
    }
    std::uint64_t addDate(NSDate date) {
        if (!dateClass_) {
            dateClass_ = addClass({"NSDate", "NSObject"});
        }
        plist_t object = plist_new_dict();
        plist_dict_set_item(object, "NS.time",
                            plist_new_real(date.timeIntervalSinceReferenceDate()));
        plist_dict_set_item(object, "$class", plist_new_uid(*dateClass_));
        return add(object);
    }
    plist_t root() const { return plist_array_get_item(objects_.get(), 1); }

    NSData finish() {
        const Node archive(plist_new_dict());
        plist_dict_set_item(archive.get(), "$version", plist_new_uint(archiveVersion));
        plist_dict_set_item(archive.get(), "$archiver", plist_new_string(archiverName));
        plist_t top = plist_new_dict();
        plist_dict_set_item(top, "root", plist_new_uid(1));
        plist_dict_set_item(archive.get(), "$top", top);
        plist_dict_set_item(archive.get(), "$objects", objects_.release());
        char* bytes = nullptr;
        std::uint32_t length = 0;
        plist_to_bin(archive.get(), &bytes, &length);
        const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
        precondition(bytes != nullptr, "an archive can be written");
        return {std::string(bytes, length)};
    }

  private:
    std::uint64_t add(plist_t object) {
        plist_array_append_item(objects_.get(), object);
        return plist_array_get_size(objects_.get()) - 1;
    }

    Node objects_;
    std::optional<std::uint64_t> dateClass_;
};

/// The objects of an archive that was read; every step gives null, or absent, for what is not as it
/// should be.
class ArchiveReader {
  public:
    explicit ArchiveReader(const NSData& data) {
        if (!data.bytes.starts_with(binaryMark) ||
            data.bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
            return;
        }
        plist_t parsed = nullptr;
        plist_from_bin(data.bytes.data(), static_cast<std::uint32_t>(data.bytes.size()), &parsed);
        archive_.reset(parsed);
        if (textOf(member(parsed, "$archiver")) != archiverName ||
            !isType(member(parsed, "$version"), PLIST_UINT)) {
            return;
        }
        std::uint64_t version = 0;
        plist_get_uint_val(member(parsed, "$version"), &version);
        plist_t objects = member(parsed, "$objects");
        if (version == archiveVersion && isType(objects, PLIST_ARRAY)) {
            objects_ = objects;
        }
    }

    /// The root, if it is of one of these classes.
    plist_t root(std::initializer_list<std::string_view> classes) const {
        return ofClass(referred(member(member(archive_.get(), "$top"), "root")), classes);
    }
    std::optional<NSDate> date(plist_t reference) const {
        const auto seconds = realOf(member(ofClass(referred(reference), {"NSDate"}), "NS.time"));
        return seconds ? std::optional(NSDate::dateWithTimeIntervalSinceReferenceDate(*seconds))
                       : std::nullopt;
    }
    static plist_t member(plist_t dictionary, const char* key) {
        return isType(dictionary, PLIST_DICT) ? plist_dict_get_item(dictionary, key) : nullptr;
    }
    static bool isType(plist_t node, plist_type type) {
        return node != nullptr && plist_get_node_type(node) == type;
    }
    static std::optional<double> realOf(plist_t node) {
        double seconds = 0;
        if (isType(node, PLIST_REAL)) {
            plist_get_real_val(node, &seconds);
        }
        return isType(node, PLIST_REAL) && std::isfinite(seconds) ? std::optional(seconds)
                                                                  : std::nullopt;
    }

  private:
    static std::string_view textOf(plist_t node) {
        std::uint64_t length = 0;
        const char* text =
            isType(node, PLIST_STRING) ? plist_get_string_ptr(node, &length) : nullptr;
        return text == nullptr ? std::string_view() : std::string_view(text, length);
    }
    plist_t referred(plist_t reference) const {
        if (objects_ == nullptr || !isType(reference, PLIST_UID)) {
            return nullptr;
        }
        std::uint64_t place = 0;
        plist_get_uid_val(reference, &place);
        return place < plist_array_get_size(objects_)
                   ? plist_array_get_item(objects_, static_cast<std::uint32_t>(place))
                   : nullptr;
    }
    plist_t ofClass(plist_t object, std::initializer_list<std::string_view> classes) const {
        const std::string_view name =
            textOf(member(referred(member(object, "$class")), "$classname"));
        return std::find(classes.begin(), classes.end(), name) != classes.end() ? object : nullptr;
    }

    Node archive_;
    plist_t objects_ = nullptr;
};

NSError unreadable(const char* what) {
    return {std::string("the bytes are not an archive of ") + what, {}};
}

}  // namespace

NSData NSKeyedArchiver::archivedDataWithRootObject(const NSDateInterval& interval) {
    ArchiveWriter writer;
    plist_t root = writer.root();
    plist_dict_set_item(root, "NS.startDate", plist_new_uid(writer.addDate(interval.startDate())));
    plist_dict_set_item(root, "NS.endDate", plist_new_uid(writer.addDate(interval.endDate())));
    plist_dict_set_item(root, "$class",
                        plist_new_uid(writer.addClass({"NSDateInterval", "NSObject"})));
    return writer.finish();
}

NSData NSKeyedArchiver::archivedDataWithRootObject(const std::set<NSDate>& dates) {
    ArchiveWriter writer;
    plist_t members = plist_new_array();
    for (const NSDate date : dates) {
        plist_array_append_item(members, plist_new_uid(writer.addDate(date)));
    }
    plist_dict_set_item(writer.root(), "NS.objects", members);
    plist_dict_set_item(writer.root(), "$class",
                        plist_new_uid(writer.addClass({"NSSet", "NSObject"})));
    return writer.finish();
}

template <>
Result<NSDateInterval> NSKeyedUnarchiver::unarchivedObjectOfClass(const NSData& data) {
    const ArchiveReader reader(data);
    plist_t root = reader.root({"NSDateInterval"});
    const auto start = reader.date(ArchiveReader::member(root, "NS.startDate"));
    plist_t endReference = ArchiveReader::member(root, "NS.endDate");
    auto end = reader.date(endReference);
    const auto duration = ArchiveReader::realOf(ArchiveReader::member(root, "NS.duration"));
    if (endReference == nullptr && start && duration) {
        end = start->dateByAddingTimeInterval(*duration);
    }
    if (!start || !end || *end < *start) {
        return unreadable("an interval");
    }
    return NSDateInterval(*start, *end);
}

template <>
Result<std::set<NSDate>> NSKeyedUnarchiver::unarchivedObjectOfClass(const NSData& data) {
    const ArchiveReader reader(data);
    plist_t members = ArchiveReader::member(reader.root({"NSSet", "NSMutableSet"}), "NS.objects");
    if (!ArchiveReader::isType(members, PLIST_ARRAY)) {
        return unreadable("a set of dates");
    }
    std::set<NSDate> dates;
    for (std::uint32_t i = 0; i < plist_array_get_size(members); ++i) {
        const auto date = reader.date(plist_array_get_item(members, i));
        if (!date) {
            return unreadable("a set of dates");
        }
        dates.insert(*date);
    }
    return dates;
}

}  // namespace tavrion
