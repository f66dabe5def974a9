// What is known of line and printer through a session, learnt from what passes.

#include "common/modErrorHandling.h"
#include "link/clsDataLink.h"
#include "testing/core/ExpectRaised.h"
#include "testing/printer/TestPictures.h"
#include "testing/stack/AssembledFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class LiveStateOfASession : public AssembledFixture {
  protected:
    /// What the printer did from here on, each change in a word.
    void Watch() {
        mChanges = Control().LiveStateEvent.Connect(
            [this](std::int16_t, std::int16_t printer, std::int32_t) {
                std::string word(WordFor(static_cast<enumPrinterActivity>(printer)));
                if (mDid.empty() || mDid.back() != word) mDid.push_back(std::move(word));
            });
    }
    std::string Fact(const char* name) { return Control().LiveFacts()->Item(name)->Value; }

    Subscription mChanges;
    Strings mDid;
};

TEST_F(LiveStateOfASession, HoldsWhoAndWhereThePrinterIs) {
    Show().PrinterType();
    EXPECT_EQ(Fact("model"), Control().PrinterType());
    EXPECT_EQ(Fact("version"), Control().FirmwareVersion());
    EXPECT_EQ(Fact("port"), "1");
    EXPECT_TRUE(Fact("address").starts_with("sim:R7G")) << Fact("address");
    EXPECT_EQ(Fact("line"), "open");
    EXPECT_EQ(Fact("printer"), "at prompt");
}

TEST_F(LiveStateOfASession, FollowsARestart) {
    Show().PrinterType();
    const std::int32_t before = Control().Generation();
    Watch();
    Control().Reboot();
    EXPECT_THAT(mDid, ElementsAre("rebooting", "at prompt"));
    EXPECT_EQ(Control().Generation(), before) << "it is the same printer";
}

TEST_F(LiveStateOfASession, FollowsAnUpload) {
    Show();
    Watch();
    Control().KermitUpload(mFolder.Write("A.TXT", "hello\r\n"), "tmp:A.TXT");
    EXPECT_THAT(mDid, Contains("receiving"));
    EXPECT_EQ(Fact("printer"), "at prompt");
}

TEST_F(LiveStateOfASession, FollowsTheLoadsOfAFontAndOfAnImage) {
    Show();
    const std::pair<const char*, std::function<void()>> loads[] = {
        {"font", [this] { Control().InstallFont(mFolder.Write("mine.ttf", TestFont())); }},
        {"image", [this] { Control().InstallImage(mFolder.Write("logo.pcx", TestPcx(8, 8))); }},
    };
    for (const auto& [name, load] : loads) {
        mDid.clear();
        Watch();
        load();
        EXPECT_THAT(mDid, Contains("receiving")) << name;
        EXPECT_EQ(Fact("printer"), "at prompt") << name;
    }
}

TEST_F(LiveStateOfASession, AnotherPrinterOnTheSamePortIsAnotherGeneration) {
    Show().Files("c:");
    const std::int32_t read = Control().Generation();
    Control().RequireGeneration(read);
    EXPECT_EQ(mAssembly->Bindings().Give(1, "sim:R7C"), "");
    Control().UserControl_Hide();
    Control().UserControl_Show();
    EXPECT_RAISED(Control().RequireGeneration(read), ErrFormerPrinter);
}

} // namespace
} // namespace qncomm::testing
