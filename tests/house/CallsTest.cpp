// One kind of wait, one way to open files, one way to each place where texts of others are shown:
// nothing else in the product sleeps, polls, blocks, loops on a clock, opens, or shows them.

#include "CallRules.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

using qncomm::testing::CodeOf;
using qncomm::testing::StrayCalls;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const fs::path Sources = fs::path(QN_SOURCE_DIR) / "src";

TEST(CallRules, RefuseASleepOfOnesOwnWhereverItStands) {
    for (const char* sleep :
         {"::nanosleep(&pause, nullptr);", "::usleep(5);", "::poll(&entry, 1, 5);",
          "::select(1, nullptr, nullptr, nullptr, &limit);", "::waitpid(child, nullptr, 0);",
          "std::this_thread::yield();", "::getaddrinfo(host, service, &hints, &list);",
          "std::condition_variable changed;", "::flock(fd, LOCK_EX);", "loop.Yield(left);",
          "mReactor.WaitFor(fd, {}, left);", "WaitForFd(fd, {}, left);",
          "while (watch.ElapsedMs() < 500) {", "while (!done\n       && loop.NowUs() < until)"})
        EXPECT_THAT(StrayCalls("apps/qnctl/X.cpp", sleep), testing::Not(IsEmpty())) << sleep;
}

TEST(CallRules, RefuseFilesThatAreOpenedWithoutALook) {
    for (const char* opening :
         {"Fd fd(::open(path, O_RDONLY | O_CLOEXEC));", "std::ifstream in(path);",
          "FILE* f = std::fopen(path, mode);", "QSaveFile file(path);", "QFile file(path);"})
        EXPECT_THAT(StrayCalls("trace/X.cpp", opening), ElementsAre(HasSubstr("opens"))) << opening;
    EXPECT_THAT(StrayCalls("trace/X.cpp", "OpenToRead(path, {}, fd); QFileInfo(path).fileName()"),
                IsEmpty());
    EXPECT_THAT(StrayCalls("platform/FileOpening.cpp", "::open(path, flags | AlwaysFlags)"),
                IsEmpty());
}

TEST(CallRules, RefuseWhatAChildWouldInherit) {
    for (const char* inherited :
         {"fd = ::open(name,\n             O_RDWR);", "::openat(folder, name, O_PATH);",
          "::socket(AF_INET, SOCK_STREAM, 0);", "::accept(listener, nullptr, nullptr);",
          "::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK);", "::pipe(ends);", "::dup(fd);",
          "::eventfd(0, EFD_NONBLOCK);", "::epoll_create1(0);", "::fcntl(fd, F_DUPFD, 3);",
          "::signalfd(-1, &signals, SFD_NONBLOCK); Use(O_CLOEXEC);"})
        EXPECT_THAT(StrayCalls("platform/FileOpening.cpp", inherited),
                    ElementsAre(HasSubstr("gives a child what is open")))
            << inherited;
    for (const char* kept :
         {"::open(name, O_RDWR | O_CLOEXEC);",
          "::socket(AF_INET,\n SOCK_STREAM | SOCK_CLOEXEC, 0);", "::pipe2(ends, O_CLOEXEC);",
          "::fcntl(fd, F_DUPFD_CLOEXEC, 3);", "::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);"})
        EXPECT_THAT(StrayCalls("platform/FileOpening.cpp", kept), IsEmpty()) << kept;
}

TEST(CallRules, RefuseWaysAroundTheFunctionsForTextsOfOthers) {
    for (const char* shown :
         {"std::cout << name;", "std::cerr << \"x\" << name;", "std::printf(format, name);",
          "std::fprintf(file, format);", "new QMessageBox(icon, title, text);",
          "QMessageBox box(this);", "QMessageBox::warning(this, title, text);",
          "item->setToolTip(path);", "box->setInformativeText(sDetail);",
          "if (role == Qt::ToolTipRole) return node.key;", "label->setTextFormat(Qt::RichText);"})
        EXPECT_THAT(StrayCalls("apps/qnterm/X.cpp", shown), ElementsAre(HasSubstr("shows")))
            << shown;
    for (const char* shown :
         {"out.Note(name);", "action->setToolTip(tr(\"Close\"));",
          "item->setToolTip(qncomm::TextOfATip(path));",
          "if (role == Qt::ToolTipRole && row > 1) return qncomm::TextOfATip(key);",
          "QMessageBox* box = qncomm::NewBox(QMessageBox::Warning, title, text);",
          "std::snprintf(text.data(), text.size(), format, value);"})
        EXPECT_THAT(StrayCalls("apps/qnterm/X.cpp", shown), IsEmpty()) << shown;
}

TEST(CallRules, RefusePathsThatAreMadeOfAPrintersName) {
    for (const char* made : {"QDir(folder).filePath(qncomm::FromLine(name));",
                             "qncomm::PathIn(folder, qncomm::Utf8FromPrinter(file.name));"})
        EXPECT_THAT(StrayCalls("apps/qnterm/files/X.cpp", made),
                    ElementsAre(HasSubstr("takes a name for a path")))
            << made;
    for (const char* made : {"QDir(folder).filePath(NameHere(name));",
                             "qncomm::PathIn(folder, qncomm::FileNameFromPrinter(name));"})
        EXPECT_THAT(StrayCalls("apps/qnterm/files/X.cpp", made), IsEmpty()) << made;
}

TEST(CallRules, LetTheirPlacesSleep) {
    EXPECT_THAT(StrayCalls("platform/PollCalls.h", "::ppoll(entries, count, limit, nullptr);"),
                IsEmpty());
    EXPECT_THAT(StrayCalls("common/include/common/Wait.h", "loop.Yield(ms);"), IsEmpty());
    EXPECT_THAT(StrayCalls("link/AutoConnect.cpp", "loop.Yield(ms);"),
                ElementsAre("link/AutoConnect.cpp:1 yields: Yield("));
}

TEST(CallRules, LetEverybodyDispatchWithoutWaitingAndAskForALockOnce) {
    EXPECT_THAT(StrayCalls("link/X.cpp", "state.Yield(0);"), IsEmpty());
    EXPECT_THAT(StrayCalls("serial/X.cpp", "::flock(fd, LOCK_EX | LOCK_NB);"), IsEmpty());
}

TEST(CallRules, ReadCodeAlone) {
    EXPECT_EQ(CodeOf("a(); // ::poll(x)\nb(\"::poll(\\\"x\");/* c */d('\"', 1'000);"),
              "a();             \nb(\"          \");       d(' ', 1'000);");
    EXPECT_THAT(StrayCalls("link/X.cpp", "\n// ::usleep(1)\n\n::usleep(1);"),
                ElementsAre(HasSubstr("link/X.cpp:4 sleeps")));
}

TEST(TheHouse, WaitsOpensFilesAndShowsTextsOfOthersInOneWay) {
    std::vector<std::string> stray;
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(Sources)) {
        const std::string kind = entry.path().extension().string();
        if (kind != ".h" && kind != ".cpp") continue;
        ++files;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        const std::string file = fs::relative(entry.path(), Sources).generic_string();
        std::ranges::copy(StrayCalls(file, text), std::back_inserter(stray));
    }
    EXPECT_GT(files, 300);
    EXPECT_THAT(stray, IsEmpty());
}

} // namespace
