#include "CallRules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <regex>

namespace qncomm::testing {
namespace {

/// What may be written in few places alone, as a regular expression over code, and those places.
struct GuardedCall {
    /// Without one of these words, with blanks between, a file is not searched for the call.
    std::string_view words;
    const char* call;
    const char* what;
    /// Files below src/, or folders that end in a slash, with blanks between.
    std::string_view mayStandIn;
};

// Who may wait brings a wait to the system or to a toolkit, or is one kind of line's own sleep
// within the limit that a wait gives it. Who may open anything itself opens what is no file of a
// person's: a device, a pseudo-terminal, a name that nobody else has, the program's own icons.
constexpr std::array GuardedCalls{
    GuardedCall{"sleep pause", R"(::(u?sleep|nanosleep|clock_nanosleep|pause)\s*\()", "sleeps", ""},
    GuardedCall{"sleep_ this_thread", R"(sleep_(for|until)|std::this_thread)", "sleeps", ""},
    GuardedCall{"poll", R"(::p?poll\s*\()", "polls", "platform/PollCalls.h"},
    GuardedCall{"select sigwait sigtimedwait", R"(::(p?select|sigwait\w*|sigtimedwait)\s*\()",
                "polls", ""},
    GuardedCall{"epoll_", R"(::epoll_p?wait2?\s*\()", "polls",
                "platform/HostedLoop.cpp faces/qt/services/QtReactor.cpp"},
    GuardedCall{"::wait", R"(::wait(pid|id|3|4)?\s*\()", "waits for a process",
                "platform/ProcessLauncher.cpp"},
    GuardedCall{"getaddrinfo getnameinfo gethostby",
                R"(::(getaddrinfo|getnameinfo|gethostby\w+)\s*\()", "asks for a host's name",
                "serial/HostLookup.cpp"},
    GuardedCall{"thread future promise async condition_variable latch barrier",
                R"(\bstd::(j?thread|future|promise|async|condition_variable\w*|latch|barrier)\b)",
                "waits for a thread", "serial/HostLookup.cpp"},
    GuardedCall{"_clock clock_gettime",
                R"(\b(steady|system|high_resolution)_clock\b|::clock_gettime)", "reads a clock",
                "platform/FdWait.cpp"},
    GuardedCall{"SETLKW LOCK_EX", R"(\bF_(OFD_)?SETLKW|\bLOCK_EX\b(?!\s*\|\s*LOCK_NB))",
                "waits for a lock", ""},
    GuardedCall{"WaitForFd", R"(\bWaitForFd\s*\()", "waits for a descriptor",
                "platform/ simulator/endpoints/PtyEndpoint.cpp"},
    GuardedCall{"WaitFor", R"((\.|->|::)WaitFor\s*\()", "waits for a descriptor",
                "platform/ serial/FdChannel.cpp serial/PortOpening.cpp serial/Rfc2217Channel.cpp "
                "serial/SocketConnector.cpp "
                "serial/testing/ assembly/virtual_printer/ bindings/c/HostLine.cpp"},
    // A yield of nothing dispatches and does not wait.
    GuardedCall{
        "Yield", R"(\bYield\s*\((?!\s*0\s*\)))", "yields",
        "common/MessageLoop.h common/Wait.h control/OperationLoop.h control/OperationLoop.cpp "
        "link/LinkState.h link/clsDataLink.cpp link/CommandChannel.cpp platform/ "
        "faces/qt/include/qt/QtReactor.h faces/qt/services/QtReactor.cpp "
        "simulator/endpoints/Sleeper.cpp bindings/c/Loop.cpp"},
    GuardedCall{"processEvents QEventLoop QThread",
                R"(\b(processEvents|QEventLoop\s*\w*\s*[;({]|QThread::\w*sleep))",
                "runs a toolkit's loop", "faces/qt/services/QtReactor.cpp"},
    GuardedCall{"ElapsedMs UntilExceeds NowMs NowUs MonotonicUs",
                R"(\bwhile\s*\([^;{]*\b(ElapsedMs|UntilExceeds|NowMs|NowUs|MonotonicUs)\s*\()",
                "loops on a clock", "platform/ faces/qt/services/QtReactor.cpp"},
    GuardedCall{"::open", R"(::open(at|64)?\s*\()", "opens",
                "platform/FileOpening.cpp platform/DurableFile.cpp platform/ProcessLauncher.cpp "
                "platform/StandardStreams.cpp serial/TtyProbe.cpp "
                "simulator/endpoints/PtyEndpoint.cpp"},
    // What is open is no business of a program that is started: a child gets what it is given.
    GuardedCall{"::open", R"(::open(at|64)?\s*\((?![^;]*\b(O_CLOEXEC|AlwaysFlags)\b))",
                "gives a child what is open", "platform/StandardStreams.cpp"},
    GuardedCall{"::socket ::accept4", R"(::(socket(pair)?|accept4)\s*\((?![^;]*SOCK_CLOEXEC))",
                "gives a child what is open", ""},
    GuardedCall{"eventfd signalfd memfd_ timerfd_ create1 pipe2 dup3",
                R"(::(eventfd|signalfd|memfd_create|timerfd_create|epoll_create1|pipe2|dup3))"
                R"(\s*\((?![^;]*CLOEXEC))",
                "gives a child what is open", ""},
    GuardedCall{"::accept ::pipe ::dup epoll_create F_DUPFD",
                R"(::(accept|pipe|dup2?|epoll_create)\s*\(|\bF_DUPFD\b)",
                "gives a child what is open", "platform/ProcessLauncher.cpp"},
    GuardedCall{"fopen freopen creat mkstemp mkostemp tmpfile",
                R"(\b(f(re)?open|creat|mko?stemps?|tmpfile)\s*\()", "opens", ""},
    GuardedCall{"fstream", R"(\bstd::[io]?fstream\b)", "opens", ""},
    GuardedCall{"QFile QSaveFile QTemporaryFile QSettings",
                R"(\bQ(File|SaveFile|TemporaryFile|Settings)\b\s*[\w(])", "opens",
                "apps/qnterm/window/Icons.cpp faces/qt/frame/Icons.cpp"},
    // Texts of others: each place where they are shown has one function, and one file that goes
    // there.
    GuardedCall{"cout", R"(\bstd::cout\b)", "shows a text as it is",
                "apps/qnctl/Output.cpp apps/qnsim/main.cpp apps/qnterm/main.cpp "
                "bindings/c/generator/"},
    GuardedCall{"cerr clog", R"(\bstd::(cerr|clog)\s*<<)", "shows a text as it is",
                "apps/qnctl/Output.cpp apps/qnsim/main.cpp apps/qnterm/main.cpp "
                "bindings/c/generator/"},
    GuardedCall{"printf puts putchar stdout stderr",
                R"(\b(v?f?printf|f?puts|f?putc|putchar)\s*\(|\b(stdout|stderr)\b)",
                "shows a text as it is", ""},
    GuardedCall{"QMessageBox QErrorMessage",
                R"(\bnew\s+QMessageBox\b|\bQMessageBox\s+\w+\s*[({;]|\bQErrorMessage\b|)"
                R"(\bQMessageBox::(about|critical|information|question|warning)\b)",
                "shows a box that guesses", "faces/qt/services/ShownText.cpp"},
    GuardedCall{"setInformativeText setToolTip showText",
                R"(\b(setInformativeText|setToolTip|QToolTip::showText)\s*\((?!\s*(tr|TextOfATip|)"
                R"(qncomm::TextOfATip|AsMarkup)\s*\())",
                "shows a tip that guesses",
                "faces/qt/dialogs/ElidedLabel.cpp faces/qt/terminal/SearchBar.cpp "
                "apps/qnterm/window/CommandBar.cpp"},
    GuardedCall{"ToolTipRole", R"(ToolTipRole\b(?!\s*(&&[^;]*)?\)\s*return qncomm::TextOfATip\())",
                "shows a tip that guesses", ""},
    GuardedCall{"RichText setHtml insertHtml", R"(\b(Qt::RichText|setHtml|insertHtml)\b)",
                "shows markup", "apps/qnterm/window/StatusView.cpp"},
    // A printer's name for a file: what is made of it on this machine is made in one function.
    GuardedCall{"filePath PathIn",
                R"(\.filePath\s*\((?!\s*(NameHere\s*\(|\)))|)"
                R"(\bPathIn\s*\([^;]*\b(Utf8FromPrinter|FromLine)\s*\()",
                "takes a name for a path", "apps/qnterm/labels/LabelView.cpp"},
    GuardedCall{"WaitForReceive", R"(\bwhile\s*\([^;{]*\bWaitForReceive\s*\()", "loops on a line",
                ""},
};

/// Whether the code has one of the words.
bool MentionsOneOf(std::string_view words, std::string_view code) {
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        if (code.find(words.substr(0, end)) != std::string_view::npos) return true;
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return false;
}

/// Whether one of the places is the file or holds it.
bool Holds(std::string_view places, std::string_view file) {
    while (!places.empty()) {
        const std::size_t end = std::min(places.find(' '), places.size());
        const std::string_view place = places.substr(0, end);
        const std::size_t common = file.find("/include/");
        // A public header stands for its folder: "common/Wait.h" is in common/include/common/.
        const std::string_view shown =
            common == std::string_view::npos ? file : file.substr(common + 9);
        if (place == file || place == shown) return true;
        if (place.ends_with('/') && file.starts_with(place)) return true;
        places.remove_prefix(std::min(end + 1, places.size()));
    }
    return false;
}

} // namespace

std::string CodeOf(std::string_view sText) {
    std::string code(sText);
    enum class In { Code, Line, Block, Text, Letter } in = In::Code;
    for (std::size_t at = 0; at < code.size(); ++at) {
        const char c = code[at];
        const char next = at + 1 < code.size() ? code[at + 1] : '\0';
        const auto blank = [&](std::size_t count) {
            for (; count > 0 && at < code.size(); --count, ++at)
                if (code[at] != '\n') code[at] = ' ';
            --at;
        };
        switch (in) {
        case In::Code:
            if (c == '/' && next == '/') in = In::Line;
            if (c == '/' && next == '*') in = In::Block;
            if (c == '"') in = In::Text;
            // A quote behind a digit parts a number.
            if (c == '\''
                && (at == 0 || std::isalnum(static_cast<unsigned char>(code[at - 1])) == 0))
                in = In::Letter;
            if (in == In::Line || in == In::Block) blank(2);
            break;
        case In::Line:
            if (c == '\n') in = In::Code;
            blank(1);
            break;
        case In::Block:
            if (c == '*' && next == '/') in = In::Code;
            blank(in == In::Code ? 2 : 1);
            break;
        case In::Text:
        case In::Letter:
            if (c == '\\') {
                blank(2);
            } else if (c == (in == In::Text ? '"' : '\'')) {
                in = In::Code;
            } else {
                blank(1);
            }
            break;
        }
    }
    return code;
}

std::vector<std::string> StrayCalls(std::string_view sFile, std::string_view sText) {
    std::vector<std::string> stray;
    const std::string code = CodeOf(sText);
    for (const GuardedCall& rule : GuardedCalls) {
        if (!MentionsOneOf(rule.words, code) || Holds(rule.mayStandIn, sFile)) continue;
        const std::regex call(rule.call);
        for (std::sregex_iterator match(code.begin(), code.end(), call), end; match != end;
             ++match) {
            const auto line = 1 + std::count(code.begin(), code.begin() + match->position(), '\n');
            stray.push_back(std::string(sFile) + ":" + std::to_string(line) + " " + rule.what + ": "
                            + match->str());
        }
    }
    return stray;
}

} // namespace qncomm::testing
