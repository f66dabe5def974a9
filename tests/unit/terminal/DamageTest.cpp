#include "Snapshot.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using qncomm::Terminal;
using qncomm::terminal::Damage;
using qncomm::terminal::TerminalLine;
using qncomm::testing::Sized;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(TerminalDamage, IsEverythingAtFirst) {
    Terminal terminal;
    EXPECT_TRUE(terminal.HasDamage());
    EXPECT_THAT(terminal.TakeDamage().rows, SizeIs(300));
    EXPECT_FALSE(terminal.HasDamage());
    EXPECT_TRUE(terminal.TakeDamage().Empty());
}

TEST(TerminalDamage, NamesTheRowsThatChanged) {
    Terminal terminal(Sized(5, 10));
    (void)terminal.TakeDamage();
    terminal.Write("a\x1B[3;1Hb\x1B[5;5H");
    const Damage damage = terminal.TakeDamage();
    EXPECT_EQ(damage.scrolled, 0U);
    EXPECT_THAT(damage.rows, ElementsAre(1, 3));
}

TEST(TerminalDamage, OfAMovedCursorIsNone) {
    Terminal terminal(Sized(5, 10));
    (void)terminal.TakeDamage();
    terminal.Write("\x1B[3;3H\t\r\n\x1B[31m");
    terminal.SetCursorRow(2);
    EXPECT_FALSE(terminal.HasDamage());
}

TEST(TerminalDamage, OfAScrollIsTheNewRowAlone) {
    Terminal terminal(Sized(5, 10));
    terminal.Write("a\r\nb\r\nc\r\nd\r\ne");
    (void)terminal.TakeDamage();
    terminal.Write("\r\nf");
    const Damage damage = terminal.TakeDamage();
    EXPECT_EQ(damage.scrolled, 1U);
    EXPECT_THAT(damage.rows, ElementsAre(5));
}

TEST(TerminalDamage, IsBoundedByTheScreen) {
    Terminal terminal(Sized(5, 10));
    (void)terminal.TakeDamage();
    terminal.Write(std::string(1000, '\n'));
    const Damage damage = terminal.TakeDamage();
    EXPECT_EQ(damage.scrolled, 5U);
    EXPECT_THAT(damage.rows, ElementsAre(1, 2, 3, 4, 5));
}

TEST(TerminalDamage, OfClearingIsEveryRow) {
    Terminal terminal(Sized(5, 10));
    (void)terminal.TakeDamage();
    terminal.Clear();
    EXPECT_THAT(terminal.TakeDamage().rows, SizeIs(5));
}

/// A picture that is brought up to date from damage alone.
class Picture {
  public:
    explicit Picture(Terminal& terminal)
        : mTerminal(terminal), mRows(static_cast<std::size_t>(terminal.Rows())) {}

    void Update() {
        const Damage damage = mTerminal.TakeDamage();
        mRows.erase(mRows.begin(), mRows.begin() + static_cast<std::ptrdiff_t>(damage.scrolled));
        mRows.resize(static_cast<std::size_t>(mTerminal.Rows()));
        for (const std::uint16_t row : damage.rows)
            mRows[row - 1U] = mTerminal.Row(static_cast<std::int16_t>(row));
    }

    const std::vector<TerminalLine>& Rows() const { return mRows; }

  private:
    Terminal& mTerminal;
    std::vector<TerminalLine> mRows;
};

TEST(TerminalDamage, KeepsAPictureUpToDate) {
    const std::string_view pieces[] = {
        "text",    "\r\n",     "\n\n\n", "\x1BM",         "\x1B[2;4r",   "\x1B[r",  "\x1B[3;2H",
        "\x1B[2L", "\x1B[M",   "\x1B[S", "\x1B[2T",       "\x1B[J",      "\x1B[1K", "\x1B[2@",
        "\x1B[P",  "\x1B[41m", "\x1B[m", "wrapping text", "\x1B[8;1H\n", "\x1B[4X"};
    std::mt19937 random(11);
    Terminal terminal(Sized(8, 12));
    Picture picture(terminal);
    for (int step = 0; step < 20'000; ++step) {
        for (auto count = random() % 4; count > 0; --count)
            terminal.Write(pieces[random() % std::size(pieces)]);
        picture.Update();
        ASSERT_EQ(picture.Rows(), qncomm::testing::TakeSnapshot(terminal).rows)
            << "after step " << step;
    }
}

} // namespace
