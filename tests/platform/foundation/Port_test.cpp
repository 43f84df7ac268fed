#include "platform/foundation/Port.h"

#include <gtest/gtest.h>

namespace tavrion {
namespace {

struct Socket {
    static constexpr const char* portName = "a socket is plugged in";
    int number = 0;
};

TEST(Port, givesWhatIsPluggedAndPutsBackWhatWasThereBefore) {
    EXPECT_FALSE(Port<Socket>::isPlugged());
    Socket outer{1};
    Socket inner{2};
    {
        const Port<Socket>::Plug first(outer);
        EXPECT_TRUE(Port<Socket>::isPlugged());
        EXPECT_EQ(Port<Socket>::current().number, 1);
        {
            const Port<Socket>::Plug second(inner);
            EXPECT_EQ(&Port<Socket>::current(), &inner);
        }
        EXPECT_EQ(&Port<Socket>::current(), &outer);
    }
    EXPECT_FALSE(Port<Socket>::isPlugged());
}

TEST(PortDeathTest, anEmptyPortEndsTheProcessWithItsName) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Port<Socket>::current(), "a socket is plugged in");
}

}  // namespace
}  // namespace tavrion
