// What the remote-display panel makes of a burst of unprompted tester bytes.
#include "link/DisplayFilter.h"

#include <gtest/gtest.h>

using namespace kalvo::link;

namespace {

TEST(DisplayFilter, MarkersCutsCharacterClassesAndClears)
{
    const struct {
        const char *name;
        QByteArray burst;
        bool clear;
        const char *text; // UTF-8
    } cases[] = {
        {"key markers removed", "KEY 1OFF\r\nA", false, "KEY 1A"},
        {"a marker formed by a removal goes too", "KEY OFOFF\r\nF\r\nx", false, "KEY x"},
        {"markers stay without KEY", "OFF\r\nA", false, "OFF\r\nA"},
        {"PRX keeps the first p-2 characters", "abcdePRXzz", false, "abcd"},
        {"PRX at the start keeps nothing", "PRX", false, ""},
        {"PRX at position 2 keeps nothing", "aPRX", false, ""},
        {"160, 161 and control bytes dropped",
         "\xa0\xa1"
         "A\x01\t\x11\x1b\r\n\xff\xa2",
         false, "A\r\nó"},
        {"display characters converted", "10\xea #@{", false, "10Ohm "},
        {"text after the last ENQ only", "old\x05mid\x05new", true, "new"},
        {"ENQ at the end clears", "old\x05", true, ""},
    };
    for (const auto &c : cases) {
        const DisplayUpdate update = FilterDisplayStream(c.burst);
        EXPECT_EQ(update.clear, c.clear) << c.name;
        EXPECT_EQ(update.text, QString::fromUtf8(c.text)) << c.name;
    }
}

} // namespace
