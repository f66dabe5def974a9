#pragma once

#include "terminal/CaptureFile.h"
#include "terminal/Damage.h"
#include "terminal/TerminalAppearance.h"
#include "terminal/TerminalLine.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The terminal behind the viewport: bytes from the line go in, a grid of character cells comes
/// out. Text is Windows-1252, one byte a cell; control characters and sequences of ECMA-48 are
/// carried out, may be cut anywhere, and none costs more than the screen is large.
///
/// Rows and columns count from 1. One thread at a time. It sends nothing to the line: a reply to a
/// status request would be typed into the printer's command line.
class Terminal {
  public:
    /// The largest number of rows.
    static constexpr std::int16_t MostRows = 1000;
    /// The largest number of columns.
    static constexpr std::int16_t MostColumns = 1000;

    /// What a terminal is made with.
    struct Options {
        std::int16_t rows = 300;              ///< clamped to 1 to MostRows
        std::int16_t columns = 300;           ///< clamped to 1 to MostColumns
        std::size_t scrollbackLines = 10'000; ///< at least 1
        /// How the file of a capture is opened; without it every capture is refused. The assembly
        /// opens files of this machine.
        terminal::CaptureOpener captureOpener = {};
    };

    /// A terminal of 300 rows and columns.
    Terminal();
    /// A terminal with an empty screen and the cursor in its upper left corner.
    explicit Terminal(Options options);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Shows bytes from the line, and captures them while a capture runs. Must not be called while
    /// a painter reads. The only thing that it calls is the capture's failure handler, at its end.
    void Write(std::string_view sBytes);

    // -- Size and cursor

    /// How many rows the screen has, 1 to MostRows.
    std::int16_t Rows() const;
    /// How many columns the screen has, 1 to MostColumns.
    std::int16_t Columns() const;
    /// Cuts off or adds at the right and at the bottom; when the cursor's row would be cut off,
    /// rows leave at the top into the scroll-back instead. False, and nothing changed, for a size
    /// outside 1 to MostRows and 1 to MostColumns.
    bool Resize(std::int16_t iRows, std::int16_t iColumns);

    /// The row of the cursor, from 1.
    std::int16_t CursorRow() const;
    /// Goes to the row, or to the nearest one that there is; the column stays.
    void SetCursorRow(std::int16_t iRow);
    /// The column of the cursor, from 1; the last one while a wrap waits.
    std::int16_t CursorColumn() const;
    /// Whether the cursor is to be shown; a printer can hide it.
    bool CursorVisible() const;

    // -- The screen

    /// All rows at full width with CR LF between them; "" when nothing but blanks is on the screen.
    std::string ScreenText() const;
    /// Empties the screen and takes back everything that sequences have set: style, margins, modes,
    /// tab stops, a sequence that has been begun. The cursor stays in its row and goes to the first
    /// column. The scroll-back stays.
    void Clear();
    /// A row as it is now; an empty line for a row that there is not.
    terminal::TerminalLine Row(std::int16_t iRow) const;

    // -- What has scrolled off at the top

    /// The number of the oldest line that is kept. A line keeps its number; the first that ever
    /// left the screen is 0.
    std::uint64_t ScrollbackBegin() const;
    /// One behind the number of the newest line that is kept: the number that the screen's first
    /// row will have.
    std::uint64_t ScrollbackEnd() const;
    /// The line of that number; an empty one when it is not kept.
    terminal::TerminalLine ScrollbackLine(std::uint64_t number) const;
    /// Forgets all lines that have scrolled off; the numbers go on from there.
    void ClearScrollback();

    // -- For a painter

    /// Whether TakeDamage would name anything.
    bool HasDamage() const;
    /// What changed on the screen since the last call; everything on the first.
    terminal::Damage TakeDamage();
    /// Whether the bell has rung since the last call.
    bool TakeBell();

    // -- Capture to a file

    /// Appends what is shown from now on to the file, exactly as it came. A new path takes the
    /// place of the one before, which goes on when the new one cannot be opened.
    terminal::CaptureResult StartCapture(const std::string& sPath);
    /// Ends the capture and closes its file; nothing happens when none runs.
    void StopCapture();
    /// Whether a capture runs.
    bool IsCapturing() const;
    /// The file's path, "" while no capture runs.
    std::string CapturePath() const;
    /// Hears why a capture ended by itself. It may use the terminal, but not destroy it.
    using CaptureFailureHandler = std::function<void(const terminal::CaptureResult&)>;
    /// Takes the handler in place of the one before; an empty one hears nothing. A write that
    /// fails, such as on a full disk, ends the capture and calls it once; the terminal goes on.
    void SetCaptureFailureHandler(CaptureFailureHandler handler);
    /// What ended the last capture; nothing when it was stopped or runs.
    std::optional<terminal::CaptureResult> CaptureFailure() const;

    // -- Appearance

    /// How a face shows the terminal. A change is no damage: the one who makes it tells the face.
    terminal::TerminalAppearance& Appearance() { return mAppearance; }
    /// How a face shows the terminal.
    const terminal::TerminalAppearance& Appearance() const { return mAppearance; }

  private:
    struct Parts;

    std::unique_ptr<Parts> mParts;
    terminal::TerminalAppearance mAppearance;
    CaptureFailureHandler mCaptureFailed;
};

} // namespace qncomm
