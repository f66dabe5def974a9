#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// What has become of the line.
enum enumLineState : std::int16_t {
    LineUnknown = 0, ///< nobody has tried to open it
    LineClosed = 1,  ///< given back, or it could not be opened
    LineOpen = 2,    ///< open, and ours
    LineLost = 3,    ///< the device went away while it was open
    LineBusy = 4,    ///< another program holds it
};

/// What the printer does.
enum enumPrinterActivity : std::int16_t {
    PrinterUnknown = 0,  ///< nothing says; always so on a line that is not open
    PrinterSilent = 1,   ///< it was asked and did not answer
    PrinterAtPrompt = 2, ///< it takes commands
    PrinterRunning = 3,  ///< it carries something out, its program or a command
    /// Its program waits for a line to be typed. A question mark at the end of what it says tells
    /// that at once (LearntText); any other text does when its line stays unfinished for
    /// UnfinishedLineMs (LearntSilence), though a program that works long in the middle of a line
    /// looks the same. It ends with that line.
    PrinterAsking = 4,
    PrinterReceiving = 5, ///< it takes the bytes of a file
    PrinterRebooting = 6, ///< it was told to restart and has not answered since
};

/// How long, in ms, a line of a running program may stay unfinished before it is taken for a
/// question.
inline constexpr std::int32_t UnfinishedLineMs = 500;

/// What something was learnt from.
enum enumLearntFrom : std::int16_t {
    LearntNot = 0,      ///< from nothing: it is not known
    LearntReply = 1,    ///< the reply to a command of this link, known by its echo
    LearntText = 2,     ///< text that came by itself or was asked for elsewhere
    LearntSilence = 3,  ///< a wait that ended without an answer, or without the end of a line
    LearntCommand = 4,  ///< what was sent, whose reply has not been seen
    LearntTransfer = 5, ///< a file transfer
    LearntSearch = 6,   ///< the search for the printer
    LearntPort = 7,     ///< the port: opened, refused, closed or lost
};

/// Something known, with when and how. A later proof of the same renews both.
template <class T>
struct Learnt {
    T value{};                       ///< what is known; its default where nothing is
    std::int64_t at = 0;             ///< ms of the message loop's clock; 0 before anything is known
    enumLearntFrom from = LearntNot; ///< what it was learnt from
};

/// Who the printer is.
struct PrinterIdentity {
    std::string model;   ///< the text that holds the model code; empty when it is not known
    std::string version; ///< the firmware's text; empty when it is not known

    /// Whether the printer has told.
    bool IsKnown() const { return !model.empty(); }
    /// Whether both texts are the same.
    bool operator==(const PrinterIdentity&) const = default;
};

/// Where the printer is.
struct PrinterPlace {
    std::int16_t port = 0; ///< the port's number, 0 to 16
    std::string name;      ///< what that number stands for; empty where the serial control has none
    std::string settings;  ///< such as "9600,N,8,1", and behind another comma the flow control

    /// Whether number, name and settings are the same.
    bool operator==(const PrinterPlace&) const = default;
};

/// What is known of line and printer at a moment: learnt from what passes on the line anyway;
/// nothing is sent for it unless the host has asked for that (LinkOptions::polled). A plain value.
struct LiveState {
    Learnt<enumLineState> line;          ///< the line
    std::string lineDetail;              ///< why it was lost or refused, who holds it; for a person
    Learnt<enumPrinterActivity> printer; ///< what the printer does
    Learnt<PrinterIdentity> identity;    ///< who it is; unknown again once it must be asked anew
    Learnt<PrinterPlace> place;          ///< where it is
    /// What was read from the printer belongs to the generation in which it was read: the number
    /// changes with port, settings and identity, after the line was lost, and when a search found
    /// nobody. It only ever grows.
    std::int32_t generation = 1;
};

/// The word for a state, such as "at prompt"; "unknown" for a number that is none.
std::string_view WordFor(enumLineState state);
/// The word for what the printer does.
std::string_view WordFor(enumPrinterActivity activity);
/// The word for what something was learnt from; "nothing" for LearntNot.
std::string_view WordFor(enumLearntFrom from);

} // namespace qncomm
