#pragma once

#include "common/StopWatch.h"
#include "console/Charset.h"
#include "platform/Reactor.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// A printer's terminal at a console. With a terminal as input, keys go to the printer as they are
/// typed until Ctrl-]; Ctrl-T makes the next key a command: b sends a break, c Ctrl-C, t Ctrl-T, z
/// stops the program until it is continued, q ends, any other key shows these. Any other input is
/// sent line by line, each when the one before was answered. Replies go to the output as UTF-8.
class ConsoleTerminal {
  public:
    static constexpr char EndKey = 0x1D;  ///< Ctrl-]
    static constexpr char MenuKey = 0x14; ///< Ctrl-T

    /// How long silence is taken for the end of a reply that has no "Ok", in ms.
    static constexpr std::int32_t SilenceMs = 1000;

    /// What the terminal is connected to.
    struct Wiring {
        int in = 0;  ///< the descriptor that is typed at; not closed
        int out = 1; ///< the descriptor that replies are written to; not closed
        /// Gives bytes to the line; takes as many as there is space for and returns how many.
        std::function<std::size_t(std::string_view)> send;
        /// Called in each round of the loop; returns False when the line is gone, and may throw.
        std::function<bool()> alive;
        /// Called when keys have begun to go to the printer, and again when they do so after the
        /// program was stopped; may be empty. The terminal is raw: a
        /// line ends in CR LF.
        std::function<void()> ready = {};
        /// Sends a break and returns why it could not, as a text to show; empty when it was sent.
        /// May yield. Without it there is none.
        std::function<std::string()> sendBreak = {};
    };

    /// The reactor must outlive the terminal.
    ConsoleTerminal(Reactor& reactor, Wiring wiring);

    /// Text that the printer has sent.
    void Show(std::string_view sReceived);

    /// Runs until the end key, the end of the input with its last reply, the loss of the line, or
    /// an output that takes no more. False for the loss alone. The input's terminal is put back as
    /// it was in every case.
    bool Run();

    /// What the system said when the output took no more (errno); 0 as long as it takes all.
    int OutputError() const { return mOutputError; }

  private:
    bool RunKeys();
    bool RunLines();
    void OnKeys();
    void OnCommand(char key);
    void Tell(std::string_view text);
    void Put(std::string_view text);
    void OnText();
    bool SendLines();
    bool SendLine();
    bool LineAnswered() const;
    bool Flush();
    std::string ReadInput();

    Reactor& mReactor;
    Wiring mWiring;
    TypedText mTyped;
    StopWatch mSilence;
    std::string mToSend;
    std::string mLines;    ///< input that has not been sent, in the printer's bytes
    std::string mReply;    ///< the end of what came since the last line was sent
    bool mCommand = false; ///< the next key is one
    bool mWaiting = false;
    bool mEnded = false;
    int mOutputError = 0;
};

} // namespace qncomm
