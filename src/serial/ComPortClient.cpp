#include "ComPortClient.h"

#include "TelnetCodes.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

/// Doubles the bytes that would read as the start of a command.
void AppendEscaped(std::string& output, std::string_view bytes) {
    for (std::size_t at = bytes.find(telnet::Iac); at != std::string_view::npos;
         at = bytes.find(telnet::Iac)) {
        output.append(bytes.substr(0, at + 1)) += telnet::Iac;
        bytes.remove_prefix(at + 1);
    }
    output.append(bytes);
}

bool IsPurge(const comport::Request& request) {
    return request.command == comport::PurgeData;
}

} // namespace

std::array<ComPortClient::Option, 6> ComPortClient::AllOptions() {
    constexpr const char* noBinary = "the server there refuses 8-bit data";
    constexpr const char* noPort = "the server there offers no remote port control (RFC 2217)";
    return {Option{telnet::Binary, Side::Ours, noBinary},
            Option{telnet::Binary, Side::Theirs, noBinary},
            Option{telnet::SuppressGoAhead, Side::Ours},
            Option{telnet::SuppressGoAhead, Side::Theirs},
            Option{telnet::ComPort, Side::Ours, noPort},
            Option{telnet::ComPort, Side::Theirs}};
}

// -- The connection

void ComPortClient::Receive(std::string_view bytes, std::string& data) {
    mData = &data;
    mDecoder.Feed(bytes, *this);
    mData = nullptr;
}

void ComPortClient::Sent(std::size_t count) {
    mSent += count;
    if (mSent < mOutput.size() - mSent) return; // what has gone is cut off rarely, but it is
    mOutput.erase(0, mSent);
    mSent = 0;
}

void ComPortClient::OnData(std::string_view bytes) {
    if (Purging()) return;
    const std::size_t room = MostData - std::min(MostData, mData->size());
    mData->append(bytes.substr(0, room));
    if (bytes.size() > room) mLineErrors.overflow = true;
}

// -- Options

void ComPortClient::Offer() {
    for (Option& option : mOptions) {
        if (option.option == telnet::ComPort && option.side == Side::Theirs) continue;
        option.asked = true;
        Say(option.side == Side::Ours ? telnet::Will : telnet::Do, option.option);
    }
}

bool ComPortClient::Agreed() const {
    return std::all_of(mOptions.begin(), mOptions.end(), [](const Option& option) {
        return option.refusal == nullptr || option.on == true;
    });
}

void ComPortClient::OnOption(char verb, char option) {
    const Side side = verb == telnet::Do || verb == telnet::Dont ? Side::Ours : Side::Theirs;
    const bool on = verb == telnet::Do || verb == telnet::Will;
    const char yes = side == Side::Ours ? telnet::Will : telnet::Do;
    const char no = side == Side::Ours ? telnet::Wont : telnet::Dont;
    auto* const found =
        std::find_if(mOptions.begin(), mOptions.end(), [side, option](const Option& known) {
            return known.side == side && known.option == option;
        });
    if (found == mOptions.end()) {
        if (on) Say(no, option);
        return;
    }
    // An answer is not answered, nor is what is so already: else two sides could go on for ever.
    const bool answer = std::exchange(found->asked, false);
    const bool known = found->on.value_or(false) == on;
    found->on = on;
    if (!answer && !known) Say(on ? yes : no, option);
    if (!on && found->refusal != nullptr) Refuse(found->refusal);
}

void ComPortClient::Say(char verb, char option) {
    if (Output().size() >= MostOwed) {
        Refuse("the server there asks without end and takes no answer");
        return;
    }
    mOutput += {telnet::Iac, verb, option};
}

void ComPortClient::Refuse(const std::string& text) {
    if (mRefusal.Ok()) mRefusal = {IoStatus::Unsupported, 0, text};
}

// -- Requests

void ComPortClient::Configure(const LineSettings& settings) {
    for (const comport::Request& request : comport::RequestsFor(settings))
        Ask(request);
}

void ComPortClient::HoldLines(bool dtr, bool rts) {
    Tell({comport::SetControl, {dtr ? comport::ControlDtrOn : comport::ControlDtrOff}});
    Tell({comport::SetControl, {rts ? comport::ControlRtsOn : comport::ControlRtsOff}});
}

void ComPortClient::AskForStates() {
    Tell({comport::SetModemStateMask, {comport::ModemMask}});
    Tell({comport::SetLineStateMask, {comport::LineMask}});
}

void ComPortClient::SetBreak(bool on) {
    Tell({comport::SetControl, {on ? comport::ControlBreakOn : comport::ControlBreakOff}});
}

void ComPortClient::Send(std::string_view data) {
    AppendEscaped(mOutput, data);
}

void ComPortClient::PurgeReceived() {
    const comport::Request purge{comport::PurgeData, {comport::PurgeReceived}};
    if (!mPurgesAreAnswered) {
        Tell(purge);
        return;
    }
    ++mPurging;
    Ask(purge);
}

void ComPortClient::PurgeUnsent() {
    Tell({comport::PurgeData, {comport::PurgeUnsent}});
}

void ComPortClient::Ask(const comport::Request& request) {
    mWaiting.push_back(request);
    Tell(request);
}

void ComPortClient::Tell(const comport::Request& request) {
    mOutput += {telnet::Iac, telnet::Begin, telnet::ComPort, request.command};
    AppendEscaped(mOutput, request.value);
    mOutput += {telnet::Iac, telnet::End};
}

// -- Answers

void ComPortClient::OnSubnegotiation(std::string_view bytes) {
    if (bytes.size() < 2 || bytes[0] != telnet::ComPort) return;
    const auto command = static_cast<char>(bytes[1] - comport::ServerOffset);
    const std::string_view value = bytes.substr(2);
    const unsigned state = value.empty() ? 0 : static_cast<unsigned char>(value.front());
    switch (command) {
    case comport::NotifyLineState:
        NoteLineState(state);
        return;
    case comport::NotifyModemState:
        if (!value.empty()) mDsr = (state & comport::ModemDsr) != 0;
        return;
    case comport::FlowSuspend:
        mSuspended = true;
        return;
    case comport::FlowResume:
        mSuspended = false;
        return;
    default:
        Answer({command, std::string(value)});
    }
}

void ComPortClient::NoteLineState(unsigned state) {
    if ((state & comport::LineOverrun) != 0) mLineErrors.overrun = true;
    if ((state & comport::LineParity) != 0) mLineErrors.parity = true;
    if ((state & comport::LineFrame) != 0) mLineErrors.frame = true;
}

void ComPortClient::Answer(const comport::Request& answer) {
    const auto found =
        std::find_if(mWaiting.begin(), mWaiting.end(), [&answer](const comport::Request& request) {
            return AnswersTo(request, answer);
        });
    if (found == mWaiting.end()) return;
    const comport::Request request = *found;
    mWaiting.erase(found);
    if (IsPurge(request)) --mPurging;
    if (answer == request) return;
    Refuse("the remote port does not take " + TextOf(request) + ", it answers " + TextOf(answer));
}

bool ComPortClient::Settled() const {
    return std::all_of(mWaiting.begin(), mWaiting.end(), IsPurge);
}

void ComPortClient::ForgetPurges(bool bForGood) {
    mWaiting.erase(std::remove_if(mWaiting.begin(), mWaiting.end(), IsPurge), mWaiting.end());
    mPurging = 0;
    if (bForGood) mPurgesAreAnswered = false;
}

std::string ComPortClient::Unanswered() const {
    const auto found = std::find_if_not(mWaiting.begin(), mWaiting.end(), IsPurge);
    return found == mWaiting.end() ? std::string() : TextOf(*found);
}

} // namespace qncomm
