// A host that does something within the control's events, in each of them while each long operation
// runs: it ends the control, takes it down or calls it back.

#include "LongOperations.h"
#include "testing/printer/TestPictures.h"

#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

TEST_P(WithinEvents, TheControlMayBeDestroyed) {
    for (const int at : Chosen(CountEvents())) {
        Prepare();
        Run(at, [this] { mAssembly.reset(); });
        EXPECT_EQ(mAssembly, nullptr) << "event " << at;
        const int changes = mScreen.mChanges;
        mReactor.Pass(5000);
        EXPECT_EQ(mScreen.mChanges, changes);
        Assemble("sim:R7G");
        ExpectUsable();
    }
}

TEST_P(WithinEvents, TheControlMayBeTakenDownAndBroughtUpAgain) {
    for (const int at : Chosen(CountEvents())) {
        SCOPED_TRACE(at);
        Prepare();
        Run(at, [this] { Control().TearDown(); });
        EXPECT_FALSE(mAssembly->Serial().PortOpen());
        mReactor.Pass(6000); // a printer that waits for the rest of a picture gives up
        Control().UserControl_ReadProperties(MemoryPropertyBag{});
        Control().SetRegSettings(mSettings);
        ExpectUsable();
    }
}

TEST_P(WithinEvents, TheControlMayBeHiddenAndShown) {
    const int events = CountEvents();
    for (const int at : Chosen(events)) {
        SCOPED_TRACE(at);
        Prepare();
        Run(at, [this] {
            Control().UserControl_Hide();
            Control().UserControl_Show();
            Control().UserControl_Hide();
        });
        mReactor.Pass(6000);
        ExpectUsable();
        EXPECT_FALSE(mAssembly->Serial().PortOpen());
    }
}

class MessageOfATransfer : public AssembledFixture {
  protected:
    /// The texts of the events of what is run, the first of them changed by the host.
    Strings TextsOf(std::string_view start, const std::function<void()>& run) {
        Strings texts;
        const Subscription status =
            Control().StatusEvent.Connect([&](std::string& text, std::int16_t, bool&) {
                if (text.starts_with(start) || !texts.empty()) texts.push_back(text);
                if (texts.size() == 1) text = "mine";
            });
        run();
        return texts;
    }
};

TEST_F(MessageOfATransfer, StaysAsTheHostHasChangedIt) {
    Control().DoAutoconnect();
    const std::string path = mFolder.Write("NEW.DAT", std::string(5000, 'x'));
    const Strings sent = TextsOf("Uploading", [&] { Control().KermitUpload(path, "tmp:NEW.DAT"); });
    ASSERT_GE(sent.size(), 3U);
    EXPECT_EQ(sent[0], "Uploading NEW.DAT");
    EXPECT_THAT(Strings(sent.begin() + 1, sent.end()), ::testing::Each("mine"));
    const Strings typed = TextsOf("Transfering", [&] { Program("A.PRG", "10 REM\r\n20 REM"); });
    EXPECT_EQ(typed, (Strings{"Transfering Module tmp:A.PRG", "mine", "mine", "Ready"}));
    const std::string picture = mFolder.Write("logo.pcx", qncomm::testing::TestPcx(200, 200));
    const Strings loaded = TextsOf("Downloading", [&] { Control().InstallImage(picture); });
    EXPECT_EQ(loaded[0], "Downloading " + picture);
    EXPECT_EQ(loaded.back(), "mine");
    const Strings next = TextsOf("Downloading", [&] { Control().InstallImage(picture); });
    EXPECT_EQ(next[0], "Downloading " + picture) << "for that operation alone";
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Of, WithinEvents, ::testing::ValuesIn(LongOperations()),
                         [](const auto& operation) { return operation.param.name; });

} // namespace qncomm::testing
