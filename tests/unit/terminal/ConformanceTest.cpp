#include "ConformanceCases.h"
#include "Snapshot.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Terminal;
using terminal_testing::CaseColumns;
using terminal_testing::CaseRows;
using terminal_testing::ConformanceCase;
using terminal_testing::ConformanceCases;
using terminal_testing::Flaw;
using terminal_testing::Rows;
using terminal_testing::Sized;
using terminal_testing::Snapshot;
using terminal_testing::TakeSnapshot;

Terminal::Options CaseOptions() {
    return Sized(CaseRows, CaseColumns, 100);
}

class Conformance : public testing::TestWithParam<ConformanceCase> {};

TEST_P(Conformance, ShowsWhatTheSequencesSay) {
    Terminal terminal(CaseOptions());
    terminal.Write(GetParam().bytes);
    EXPECT_EQ(Rows(terminal), GetParam().rows);
    EXPECT_EQ(terminal.CursorRow(), GetParam().cursorRow);
    EXPECT_EQ(terminal.CursorColumn(), GetParam().cursorColumn);
    EXPECT_EQ(Flaw(terminal), "");
}

TEST_P(Conformance, IsTheSameWhereverTheBytesAreCut) {
    const std::string_view bytes = GetParam().bytes;
    Terminal whole(CaseOptions());
    whole.Write(bytes);
    const Snapshot expected = TakeSnapshot(whole);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        Terminal halves(CaseOptions());
        halves.Write(bytes.substr(0, cut));
        halves.Write(bytes.substr(cut));
        EXPECT_EQ(TakeSnapshot(halves), expected) << "cut at " << cut;
    }
    Terminal single(CaseOptions());
    for (const char byte : bytes)
        single.Write({&byte, 1});
    EXPECT_EQ(TakeSnapshot(single), expected) << "byte by byte";
}

INSTANTIATE_TEST_SUITE_P(Sequences, Conformance,
                         testing::ValuesIn(ConformanceCases().begin(), ConformanceCases().end()),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
