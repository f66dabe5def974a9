// The terminal shows what the cases say, however their bytes arrive.

#include "CaseFile.h"
#include "Snapshot.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using qncomm::testing::Flaw;
using qncomm::testing::Sized;
using qncomm::testing::Snapshot;
using qncomm::testing::TakeSnapshot;
using ::testing::IsEmpty;

const TerminalCases& AllCases() {
    static const TerminalCases cases = ReadCaseFolder(QN_TERMINAL_CASES);
    return cases;
}

Terminal::Options OptionsOf(const TerminalCase& each) {
    return Sized(each.rows, each.columns, 100);
}

/// The rows without the blanks at their ends, down to the last that holds anything.
std::vector<std::string> ShownRows(const Terminal& terminal) {
    std::vector<std::string> rows;
    for (std::int16_t row = 1; row <= terminal.Rows(); ++row) {
        std::string& text = rows.emplace_back(terminal.Row(row).text);
        text.erase(text.find_last_not_of(' ') + 1); // npos + 1 is 0
    }
    while (!rows.empty() && rows.back().empty())
        rows.pop_back();
    return rows;
}

TEST(ConformanceCases, AreWrittenWithoutMistakes) {
    EXPECT_THAT(AllCases().mistakes, IsEmpty());
    EXPECT_THAT(AllCases().cases, ::testing::Not(IsEmpty()))
        << "no case was found in " << QN_TERMINAL_CASES;
}

class Conformance : public ::testing::TestWithParam<TerminalCase> {};

TEST_P(Conformance, ShowsWhatTheSequencesSay) {
    const TerminalCase& given = GetParam();
    SCOPED_TRACE(given.where);
    Terminal terminal(OptionsOf(given));
    terminal.Write(given.bytes);
    EXPECT_EQ(ShownRows(terminal), given.shown);
    EXPECT_EQ(terminal.CursorRow(), given.cursorRow);
    EXPECT_EQ(terminal.CursorColumn(), given.cursorColumn);
    EXPECT_EQ(Flaw(terminal), "");
}

TEST_P(Conformance, IsTheSameWhereverTheBytesAreCut) {
    SCOPED_TRACE(GetParam().where);
    const std::string_view bytes = GetParam().bytes;
    Terminal whole(OptionsOf(GetParam()));
    whole.Write(bytes);
    const Snapshot expected = TakeSnapshot(whole);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        Terminal halves(OptionsOf(GetParam()));
        halves.Write(bytes.substr(0, cut));
        halves.Write(bytes.substr(cut));
        EXPECT_EQ(TakeSnapshot(halves), expected) << "cut at " << cut;
    }
    Terminal single(OptionsOf(GetParam()));
    for (const char byte : bytes)
        single.Write({&byte, 1});
    EXPECT_EQ(TakeSnapshot(single), expected) << "byte by byte";
}

INSTANTIATE_TEST_SUITE_P(Sequences, Conformance, ::testing::ValuesIn(AllCases().cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
} // namespace qncomm::testing
