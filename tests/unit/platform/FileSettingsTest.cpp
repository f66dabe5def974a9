#include "platform/FileSettings.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "platform/Fd.h"
#include "platform/FdWait.h"
#include "platform/Interrupt.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using qncomm::FileSettings;
using qncomm::QNError;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FileSettingsTest : public testing::Test {
  protected:
    FileSettingsTest() {
        std::string name = (fs::temp_directory_path() / "qn-settings-XXXXXX").string();
        mFolder = ::mkdtemp(name.data());
    }
    ~FileSettingsTest() override { fs::remove_all(mFolder); }

    std::string Path() const { return (mFolder / "settings.ini").string(); }

    FileSettings Store() {
        return FileSettings(Path(),
                            [this](std::string_view line) { mWarnings.emplace_back(line); });
    }

    static std::string TextOf(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static void SetText(const fs::path& path, std::string_view text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::vector<std::string> FilesThere() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mFolder))
            names.push_back(entry.path().filename().string());
        return names;
    }
    static std::optional<QNError> ErrorOfWriting(FileSettings& store) {
        try {
            store.WriteValue("Settings", "Key", "value");
        } catch (const QNError& error) {
            return error;
        }
        return std::nullopt;
    }

    fs::path mFolder;
    std::vector<std::string> mWarnings;
};

/// The exit status of a child that runs the function; 100 for an escaped error.
template <class Function>
pid_t InChild(Function function) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    try {
        function();
    } catch (...) {
        ::_exit(100);
    }
    ::_exit(0);
}

int ExitOf(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST_F(FileSettingsTest, ReadsTheDefaultWithoutAFileAndMakesNone) {
    EXPECT_EQ(Store().ReadValue("Settings", "Baudrate", "Nada"), "Nada");
    EXPECT_THAT(FilesThere(), IsEmpty());
    EXPECT_THAT(mWarnings, IsEmpty());
}

TEST_F(FileSettingsTest, KeepsAValueForTheNextProcessInATextThatAPersonCanRead) {
    Store().WriteValue("Settings", "Baudrate", "9600");
    EXPECT_EQ(Store().ReadValue("settings", "BAUDRATE", ""), "9600");
    EXPECT_EQ(TextOf(Path()), "[Settings]\nBaudrate=9600\n");
}

TEST_F(FileSettingsTest, MakesTheFoldersAboveTheFileForThisPersonAlone) {
    const std::string path = (mFolder / "a" / "b" / "settings.ini").string();
    FileSettings(path).WriteValue("Settings", "Key", "value");
    const auto mode = fs::status(mFolder / "a").permissions();
    EXPECT_EQ(mode & (fs::perms::group_all | fs::perms::others_all), fs::perms::none);
    EXPECT_EQ(FileSettings(path).ReadValue("Settings", "Key", ""), "value");
}

TEST_F(FileSettingsTest, KeepsWhatAPersonWroteIntoTheFile) {
    SetText(Path(), "; hall 3\n\n[Ports]\nCOM1 = tcp://hall3:9100 \n\n; do not touch\n[Settings]\n"
                    "Baudrate=300\n");
    FileSettings settings = Store();
    settings.WriteValues({{"Settings", "Baudrate", "9600"}, {"Ports", "COM2", "sim:R7G"}});
    EXPECT_EQ(TextOf(Path()), "; hall 3\n\n[Ports]\nCOM1 = tcp://hall3:9100 \nCOM2=sim:R7G\n\n"
                              "; do not touch\n[Settings]\nBaudrate=9600\n");
    EXPECT_THAT(mWarnings, IsEmpty());
}

TEST_F(FileSettingsTest, SeesWhatAnotherProcessHasWritten) {
    FileSettings store = Store();
    store.WriteValue("Settings", "Key", "old");
    ASSERT_EQ(ExitOf(InChild([&] { Store().WriteValue("Settings", "Key", "new"); })), 0);
    EXPECT_EQ(store.ReadValue("Settings", "Key", ""), "new");
}

TEST_F(FileSettingsTest, TwoProcessesWritingDifferentKeysLoseNone) {
    constexpr int Keys = 200;
    std::array<pid_t, 2> children{};
    for (std::size_t who = 0; who < children.size(); ++who)
        children[who] = InChild([&] {
            FileSettings store = Store();
            for (int n = 0; n < Keys; ++n)
                store.WriteValue("Process" + std::to_string(who), "Key" + std::to_string(n),
                                 std::to_string(n));
        });
    for (const pid_t child : children)
        ASSERT_EQ(ExitOf(child), 0);
    const FileSettings store = Store();
    for (int who = 0; who < 2; ++who)
        for (int n = 0; n < Keys; ++n)
            ASSERT_EQ(
                store.ReadValue("Process" + std::to_string(who), "Key" + std::to_string(n), "lost"),
                std::to_string(n));
    EXPECT_THAT(mWarnings, IsEmpty());
}

TEST_F(FileSettingsTest, AReaderNeverSeesAHalfWrittenFile) {
    Store().WriteValue("Settings", "Always", "here");
    const pid_t writer = InChild([&] {
        FileSettings store = Store();
        for (int n = 0; n < 300; ++n)
            store.WriteValue("Settings", "Long",
                             std::string(static_cast<std::size_t>(n * 37), 'x'));
    });
    const FileSettings reader = Store();
    int status = 0;
    while (::waitpid(writer, &status, WNOHANG) == 0)
        ASSERT_EQ(reader.ReadValue("Settings", "Always", "gone"), "here");
    EXPECT_EQ(status, 0);
    EXPECT_THAT(mWarnings, IsEmpty());
}

TEST_F(FileSettingsTest, AWriterThatWasKilledLeavesTheOldSettingsAndNothingInTheWay) {
    Store().WriteValue("Settings", "Key", "old");
    SetText((mFolder / ".qncomm-1").string(), "[Settings]\nKe"); // as far as it came
    FileSettings store = Store();
    EXPECT_EQ(store.ReadValue("Settings", "Key", ""), "old");
    store.WriteValue("Settings", "Other", "new");
    EXPECT_EQ(TextOf(Path()), "[Settings]\nKey=old\nOther=new\n");
    EXPECT_THAT(FilesThere(), UnorderedElementsAre("settings.ini", "settings.ini.lock"));
}

TEST_F(FileSettingsTest, WhatIsNoFileIsNeitherReadNorReplaced) {
    ASSERT_EQ(::mkfifo(Path().c_str(), 0600), 0);
    FileSettings store = Store();
    EXPECT_EQ(store.ReadValue("Settings", "Key", "default"), "default");
    EXPECT_THAT(mWarnings, ElementsAre(HasSubstr(Path() + ": this is a pipe")));
    EXPECT_THROW(store.WriteValue("Settings", "Key", "x"), qncomm::QNError);
    EXPECT_TRUE(fs::is_fifo(Path()));
}

TEST_F(FileSettingsTest, APipeInTheLocksPlaceIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo((Path() + ".lock").c_str(), 0600), 0);
    EXPECT_THROW(Store().WriteValue("Settings", "Key", "x"), qncomm::QNError);
}

TEST_F(FileSettingsTest, ADamagedFileIsMovedAsideWhenReadAndTheUserIsTold) {
    const std::string torn("[S]\n\0\0", 6);
    SetText(Path(), torn);
    EXPECT_EQ(Store().ReadValue("Settings", "Key", "default"), "default");
    EXPECT_EQ(TextOf(Path() + ".damaged-1"), torn);
    EXPECT_THAT(mWarnings, ElementsAre(HasSubstr(Path() + ".damaged-1")));
}

TEST_F(FileSettingsTest, ALineThatSaysNothingIsToldAndStays) {
    SetText(Path(), "[Settings]\nKey=1\nwhat is this\n");
    FileSettings store = Store();
    EXPECT_EQ(store.ReadValue("Settings", "Key", ""), "1");
    EXPECT_THAT(mWarnings, ElementsAre(HasSubstr("Line 3 of " + Path())));
    store.WriteValue("Settings", "Key", "2");
    EXPECT_EQ(TextOf(Path()), "[Settings]\nKey=2\nwhat is this\n");
}

TEST_F(FileSettingsTest, ASecondDamagedFileDoesNotReplaceTheFirst) {
    const std::string first("first\0", 6);
    const std::string second("second\0", 7);
    for (const std::string& text : {first, second}) {
        SetText(Path(), text);
        Store().WriteValue("Settings", "Key", "value");
    }
    EXPECT_EQ(TextOf(Path() + ".damaged-1"), first);
    EXPECT_EQ(TextOf(Path() + ".damaged-2"), second);
    EXPECT_EQ(Store().ReadValue("Settings", "Key", ""), "value");
    EXPECT_EQ(mWarnings.size(), 2U);
}

TEST_F(FileSettingsTest, AValueThatIsAlreadyThereCostsNoWrite) {
    FileSettings store = Store();
    store.WriteValue("Settings", "Key", "value");
    const auto before = fs::last_write_time(Path());
    fs::permissions(Path(), fs::perms::owner_read);
    store.WriteValue("Settings", "Key", "value");
    EXPECT_EQ(fs::last_write_time(Path()), before);
}

TEST_F(FileSettingsTest, SeveralValuesAreOneWrite) {
    FileSettings settings = Store();
    settings.WriteValue("Settings", "Baudrate", "300");
    const std::string before = TextOf(Path());
    std::vector<qncomm::SettingValue> values = {
        {"Settings", "Baudrate", "9600"}, {"Settings", "Parity", std::string(8U << 20U, 'x')}};
    EXPECT_THROW(settings.WriteValues(values), qncomm::QNError) << "more than a file may hold";
    EXPECT_EQ(TextOf(Path()), before) << "none of them is kept";
    values[1].value = "None";
    settings.WriteValues(values);
    EXPECT_EQ(TextOf(Path()), "[Settings]\nBaudrate=9600\nParity=None\n");
}

TEST_F(FileSettingsTest, ALinkToTheFileStaysALink) {
    fs::create_directory(mFolder / "real");
    SetText(mFolder / "real" / "here.ini", "");
    fs::create_symlink(mFolder / "real" / "here.ini", Path());
    Store().WriteValue("Settings", "Key", "value");
    EXPECT_TRUE(fs::is_symlink(Path()));
    EXPECT_EQ(TextOf(mFolder / "real" / "here.ini"), "[Settings]\nKey=value\n");
}

TEST_F(FileSettingsTest, AFolderInTheFilesPlaceIsError75) {
    fs::create_directory(Path());
    FileSettings store = Store();
    const auto error = ErrorOfWriting(store);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->Number(), qncomm::RtPathFileAccess);
    EXPECT_EQ(error->Source(), "FileSettings:WriteValue");
    EXPECT_THAT(error->Description(), HasSubstr(Path()));
}

TEST_F(FileSettingsTest, AFileThatTheUserMayNotWriteIsError70) {
    fs::permissions(mFolder, fs::perms::owner_read | fs::perms::owner_exec);
    // Permissions do not stop the superuser, so the child gives that up.
    const int status = ExitOf(InChild([&] {
        if (::getuid() == 0 && ::setresuid(65534, 65534, 65534) != 0) ::_exit(101);
        FileSettings store = Store();
        const auto error = ErrorOfWriting(store);
        ::_exit(error ? error->Number() : 102);
    }));
    fs::permissions(mFolder, fs::perms::owner_all);
    EXPECT_EQ(status, qncomm::RtPermissionDenied);
}

TEST_F(FileSettingsTest, AFullDiskIsError61AndLeavesTheOldSettings) {
    Store().WriteValue("Settings", "Key", "old");
    const std::string before = TextOf(Path());
    const int status = ExitOf(InChild([&] {
        // A limit on the size of files stands for the full disk.
        const rlimit none{0, 0};
        ::signal(SIGXFSZ, SIG_IGN);
        if (::setrlimit(RLIMIT_FSIZE, &none) != 0) ::_exit(101);
        FileSettings store = Store();
        const auto error = ErrorOfWriting(store);
        ::_exit(error ? error->Number() : 102);
    }));
    EXPECT_EQ(status, qncomm::RtDiskFull);
    EXPECT_EQ(TextOf(Path()), before);
    EXPECT_THAT(FilesThere(), UnorderedElementsAre("settings.ini", "settings.ini.lock"));
}

TEST_F(FileSettingsTest, ASignalEndsTheWaitForTheLock) {
    const qncomm::Fd held(::open((Path() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(held.Get(), LOCK_EX), 0);
    qncomm::Interrupt interrupt;
    FileSettings store(Path(), {}, &interrupt);
    ::raise(SIGINT);
    const std::int64_t begun = qncomm::MonotonicUs();
    EXPECT_THROW(store.WriteValue("Settings", "Key", "new"), qncomm::OperationCancelled);
    EXPECT_LT(qncomm::MonotonicUs() - begun, 1'000'000) << "a holder is given 5 s";
    EXPECT_TRUE(interrupt.Raised()) << "the program hears of it too";
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

TEST_F(FileSettingsTest, TheLockIsWaitedForAsLongAsTheClockSays) {
    const qncomm::Fd held(::open((Path() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(held.Get(), LOCK_EX), 0);
    FileSettings store = Store();
    const std::int64_t begun = qncomm::MonotonicUs();
    EXPECT_EQ(ErrorOfWriting(store).value().Number(), qncomm::RtPermissionDenied);
    const std::int64_t ms = (qncomm::MonotonicUs() - begun) / 1000;
    EXPECT_GE(ms, 5000);
    EXPECT_LE(ms, 5200) << "however late each of its short sleeps ends";
}

TEST_F(FileSettingsTest, TheDefaultPathFollowsTheConfigurationFolder) {
    const auto pathWith = [](const char* config) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) return std::string("no pipe");
        const pid_t child = InChild([&] {
            ::setenv("HOME", "/home/someone", 1);
            config != nullptr ? ::setenv("XDG_CONFIG_HOME", config, 1)
                              : ::unsetenv("XDG_CONFIG_HOME");
            const std::string path = FileSettings::DefaultPath();
            if (::write(ends[1], path.data(), path.size()) < 0) ::_exit(101);
        });
        std::array<char, 256> text{};
        ::close(ends[1]);
        const ssize_t size = ExitOf(child) == 0 ? ::read(ends[0], text.data(), text.size()) : 0;
        ::close(ends[0]);
        return std::string(text.data(), static_cast<std::size_t>(size));
    };
    EXPECT_EQ(pathWith("/etc/somewhere"), "/etc/somewhere/qncomm/settings.ini");
    EXPECT_EQ(pathWith(nullptr), "/home/someone/.config/qncomm/settings.ini");
    EXPECT_EQ(pathWith("relative"), "/home/someone/.config/qncomm/settings.ini");
}

} // namespace
