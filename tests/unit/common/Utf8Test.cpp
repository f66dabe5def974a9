#include "common/Utf8.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

TEST(PrinterName, IsTheLastPartOfThePathInThePrintersCharacterSet) {
    EXPECT_EQ(PrinterNameOf("/home/j\u00F6rg/gr\u00F6\u00DFe 5\u20AC.pcx"), "gr\xF6\xDF"
                                                                            "e 5\x80.pcx");
    EXPECT_EQ(PrinterNameOf("LOGO.PCX"), "LOGO.PCX");
    EXPECT_EQ(PrinterNameOf("/folder/"), "");
}

TEST(PrinterName, KeepsItsBytesWhenACharacterHasNone) {
    EXPECT_EQ(PrinterNameOf("/a/\u4E2D.pcx"), "\u4E2D.pcx") << "two such names stay two";
    EXPECT_EQ(PrinterNameOf("/a/gr\xF6.pcx"), "gr\xF6.pcx") << "no UTF-8";
}

} // namespace
} // namespace qncomm
