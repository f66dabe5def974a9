#pragma once

#include "LinkFixture.h"
#include "common/Text.h"

#include <algorithm>

namespace qncomm::testing {

/// A link on a line at whose end a printer answers to one combination of settings.
class SearchFixture : public LinkFixture {
  protected:
    explicit SearchFixture(LinkOptions options = {}) : LinkFixture(std::move(options)) {
        mSerial.OnSend([this](std::string& sent) { Listen(sent); });
    }

    static Lines SetupOf(const std::string& channel) {
        return {channel + ",BAUDRATE,57600",
                channel + ",CHAR LENGTH,8",
                channel + ",PARITY,NONE",
                channel + ",STOPBITS,2",
                channel + ",FLOWCONTROL,RTS/CTS,DISABLE",
                channel + ",FLOWCONTROL,XON/XOFF,DATA FROM HOST,DISABLE",
                channel + ",FLOWCONTROL,XON/XOFF,DATA TO HOST,DISABLE"};
    }

    /// The printer's line has this rate: it answers at other formats, too, but not in text.
    void AnswerWithNoiseAt(std::string rate) { mNoisyRate = std::move(rate); }

    std::string mSettingsThatWork = "57600,n,8,2";
    int mChannel = 1;
    Lines mSetup = SetupOf("UART1");
    std::string mVersion = "1.0\r\nR7A\r\n";
    bool mSaysOk = true;
    std::int32_t mAnswersAfter = 10; ///< ms for a line; they are answered one after another
    std::int32_t mOpenTakes = 0;     ///< ms more for a line that opens a channel
    std::int32_t mItemTakes = 0;     ///< ms for each line of the setup
    std::size_t mLoadMissing = 0;    ///< bytes that it takes for the rest of a load first
    std::string mLoadEnd = "Ok\r\n"; ///< what it says behind them
    Lines mHeard;                    ///< command lines, without their line end
    Lines mTried;                    ///< settings under which something was sent

  private:
    void Listen(std::string& sent) {
        std::string bytes = std::exchange(sent, {});
        if (mTried.empty() || mTried.back() != mSerial.PortSettings())
            mTried.push_back(mSerial.PortSettings());
        if (!EqualNoCase(mSerial.PortSettings(), mSettingsThatWork)) {
            if (!mNoisyRate.empty() && mSerial.PortSettings().starts_with(mNoisyRate))
                mSerial.Arrive("\xFE\xF8\x80", 5);
            return;
        }
        TakeLoad(bytes);
        std::string line;
        for (const char c : bytes) {
            if (c == '\r' || c == '\n') {
                if (!line.empty()) Answer(std::exchange(line, {}));
            } else if (c != '\x11' && c != '\0') {
                line += c;
            }
        }
    }

    void TakeLoad(std::string& bytes) {
        if (mLoadMissing == 0) return;
        const std::size_t taken = std::min(mLoadMissing, bytes.size());
        bytes.erase(0, taken);
        mLoadMissing -= taken;
        if (mLoadMissing > 0) return;
        mFreeAt = std::max(mFreeAt, mLoop.NowMs()) + mAnswersAfter;
        Say(mLoadEnd);
    }

    void Answer(const std::string& line) {
        mHeard.push_back(line);
        mFreeAt = std::max(mFreeAt, mLoop.NowMs()) + mAnswersAfter;
        if (line.starts_with("OPEN")) mFreeAt += mOpenTakes;
        std::string reply = line + "\r\n";
        if (line.find("HELLO") != std::string::npos) reply += "HELLO\r\n";
        if (line.find("UART" + std::to_string(mChannel) + ":\" FOR OUTPUT") != std::string::npos)
            reply += line.find("VERSION$") == std::string::npos
                         ? "=" + std::to_string(mChannel) + "\r\n"
                         : mVersion;
        if (line.find("SETUP WRITE") != std::string::npos)
            for (const std::string& item : mSetup) {
                reply += item + "\r\n";
                if (mItemTakes == 0) continue;
                Say(std::exchange(reply, {}));
                mFreeAt += mItemTakes;
            }
        if (line.starts_with("PRINT SYSVAR")) reply += "-1\r\n2\r\n";
        if (line.starts_with("PRINT VERSION")) reply += mVersion;
        if (mSaysOk) reply += "Ok\r\n";
        Say(reply);
    }

    void Say(const std::string& text) {
        mSerial.Arrive(text, static_cast<std::int32_t>(mFreeAt - mLoop.NowMs()));
    }

    std::int64_t mFreeAt = 0;
    std::string mNoisyRate;
};

} // namespace qncomm::testing
