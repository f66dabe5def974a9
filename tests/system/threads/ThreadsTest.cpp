// Hosts on threads of their own, each with a control, a loop and a virtual printer: none meets
// another, but for a settings file that they share.

#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "console/ConsoleDesk.h"
#include "control/PropertyBag.h"
#include "platform/DurableFile.h"
#include "platform/FileSettings.h"
#include "platform/PollLoop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/stack/RecordingTrace.h"

#include <gtest/gtest.h>

#include <array>
#include <exception>
#include <sstream>
#include <string>
#include <thread>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
int umaskCalls = 0; // NOLINT: what stands in for the call has nowhere else to count
} // namespace

/// In place of the library's: the call changes the mask of the whole process, if only for a moment.
extern "C" mode_t umask(mode_t mask) noexcept {
    ++umaskCalls;
    return static_cast<mode_t>(::syscall(SYS_umask, mask));
}

namespace qncomm::testing {
namespace {

constexpr int Hosts = 16;
constexpr int Rounds = 3;

/// One host: what it does with its control, and what came of it as a text.
class Host {
  public:
    Host(int number, const ScratchFolder& folder)
        : mName(std::to_string(number)), mFolder(folder), mDesk(mLoop, mErrors) {}

    std::string Run() {
        try {
            for (int round = 0; round < Rounds; ++round)
                Session();
            return mDone;
        } catch (const QNError& error) {
            return error.Source() + ": " + error.Description();
        } catch (const std::exception& error) {
            return error.what();
        }
    }

  private:
    void Session() {
        ControlAssembly::Options options;
        options.bindings = PortBindings(AllChannelKinds());
        mDone += options.bindings.Give(1, "sim:R7G?boot-ms=0");
        options.trace = &mTrace;
        options.link.remembered = true;
        ControlAssembly assembly(mLoop, mDesk.Services(), mDesk.View(), std::move(options));
        QNComm& control = assembly.Control();
        control.UserControl_ReadProperties(MemoryPropertyBag());
        const auto settings = std::make_shared<FileSettings>(mFolder.File("settings.ini"));
        settings->WriteValue("Hosts", "Host" + mName, mName);
        control.SetRegSettings(settings);
        const Subscription status =
            control.StatusEvent.Connect([this](std::string&, std::int16_t, bool&) { mSteps += 1; });
        Work(control);
        control.TearDown();
    }

    void Work(QNComm& control) {
        if (!control.DoAutoconnect()) mDone += "no printer;";
        ModuleUploadArgs module{
            .sSourcePath = {}, .sTargetPath = "M.PRG", .sModuleText = "10 PRINT " + mName + "\r\n"};
        if (control.ModuleUpload(module)->Count() != 0) mDone += "errors;";
        const std::string sent = mFolder.Write("sent" + mName, std::string(3000, mName.back()));
        control.KermitUpload(sent, "c:SENT" + mName);
        control.KermitDownload("c:SENT" + mName, mFolder.File("back" + mName));
        if (mFolder.Read("back" + mName) != mFolder.Read("sent" + mName)) mDone += "other bytes;";
        control.UserControl_Show();
        control.SetCaptureToFile(mFolder.File("capture" + mName));
        control.Clear();
        control.UserControl_Hide();
        const auto files = control.Files("c:", true);
        if (files == nullptr || !files->Contains("SENT" + mName)) mDone += "no such file;";
        if (control.Setup()->Count() == 0) mDone += "no setup;";
    }

    std::string mName;
    const ScratchFolder& mFolder;
    PollLoop mLoop;
    std::ostringstream mErrors;
    ConsoleDesk mDesk;
    RecordingTrace mTrace;
    std::string mDone; ///< what went wrong
    int mSteps = 0;
};

TEST(Threads, SixteenHostsWithAControlEachDoNotMeet) {
    const ScratchFolder folder;
    std::array<std::string, Hosts> done;
    std::array<std::thread, Hosts> threads;
    for (std::size_t at = 0; at < Hosts; ++at)
        threads.at(at) = std::thread(
            [at, &folder, &done] { done.at(at) = Host(static_cast<int>(at), folder).Run(); });
    for (std::thread& thread : threads)
        thread.join();
    const FileSettings settings(folder.File("settings.ini"));
    for (std::size_t at = 0; at < Hosts; ++at) {
        const std::string name = std::to_string(at);
        EXPECT_EQ(done.at(at), "") << "of host " << at;
        EXPECT_EQ(settings.ReadValue("Hosts", "Host" + name, ""), name);
    }
}

TEST(Threads, AFileThatIsWrittenLeavesTheUmaskAloneThatAllThreadsShare) {
    const mode_t mask = ::umask(0027);
    const ScratchFolder folder;
    umaskCalls = 0;
    ASSERT_TRUE(ReplaceFile(folder.File("new"), "bytes").Ok());
    EXPECT_EQ(umaskCalls, 0);
    struct stat facts {};
    ASSERT_EQ(::stat(folder.File("new").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0640U);
    ::umask(mask);
}

} // namespace
} // namespace qncomm::testing
