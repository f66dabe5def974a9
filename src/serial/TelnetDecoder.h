#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qncomm {

/// Receives the parts of a Telnet stream in their order.
class TelnetSink {
  public:
    virtual ~TelnetSink() = default;

    virtual void OnData(std::string_view bytes) = 0;
    /// verb is one of Do, Dont, Will, Wont.
    virtual void OnOption(char verb, char option) = 0;
    /// The bytes of a whole subnegotiation, its option first, doubled bytes made single.
    virtual void OnSubnegotiation(std::string_view bytes) = 0;
};

/// Takes a Telnet stream apart, in whatever pieces it comes. Commands without a meaning for a
/// serial line are dropped, and so is a subnegotiation that is longer than any known one.
class TelnetDecoder {
  public:
    static constexpr std::size_t LongestSubnegotiation = 512;

    void Feed(std::string_view bytes, TelnetSink& sink);

  private:
    enum class State { Data, Command, Option, Subnegotiation, SubnegotiationCommand };

    void FeedData(std::string_view& bytes, TelnetSink& sink);
    void FeedOne(char byte, TelnetSink& sink);
    void OnCommand(char byte, TelnetSink& sink);
    void OnSubnegotiationCommand(char byte, TelnetSink& sink);
    void Keep(char byte);

    State mState = State::Data;
    char mVerb = 0;
    std::string mSubnegotiation;
    bool mTooLong = false;
};

} // namespace qncomm
