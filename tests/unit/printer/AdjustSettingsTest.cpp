#include "PrinterFixture.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "testing/core/ScratchFolder.h"

#include <map>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string CharLength = "CHAR LENGTH";
const std::string ToHost = "FLOWCONTROL,XON/XOFF,DATA TO HOST";
const std::string FromHost = "FLOWCONTROL,XON/XOFF,DATA FROM HOST";

/// A printer whose line follows its setup: what it is told takes effect on the next command.
class AdjustSettings : public PrinterFixture {
  protected:
    AdjustSettings() {
        mSerial.OnSend([this](std::string& sent) { Listen(sent); });
    }

    /// The printer is found as it is set up.
    void Connect(const std::string& bits, const std::string& xonXoff) {
        mItems[CharLength] = bits;
        mItems[ToHost] = mItems[FromHost] = xonXoff;
        ASSERT_TRUE(mQuorin.DoAutoconnect());
        EXPECT_EQ(mQuorin.PrinterType(), "R7G");
        mHeard.clear();
    }

    /// The command lines that changed the setup.
    Lines Changes() const {
        Lines changes;
        for (const std::string& line : mHeard)
            if (line.starts_with("SETUP\"")) changes.push_back(line);
        return changes;
    }

    int mChannel = 1;
    Lines mHeard;
    std::string mRawBytes;
    ScratchFolder mFolder;

  private:
    void Listen(std::string& sent) {
        const std::string bytes = std::exchange(sent, {});
        const std::string works = "9600,n," + mItems[CharLength] + ",2";
        if (!EqualNoCase(mSerial.PortSettings(), works)) return;
        for (const char c : bytes) {
            if (mRawLeft > 0) {
                mRawBytes += c;
                if (--mRawLeft == 0) mSerial.Arrive("\r\nOk\r\n", 5);
            } else if (c == '\r' || c == '\n') {
                if (!mLine.empty()) Obey(std::exchange(mLine, {}));
            } else if (c != '\x11') {
                mLine += c;
            }
        }
    }

    void Obey(const std::string& line) {
        mHeard.push_back(line);
        if (line.starts_with("IMAGE LOAD")) {
            mRawLeft = ToInt32(Val(line.substr(line.find(',') + 1)));
            mSerial.Arrive(line + "\r\n", 5);
            return;
        }
        std::string reply = line + "\r\n";
        const std::string uart = "UART" + std::to_string(mChannel);
        if (line.find("HELLO") != std::string::npos) reply += "HELLO\r\n";
        if (line.find(uart + ":\" FOR OUTPUT") != std::string::npos)
            reply += "=" + std::to_string(mChannel) + "\r\n";
        if (line.find("SETUP WRITE") != std::string::npos)
            for (const auto& [key, value] : mItems)
                reply += "SER-COM," + uart + "," + key + "," + value + "\r\n";
        if (line.starts_with("PRINT SYSVAR")) reply += "-1\r\n2\r\n";
        if (line.starts_with("PRINT VERSION")) reply += "v8.10\r\nR7G\r\n";
        if (line == "IMAGES") reply += "1 BYTES FREE 2 BYTES USED\r\n";
        const std::string change = "SETUP\"SER-COM," + uart + ",";
        if (line.starts_with(change)) {
            const std::size_t comma = line.rfind(',');
            mItems[line.substr(change.size(), comma - change.size())] =
                line.substr(comma + 1, line.size() - comma - 2);
        }
        mSerial.Arrive(reply + "Ok\r\n", 5);
    }

    std::map<std::string, std::string> mItems{
        {"BAUDRATE", "9600"}, {"PARITY", "NONE"},
        {"STOPBITS", "2"},    {"FLOWCONTROL,RTS/CTS", "DISABLE"},
        {CharLength, "8"},    {ToHost, "DISABLE"},
        {FromHost, "DISABLE"}};
    std::string mLine;
    std::int32_t mRawLeft = 0;
};

TEST_F(AdjustSettings, AsksNothingWhenTheSettingsFit) {
    Connect("8", "DISABLE");
    EXPECT_TRUE(mQuorin.IsCommSetForImageLoad());
    mLink.SetFlowcontrol("2");
    EXPECT_TRUE(mQuorin.IsCommSetForImageLoad());
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    EXPECT_THAT(mHeard, IsEmpty());
}

TEST_F(AdjustSettings, AsksAndTakesAnyAnswerButYesForNo) {
    Connect("7", "DISABLE");
    for (const MsgBoxResult answer : {MsgBoxResult::No, MsgBoxResult::Cancel, MsgBoxResult::Ok}) {
        mDesktop.mAnswers = {answer};
        EXPECT_FALSE(mQuorin.IsCommSetForImageLoad());
    }
    ASSERT_EQ(mDesktop.mBoxes.size(), 3U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Adjust Comm.settings to support Quorin Image Load?");
    EXPECT_EQ(mDesktop.mBoxes[0].title, "Adjust Comm.Settings");
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::YesNo);
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Question);
    EXPECT_THAT(mHeard, IsEmpty());
    EXPECT_EQ(mLink.Databits(), "7");
}

TEST_F(AdjustSettings, ARefusalRaises1014AndSendsNothingOfTheFile) {
    Connect("7", "DISABLE");
    const std::string path = mFolder.Write("a.pcx", "\x0A\x05");
    mDesktop.mAnswers = {MsgBoxResult::No, MsgBoxResult::No};
    EXPECT_RAISED_FROM(mQuorin.InstallImage(path), "1014 clsQuorin:InstallImage");
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_RAISED_FROM(mQuorin.Fileload(path), "1014 clsQuorin:InstallImage");
    EXPECT_THAT(mHeard, Not(Contains(HasSubstr("LOAD"))));
    EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(AdjustSettings, ChangesTheDataBitsAloneWhenOnlyTheyDoNotFit) {
    Connect("7", "DISABLE");
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    EXPECT_TRUE(mQuorin.IsCommSetForImageLoad());
    EXPECT_THAT(Changes(), ElementsAre("SETUP\"SER-COM,UART1,CHAR LENGTH,8\""));
    EXPECT_EQ(mLink.Databits(), "8");
    EXPECT_FALSE(mLink.ImmediateMode()) << "the next claim finds the printer anew";
}

TEST_F(AdjustSettings, ChangesBothDirectionsOfTheFlowControl) {
    Connect("8", "ENABLE");
    EXPECT_EQ(mLink.Flowcontrol(), "1");
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    EXPECT_TRUE(mQuorin.IsCommSetForImageLoad());
    EXPECT_THAT(Changes(), ElementsAre("SETUP\"SER-COM,UART1," + ToHost + ",DISABLE\"",
                                       "SETUP\"SER-COM,UART1," + FromHost + ",DISABLE\""));
    EXPECT_EQ(mLink.Flowcontrol(), "0");
}

TEST_F(AdjustSettings, ChangesTheChannelThatTheHostIsOn) {
    mChannel = 2;
    Connect("7", "DISABLE");
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    EXPECT_TRUE(mQuorin.IsCommSetForImageLoad());
    EXPECT_THAT(Changes(), ElementsAre("SETUP\"SER-COM,UART2,CHAR LENGTH,8\""));
}

TEST_F(AdjustSettings, AnInstallationGoesOnOverTheChangedLine) {
    Connect("7", "ENABLE");
    const std::string bytes = "\x0A\x05" + std::string(3000, '\xFE');
    const std::string path = mFolder.Write("a.pcx", bytes);
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    mQuorin.InstallImage(path);
    EXPECT_EQ(Changes().size(), 3U);
    EXPECT_THAT(mHeard, Contains("IMAGE LOAD \"A.PCX\",3002,\"\""));
    EXPECT_EQ(mRawBytes, bytes);
    EXPECT_EQ(mLink.SettingsText(), "9600,N,8,2");
    EXPECT_EQ(mLink.Flowcontrol(), "0");
}

} // namespace
} // namespace qncomm::testing
