// Files between a host and the virtual printer, the whole way down on a driven clock.

#include "printer/clsQuorin.h"
#include "support/ExpectRaised.h"
#include "support/ManualReactor.h"
#include "support/Stack.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace qncomm::testing {
namespace {

std::string AllBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& c : bytes) {
        state = state * 1664525U + 1013904223U;
        c = static_cast<char>(state >> 24U);
    }
    return bytes;
}

struct LineOf {
    const char* name;
    const char* address;
    std::size_t size;
};

class StackTransfer : public ::testing::TestWithParam<LineOf> {
  protected:
    StackTransfer() {
        std::filesystem::create_directories(mFolder);
        std::ofstream(mSent, std::ios::binary) << mContent;
    }
    ~StackTransfer() override { std::filesystem::remove_all(mFolder); }

    static std::string Read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    const std::string mFolder =
        ::testing::TempDir() + "stack-transfer-"
        + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()).substr(0, 4)
        + GetParam().name;
    const std::string mSent = mFolder + "/sent.bin";
    const std::string mBack = mFolder + "/back.bin";
    const std::string mContent = AllBytes(GetParam().size);
    ManualReactor mReactor;
    Stack mStack{mReactor, GetParam().address};
    clsQuorin mQuorin{mStack.mLink, mStack.mDesktop};
};

TEST_P(StackTransfer, GoesThereAndBackByKermit) {
    mQuorin.KermitUpload(mSent, "c:DATA.BIN");
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_TRUE(mQuorin.PrinterFileExists("c:DATA.BIN"));
    mQuorin.KermitDownload("c:DATA.BIN", mBack);
    EXPECT_EQ(Read(mBack), mContent);
    EXPECT_EQ(mStack.Ask("PRINT 1").at(1), "1") << "the printer is at its prompt";
}

TEST_P(StackTransfer, ACancelLeavesThePrinterAtItsPromptAndNoFile) {
    const Subscription cancel =
        mStack.mLink.StatusEvent.Connect([](std::string& text, std::int16_t&, bool& stop) {
            if (text.starts_with("Uploading")) stop = true;
        });
    EXPECT_RAISED(mQuorin.KermitUpload(mSent, "c:DATA.BIN"), 1023);
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    mReactor.Pass(2000);
    EXPECT_EQ(mStack.Ask("PRINT 1").at(1), "1");
}

INSTANTIATE_TEST_SUITE_P(Lines, StackTransfer,
                         ::testing::Values(LineOf{"Plain", "sim:R7G", 50'000},
                                           LineOf{"SevenBits", "sim:R7G?format=n,7,2", 20'000},
                                           LineOf{"Paced", "sim:R7G?paced=on&baud=57600", 20'000},
                                           LineOf{"Empty", "sim:R7G", 0}),
                         [](const auto& line) { return line.param.name; });

TEST(StackTransferFailure, AMissingPrinterFileFailsAndLeavesNoHostFile) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    const std::string target = ::testing::TempDir() + "never-comes.bin";
    EXPECT_RAISED_FROM(stack.mLink.KermitDownload("c:NONE", target),
                       "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_FALSE(std::filesystem::exists(target));
    EXPECT_EQ(stack.mLink.UseCount(), 0);
}

TEST(StackTransferFailure, ABinaryDownloadLooksAtNeitherPortNorFileAndFailsOnAClosedPort) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    const std::string target = ::testing::TempDir() + "never-opened.bin";
    for (const std::int16_t protocol : {BinaryZModem, BinaryKermit}) {
        std::ofstream(target) << "what stood here before";
        EXPECT_RAISED_FROM(stack.mLink.BinaryDownload(target, protocol),
                           "1022 QNComm, clsDataLink:KermitDownload");
        EXPECT_EQ(stack.mSerial.TransferReason(), "the port is not open");
        EXPECT_EQ(std::filesystem::file_size(target), 22U);
    }
    std::filesystem::remove(target);
}

} // namespace
} // namespace qncomm::testing
