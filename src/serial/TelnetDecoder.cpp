#include "TelnetDecoder.h"

#include "TelnetCodes.h"

namespace qncomm {

void TelnetDecoder::Feed(std::string_view bytes, TelnetSink& sink) {
    while (!bytes.empty()) {
        if (mState == State::Data) {
            FeedData(bytes, sink);
            continue;
        }
        FeedOne(bytes.front(), sink);
        bytes.remove_prefix(1);
    }
}

void TelnetDecoder::FeedData(std::string_view& bytes, TelnetSink& sink) {
    const std::size_t command = bytes.find(telnet::Iac);
    const std::string_view data = bytes.substr(0, command);
    if (!data.empty()) sink.OnData(data);
    bytes.remove_prefix(data.size());
    if (bytes.empty()) return;
    bytes.remove_prefix(1);
    mState = State::Command;
}

void TelnetDecoder::FeedOne(char byte, TelnetSink& sink) {
    switch (mState) {
    case State::Data:
        return;
    case State::Command:
        OnCommand(byte, sink);
        return;
    case State::Option:
        mState = State::Data;
        sink.OnOption(mVerb, byte);
        return;
    case State::Subnegotiation:
        if (byte == telnet::Iac)
            mState = State::SubnegotiationCommand;
        else
            Keep(byte);
        return;
    case State::SubnegotiationCommand:
        OnSubnegotiationCommand(byte, sink);
        return;
    }
}

void TelnetDecoder::OnCommand(char byte, TelnetSink& sink) {
    mState = State::Data;
    switch (byte) {
    case telnet::Iac:
        sink.OnData({&telnet::Iac, 1});
        return;
    case telnet::Do:
    case telnet::Dont:
    case telnet::Will:
    case telnet::Wont:
        mVerb = byte;
        mState = State::Option;
        return;
    case telnet::Begin:
        mSubnegotiation.clear();
        mTooLong = false;
        mState = State::Subnegotiation;
        return;
    default:
        return;
    }
}

void TelnetDecoder::OnSubnegotiationCommand(char byte, TelnetSink& sink) {
    if (byte == telnet::Iac) {
        Keep(byte);
        mState = State::Subnegotiation;
        return;
    }
    // Any other command ends it, so that a damaged one does not swallow what follows.
    if (byte != telnet::End) {
        OnCommand(byte, sink);
        return;
    }
    mState = State::Data;
    if (!mTooLong && !mSubnegotiation.empty()) sink.OnSubnegotiation(mSubnegotiation);
}

void TelnetDecoder::Keep(char byte) {
    mTooLong = mTooLong || mSubnegotiation.size() == LongestSubnegotiation;
    if (!mTooLong) mSubnegotiation += byte;
}

} // namespace qncomm
