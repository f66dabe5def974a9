// A printer whose line is set otherwise than the host's, on the lines that carry the whole format.
#include "assembly/AllChannelKinds.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"
#include "testing/line/ServedPrinter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Served = std::unique_ptr<ServedPrinter> (*)(const std::string&);

class WrongSettings : public ::testing::TestWithParam<Served> {
  protected:
    WrongSettings() {
        EXPECT_EQ(mPort.Bindings().Give(1, mPrinter->Address()), "");
        mPort.SetPortNumber(1);
        mPort.SetPortSettings("9600,N,8,2");
        mPort.SetReceiveThreshold(1);
        mPort.SetEventSink([this](SerialEvent event) {
            if (event != SerialEventReceive) {
                mErrors.insert(event);
                return;
            }
            mText += mPort.Read();
            ++mReads;
        });
        mPort.SetPortOpen(true);
    }

    bool Until(const std::function<bool()>& condition) {
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (!condition() && mLoop.NowMs() < limit)
            mLoop.Yield(1000);
        return condition();
    }
    /// A program that never stops talking: the host must not say a word that is understood.
    void LetItTalk() {
        mPort.Write("10 PRINT 42:GOTO 10\r\nRUN\r\n");
        EXPECT_TRUE(Until([this] { return mText.find("42\r\n42\r\n") != std::string::npos; }));
        EXPECT_THAT(mErrors, IsEmpty());
    }
    /// The line errors from what the printer says to a host of these settings, until that one is
    /// among them. What comes while a server takes the settings may be more than is kept: that is
    /// told, too, and is none of them.
    std::set<SerialEvent> ErrorsAt(const std::string& settings, SerialEvent awaited) {
        mPort.SetPortSettings(settings);
        mErrors.clear();
        EXPECT_TRUE(Until([&] { return mErrors.contains(awaited); })) << settings;
        mErrors.erase(SerialEventReceiveOverflow);
        return mErrors;
    }

    std::unique_ptr<ServedPrinter> mPrinter = GetParam()("R7G?baud=9600&format=n,8,2");
    PollLoop mLoop;
    PDQComm mPort{mLoop, PortBindings(AllChannelKinds())};
    std::string mText;
    int mReads = 0;
    std::set<SerialEvent> mErrors;
};

TEST_P(WrongSettings, OfTheRateOrTheFormatAreFrameErrors) {
    LetItTalk();
    EXPECT_THAT(ErrorsAt("19200,N,8,2", SerialEventFrame), ElementsAre(SerialEventFrame));
    EXPECT_THAT(ErrorsAt("9600,N,7,2", SerialEventFrame), ElementsAre(SerialEventFrame));
}

TEST_P(WrongSettings, OfTheParityAloneAreParityErrors) {
    LetItTalk();
    EXPECT_THAT(ErrorsAt("9600,E,8,2", SerialEventParity), ElementsAre(SerialEventParity));
}

INSTANTIATE_TEST_SUITE_P(Lines, WrongSettings,
                         ::testing::Values(PrinterInProcess, PrinterOnRfc2217),
                         [](const auto& line) {
                             return line.index == 0 ? "InProcess" : "Rfc2217";
                         });

} // namespace
} // namespace qncomm::testing
