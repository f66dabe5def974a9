#include "common/MacroRecord.h"

#include "common/MemorySettings.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

TEST(MacroRecord, IsSplitAtTheFirstSeparator) {
    const MacroRecord record = ParseMacro("0;PRINT A;B");
    EXPECT_EQ(record.kind, "0");
    EXPECT_EQ(record.argument, "PRINT A;B");
    EXPECT_EQ(ParseMacro("2").kind, "2");
    EXPECT_EQ(ParseMacro("2").argument, "");
    EXPECT_EQ(ParseMacro("").kind, "");
}

TEST(MacroRecord, KnowsThreeKindsByTheirExactNumbers) {
    EXPECT_EQ(ParseMacro("0;x").Kind(), TextMacro);
    EXPECT_EQ(ParseMacro("1;x").Kind(), FileMacro);
    EXPECT_EQ(ParseMacro("2;x").Kind(), RunMacro);
    for (const char* stored : {"", ";x", "3;x", "-1;x", "00;x", " 0;x", "0 ;x", "text;x"})
        EXPECT_EQ(ParseMacro(stored).Kind(), std::nullopt) << stored;
}

TEST(MacroRecord, ReadsBackWhatItPrints) {
    for (const FunctionKeyKind kind : {TextMacro, FileMacro, RunMacro})
        for (const std::string argument : {"", ";", "a;b", "1;2;3"}) {
            const MacroRecord record = ParseMacro(PrintMacro(kind, argument));
            EXPECT_EQ(record.Kind(), kind) << argument;
            EXPECT_EQ(record.argument, argument);
        }
}

TEST(MacroRecord, IsKeptInTheSettingsStoreByItsKey) {
    MemorySettings settings;
    settings.WriteValues({MacroSetting("F3", FileMacro, "/a;b")});
    EXPECT_EQ(settings.ReadValue("FunctionKeys", "F3", {}), "1;/a;b");
    EXPECT_EQ(ReadMacro(&settings, "F3").Kind(), FileMacro);
    EXPECT_EQ(ReadMacro(&settings, "F3").argument, "/a;b");
    EXPECT_EQ(ReadMacro(&settings, "F4").Kind(), std::nullopt);
    EXPECT_EQ(ReadMacro(nullptr, "F3").Kind(), std::nullopt);
}

} // namespace
} // namespace qncomm
