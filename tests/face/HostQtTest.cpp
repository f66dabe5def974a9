// The example host as a person uses it: the real program, keys from outside, a virtual printer
// behind it.

#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>

#include <algorithm>

namespace qncomm::testing {
namespace {

using qncomm::testing::Program;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

/// A program's window, worked from outside by keys.
class Keys {
  public:
    /// Waits for the window with the title and gives it the keyboard.
    explicit Keys(const std::string& title)
        : mWindow(Say({"search", "--sync", "--onlyvisible", "--name", "^" + title + "$"})) {
        Say({"windowfocus", "--sync", mWindow});
    }
    void Press(const std::string& key) { Say({"key", "--clearmodifiers", key}); }

  private:
    static std::string Say(Words words) {
        words.insert(words.begin(), "xdotool");
        Program tool(std::move(words));
        EXPECT_EQ(tool.Wait(), 0) << tool.Err();
        return tool.Out().substr(0, tool.Out().find('\n'));
    }

    std::string mWindow;
};

void KeepPicture(const QString& name) {
    const QDir folder(qEnvironmentVariable("QN_ARTEFACTS", QStringLiteral(".")));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    EXPECT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(folder.filePath(name)));
}

TEST(HostQt, PrintsALabelForWhoPressesItsButtonAndEndsWithItsWindow) {
    const ScratchFolder folder;
    Program host({QN_HOST_PROGRAM, "sim:R7G?labels=" + folder.File("labels")},
                 Program::Stdio::Pipes, {"XDG_CONFIG_HOME=" + folder.Path()});
    Keys keys("Shelf labels");
    keys.Press("alt+p");
    EXPECT_TRUE(QTest::qWaitFor([&] { return folder.Has("labels/label-0001.png"); }, 20000));
    KeepPicture(QStringLiteral("host-qt.png"));
    keys.Press("alt+r");
    keys.Press("q");
    EXPECT_EQ(host.Wait(), 0) << host.Err();
}

TEST(HostQt, RefusesAnAddressThatIsNone) {
    const ScratchFolder folder;
    Program host({QN_HOST_PROGRAM, "gopher:R7G"}, Program::Stdio::Pipes,
                 {"XDG_CONFIG_HOME=" + folder.Path()});
    EXPECT_NE(host.Wait(), 0);
    EXPECT_THAT(host.Err(), HasSubstr("gopher"));
}

TEST(HostQt, TakesAtMost80LinesOfCode) {
    QFile code(QStringLiteral(QN_HOST_CODE));
    ASSERT_TRUE(code.open(QIODevice::ReadOnly));
    const auto lines = code.readAll().count('\n');
    EXPECT_GT(lines, 20);
    EXPECT_LE(lines, 80);
}

} // namespace
} // namespace qncomm::testing
