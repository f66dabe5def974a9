#include "common/SafeText.h"

#include <gtest/gtest.h>

#include <string>

namespace qncomm {
namespace {

TEST(FileNameFromPrinter, IsOneNameAndNoPath) {
    const struct {
        std::string printers;
        const char* here;
    } names[] = {
        {"LABEL.PRG", "LABEL.PRG"},
        {"Gr\xF6\xDF\x65 5\x80", "Gr\u00F6\u00DFe 5\u20AC"},
        {"/etc/passwd", "_etc_passwd"},
        {"../../.profile", "_._.._.profile"},
        {"..\\..\\x", "_._.._x"},
        {"..", "_."},
        {".", "_"},
        {"", "_"},
        {"-rf", "_rf"},
        {".profile", "_profile"},
        {std::string("a\0b\n\x1B[2J\x7F", 9), "a_b__[2J_"},
        {"a:b", "a:b"},
    };
    for (const auto& name : names)
        EXPECT_EQ(FileNameFromPrinter(name.printers), name.here);
}

TEST(FileNameFromPrinter, HasTwoHundredAndFortyBytesAtMost) {
    EXPECT_EQ(FileNameFromPrinter(std::string(240, 'x')), std::string(240, 'x'));
    EXPECT_EQ(FileNameFromPrinter(std::string(241, 'x')), std::string(240, 'x'));
    const std::string cut = FileNameFromPrinter("x" + std::string(200, '\xF6'));
    EXPECT_EQ(cut.size(), 239U) << "two bytes a letter, and none of half a letter";
}

} // namespace
} // namespace qncomm
