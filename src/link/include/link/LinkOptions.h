#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

class RegSettings;

/// What a host may switch on beyond what a link does by itself.
struct LinkOptions {
    /// Keeps in the store what is known of the printer on each port, and speaks to it at once where
    /// it still answers so: the search comes only when it does not. What one port has taught then
    /// changes nothing for the search of another.
    bool remembered = false;
    /// Makes sure that what a broken session has left in the printer's input line is not carried
    /// out: before the printer is first spoken to, that line is made one that no printer
    /// understands.
    bool spoil = false;
    /// Asks a printer that waits at its prompt now and then whether it still does, so that
    /// LiveState tells of one that falls silent: by "PRINT 0" while the terminal has the port, at
    /// most once a second and for at most a hundredth of what the line can carry. Never while a
    /// program runs, an operation or a transfer is under way or a line is being typed. The terminal
    /// shows none of it.
    bool polled = false;
    /// Listens before the search, for the 100 ms that it waits for silence in any case: where bytes
    /// come by themselves nothing is sent, the search ends, and LastSearch tells what the line
    /// says. A search that was answered by noise then also tries even, odd and space parity.
    bool listen = false;
    /// The terminal opens a port whose far side is slow to answer beside the host's work, as soon
    /// as that has answered: SetTerminalActive and a change of settings do not wait for it. Without
    /// this they do, and return with the port open or refused.
    bool opensBeside = false;
    /// What a port number stands for, such as "/dev/ttyUSB0": what is remembered belongs to that.
    /// Empty, or an empty answer: to the number.
    std::function<std::string(std::int16_t)> addressOf = {};
    /// The time of day as a text, such as "2026-11-22T09:45:10Z", kept as that of the last answer.
    /// May be empty: then no time is kept.
    std::function<std::string()> timeOfDay = {};
};

/// The section of the store for what is remembered of one address.
std::string ConnectionSection(std::string_view sAddress);

/// Bytes of a load that has begun on that address and whose end nobody has seen, as the store notes
/// them; 0 for none.
std::uintmax_t NotedLoad(const RegSettings& store, std::string_view sAddress);

} // namespace qncomm
