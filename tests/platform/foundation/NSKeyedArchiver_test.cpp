// Intervals and sets of dates as the bytes that other programs of the platform write and read.

#include "platform/foundation/NSKeyedArchiver.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>

namespace tavrion {
namespace {

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

std::string uid(int number) {
    return "<dict><key>CF$UID</key><integer>" + std::to_string(number) + "</integer></dict>";
}
std::string dateObject(const std::string& seconds, int type) {
    return "<dict><key>NS.time</key><real>" + seconds + "</real><key>$class</key>" + uid(type) +
           "</dict>";
}
std::string classObject(const std::string& name) {
    return "<dict><key>$classname</key><string>" + name +
           "</string><key>$classes</key><array><string>" + name +
           "</string><string>NSObject</string></array></dict>";
}

/// The reference that a dictionary written by uid() stands for, or null.
plist_t referenceOf(plist_t node) {
    plist_t number =
        plist_get_node_type(node) == PLIST_DICT ? plist_dict_get_item(node, "CF$UID") : nullptr;
    if (number == nullptr) {
        return nullptr;
    }
    std::uint64_t place = 0;
    plist_get_uint_val(number, &place);
    return plist_new_uid(place);
}

/// The library reads references as plain dictionaries from a text.
void makeReferences(plist_t node) {
    if (plist_get_node_type(node) == PLIST_ARRAY) {
        for (std::uint32_t i = 0; i < plist_array_get_size(node); ++i) {
            makeReferences(plist_array_get_item(node, i));
            if (plist_t reference = referenceOf(plist_array_get_item(node, i))) {
                plist_array_set_item(node, reference, i);
            }
        }
    }
    for (const char* const key :
         {"$top", "$objects", "root", "$class", "NS.objects", "NS.startDate", "NS.endDate"}) {
        plist_t member =
            plist_get_node_type(node) == PLIST_DICT ? plist_dict_get_item(node, key) : nullptr;
        if (member != nullptr) {
            makeReferences(member);
            if (plist_t reference = referenceOf(member)) {
                plist_dict_set_item(node, key, reference);
            }
        }
    }
}

/// An archive of these objects behind "$null", as another program would have written it.
NSData archiveOf(const std::string& objects, int version = 100000,
                 const std::string& archiver = "NSKeyedArchiver") {
    const std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist "
        "version=\"1.0\"><dict><key>$version</key><integer>" +
        std::to_string(version) + "</integer><key>$archiver</key><string>" + archiver +
        "</string><key>$top</key><dict><key>root</key>" + uid(1) +
        "</dict><key>$objects</key><array><string>$null</string>" + objects +
        "</array></dict></plist>";
    plist_t node = nullptr;
    plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &node);
    makeReferences(node);
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(node, &bytes, &length);
    NSData data{std::string(bytes, length)};
    std::free(bytes);
    plist_free(node);
    return data;
}

NSData intervalArchive(const std::string& members, const std::string& dateClass = "NSDate") {
    return archiveOf("<dict>" + members + "<key>$class</key>" + uid(4) + "</dict>" +
                     dateObject("10.25", 5) + dateObject("20", 5) + classObject("NSDateInterval") +
                     classObject(dateClass));
}
NSData setArchive(const std::string& members, const std::string& setClass = "NSSet") {
    return archiveOf("<dict><key>NS.objects</key><array>" + members + "</array><key>$class</key>" +
                     uid(4) + "</dict>" + dateObject("10.25", 5) + dateObject("20", 5) +
                     classObject(setClass) + classObject("NSDate"));
}

auto intervalIn(const NSData& data) {
    return NSKeyedUnarchiver::unarchivedObjectOfClass<NSDateInterval>(data);
}
auto datesIn(const NSData& data) {
    return NSKeyedUnarchiver::unarchivedObjectOfClass<std::set<NSDate>>(data);
}

TEST(NSKeyedArchiverTest, whatIsWrittenReadsBackWithAllItsDigits) {
    const NSDateInterval interval(at(0.1), at(794059200.2500001));
    const auto read = intervalIn(NSKeyedArchiver::archivedDataWithRootObject(interval));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.value(), interval);
    const NSDateInterval instant(at(5), at(5));
    EXPECT_EQ(intervalIn(NSKeyedArchiver::archivedDataWithRootObject(instant)).value(), instant);
    for (const std::set<NSDate>& dates :
         {std::set<NSDate>{}, {at(-1.5)}, {at(3), at(1), at(794059200.125)}}) {
        EXPECT_EQ(datesIn(NSKeyedArchiver::archivedDataWithRootObject(dates)).value(), dates);
    }
}

TEST(NSKeyedArchiverTest, equalValuesHaveEqualBytes) {
    const std::set<NSDate> one{at(1), at(2), at(3)};
    const std::set<NSDate> other{at(3), at(2), at(1)};
    EXPECT_EQ(NSKeyedArchiver::archivedDataWithRootObject(one),
              NSKeyedArchiver::archivedDataWithRootObject(other));
    const NSDateInterval interval(at(1), at(2));
    EXPECT_EQ(NSKeyedArchiver::archivedDataWithRootObject(interval),
              NSKeyedArchiver::archivedDataWithRootObject(NSDateInterval(at(1), at(2))));
    EXPECT_NE(NSKeyedArchiver::archivedDataWithRootObject(interval),
              NSKeyedArchiver::archivedDataWithRootObject(NSDateInterval(at(1), at(2.5))));
}

TEST(NSKeyedArchiverTest, theBytesAreABinaryListWithTheNamesThatThePlatformGives) {
    const NSData data = NSKeyedArchiver::archivedDataWithRootObject(NSDateInterval(at(1), at(2)));
    EXPECT_TRUE(data.bytes.starts_with("bplist00"));
    for (const char* const name :
         {"$version", "$archiver", "NSKeyedArchiver", "$top", "root", "$objects", "$null", "$class",
          "$classname", "$classes", "NSDateInterval", "NSObject", "NS.startDate", "NS.endDate",
          "NS.time", "NSDate"}) {
        EXPECT_NE(data.bytes.find(name), std::string::npos) << name;
    }
}

TEST(NSKeyedArchiverTest, anIntervalOfAnotherProgramIsRead) {
    const std::string start = "<key>NS.startDate</key>" + uid(2);
    const NSDateInterval expected(at(10.25), at(20));
    EXPECT_EQ(intervalIn(intervalArchive(start + "<key>NS.endDate</key>" + uid(3))).value(),
              expected);
    EXPECT_EQ(
        intervalIn(intervalArchive(start + "<key>NS.duration</key><real>9.75</real>")).value(),
        expected);
    EXPECT_EQ(intervalIn(intervalArchive(start + "<key>NS.endDate</key>" + uid(3) +
                                         "<key>NS.duration</key><real>9.75</real>"))
                  .value(),
              expected);
    EXPECT_EQ(intervalIn(intervalArchive(start + "<key>NS.endDate</key>" + uid(2))).value(),
              NSDateInterval(at(10.25), at(10.25)))
        << "equal dates may be one object";
}

TEST(NSKeyedArchiverTest, aSetOfAnotherProgramIsRead) {
    const std::set<NSDate> expected{at(10.25), at(20)};
    EXPECT_EQ(datesIn(setArchive(uid(3) + uid(2))).value(), expected);
    EXPECT_EQ(datesIn(setArchive(uid(2) + uid(3) + uid(3), "NSMutableSet")).value(), expected);
}

TEST(NSKeyedArchiverTest, whatIsWrongInOnePlaceIsAbsentAsAWhole) {
    const std::string start = "<key>NS.startDate</key>" + uid(2);
    const std::string end = "<key>NS.endDate</key>" + uid(3);
    EXPECT_FALSE(intervalIn(intervalArchive(start)).ok()) << "no end";
    EXPECT_FALSE(intervalIn(intervalArchive(end)).ok()) << "no start";
    EXPECT_FALSE(intervalIn(intervalArchive(start + end, "NSNumber")).ok());
    EXPECT_FALSE(intervalIn(intervalArchive(start + "<key>NS.endDate</key>" + uid(99))).ok());
    EXPECT_FALSE(intervalIn(intervalArchive(start + "<key>NS.endDate</key>" + uid(1))).ok())
        << "a cycle";
    EXPECT_FALSE(intervalIn(intervalArchive("<key>NS.startDate</key>" + uid(3) +
                                            "<key>NS.endDate</key>" + uid(2)))
                     .ok())
        << "the end lies before the start";
    EXPECT_FALSE(intervalIn(intervalArchive(start + "<key>NS.duration</key><real>-1</real>")).ok());
    EXPECT_FALSE(datesIn(setArchive(uid(2) + uid(4))).ok()) << "a member is no date";
    EXPECT_FALSE(datesIn(setArchive(uid(2) + uid(50))).ok());
    EXPECT_FALSE(datesIn(setArchive(uid(2), "NSArray")).ok());
    EXPECT_FALSE(datesIn(setArchive("<string>text</string>")).ok()) << "no reference";
    EXPECT_FALSE(datesIn(intervalArchive(start + end)).ok());
    EXPECT_FALSE(intervalIn(setArchive(uid(2))).ok());
}

TEST(NSKeyedArchiverTest, bytesThatAreNoArchiveAreAbsent) {
    EXPECT_FALSE(intervalIn(NSData{}).ok());
    EXPECT_FALSE(intervalIn(NSData{"(null)"}).ok());
    EXPECT_FALSE(datesIn(NSData{std::string("bplist00\0\0", 10)}).ok());
    const std::string set = "<dict><key>NS.objects</key><array/><key>$class</key>" + uid(2) +
                            "</dict>" + classObject("NSSet");
    EXPECT_TRUE(datesIn(archiveOf(set)).ok());
    EXPECT_FALSE(datesIn(archiveOf(set, 99999)).ok());
    EXPECT_FALSE(datesIn(archiveOf(set, 100000, "Other")).ok());
}

TEST(NSKeyedArchiverTest, noCutAndNoFlippedByteEndsTheProcess) {
    const NSData good = NSKeyedArchiver::archivedDataWithRootObject(std::set<NSDate>{at(1), at(2)});
    for (std::size_t i = 0; i < good.bytes.size(); ++i) {
        EXPECT_FALSE(datesIn(NSData{good.bytes.substr(0, i)}).ok()) << i;
        for (const int mask : {1, 16, 128, 255}) {
            NSData flipped = good;
            flipped.bytes[i] = static_cast<char>(flipped.bytes[i] ^ mask);
            datesIn(flipped).ignore();
            intervalIn(flipped).ignore();
        }
    }
}

}  // namespace
}  // namespace tavrion
