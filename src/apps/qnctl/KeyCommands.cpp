#include "Command.h"
#include "Session.h"
#include "ShownTerminal.h"

#include "common/QNError.h"
#include "common/Text.h"
#include "common/Wait.h"
#include "console/Charset.h"
#include "console/ConsoleTerminal.h"
#include "dialogs/frmBinaryTransfer.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <utility>

namespace qnctl {
namespace {

struct KeyArguments {
    std::string key;
    std::vector<std::string> answers;
    std::string file;
    std::string protocol;
};

/// The keys that neither type text nor listen, so that no printer need be found first: a transfer's
/// other side waits for it, and a search would disturb that.
constexpr std::array<std::string_view, 7> Silent{
    "CommSettings", "Autoconnect", "Clear", "Copy", "UploadB", "DownloadB", "FunctionkeysSetup"};

/// The key as the toolbar has it, found by name or position.
const qncomm::ToolbarButton* FindButton(Session& session, const std::string& named) {
    const qncomm::ToolbarModel& toolbar = session.Control().Toolbar1;
    std::size_t position = 0;
    const char* end = named.data() + named.size();
    const auto [stop, error] = std::from_chars(named.data(), end, position);
    if (error != std::errc() || stop != end) return toolbar.Find(named);
    const bool there = position >= 1 && position <= toolbar.Buttons().size();
    return there ? &toolbar.Buttons()[position - 1] : nullptr;
}

/// The toolbar's keys, each behind a blank.
std::string KeyNames() {
    const qncomm::ToolbarModel toolbar;
    std::string names;
    for (const qncomm::ToolbarButton& button : toolbar.Buttons())
        names.append(" ").append(button.key);
    return names;
}

Outcome NoSuchKey(const std::string& named) {
    return Refused(ExitStatus::Usage, "There is no key \"" + named + "\". There are:" + KeyNames());
}

/// Collects what the printer says and waits until it has said it all.
class Reply {
  public:
    explicit Reply(Session& session) : mSession(session) {}

    void Take(std::string_view text) {
        mText += text;
        if (!mSession.Out().IsJson()) mSession.Out().Text(qncomm::Utf8FromPrinter(text));
    }

    /// Returns after the printer's "Ok", or when nothing has come for as long as a terminal waits,
    /// but not before the line has carried what was typed: closing the port may drop that.
    void Await() {
        qncomm::Wait line(mSession.Loop(), {.wholeMs = mSession.Serial().LineTimeLeft()});
        line.UntilIn(mSession.Loop(), [this] { return !mSession.Serial().PortOpen(); });
        // A program that prints goes on until its user has seen enough.
        Within({.wholeMs = qncomm::WaitBounds::Endless,
                .silenceMs = qncomm::ConsoleTerminal::SilenceMs},
               [this] { return mText.ends_with("Ok\r\n"); });
    }

    /// Returns when nothing has come for half a second, after at most so many ms.
    void AwaitQuiet(std::int32_t longest) {
        constexpr std::int32_t quiet = 500;
        Within({.wholeMs = longest, .silenceMs = quiet}, [] { return false; });
    }

    const std::string& Text() const { return mText; }

  private:
    template <class Done>
    void Within(const qncomm::WaitBounds& bounds, Done done) {
        qncomm::Wait wait(mSession.Loop(), bounds);
        std::size_t seen = mText.size();
        wait.UntilIn(mSession.Loop(), [&] {
            wait.Came(mText.size() - std::exchange(seen, mText.size()));
            return done() || !mSession.Serial().PortOpen();
        });
    }

    Session& mSession;
    std::string mText;
};

void GiveAnswers(Session& session, const KeyArguments& arguments) {
    for (const std::string& answer : arguments.answers)
        session.Desk().Texts().Give(answer);
    if (!arguments.file.empty()) session.Desk().Files().Give(arguments.file);
    if (arguments.protocol == "zmodem") session.Desk().Forms().SetProtocol(qncomm::BinaryZModem);
    if (arguments.protocol == "kermit") session.Desk().Forms().SetProtocol(qncomm::BinaryKermit);
}

/// Leaves the printer at its prompt: what the device has not sent of a text is dropped.
void GiveUpTyping(Session& session, Reply& reply) {
    reply.AwaitQuiet(session.Link().EndUnfinishedLine());
}

Outcome PressKey(Session& session, const KeyArguments& arguments) {
    const qncomm::ToolbarButton* button = FindButton(session, arguments.key);
    if (button == nullptr) return NoSuchKey(arguments.key);
    const std::string key = button->key;
    const bool silent = std::ranges::find(Silent, key) != Silent.end();
    if (!silent)
        if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
    GiveAnswers(session, arguments);
    session.Assembly().OpenPort(); // says why when it cannot be opened
    Reply reply(session);
    const ShownTerminal shown(session, [&](std::string_view text) { reply.Take(text); });
    session.Disconnect(); // the terminal's own claim keeps the port open
    session.Status().Clear();
    const int told = session.Desk().Boxes().Told();
    try {
        session.Control().PressToolbarKey(key);
        if (session.Desk().Boxes().Told() > told)
            return Refused(ExitStatus::Error, "The key " + key + " has done nothing.");
        if (!silent) reply.Await();
    } catch (const qncomm::OperationCancelled&) {
        if (!silent) GiveUpTyping(session, reply);
        throw;
    }
    if (session.Out().IsJson())
        session.Out().Document({{"key", key}, {"reply", qncomm::Utf8FromPrinter(reply.Text())}});
    return {};
}

} // namespace

CommandTable KeyCommands() {
    const auto arguments = std::make_shared<KeyArguments>();
    return {{"key", "Press a key of the control's toolbar and show the printer's answer",
             Needs::Port,
             [arguments](CLI::App& app) {
                 app.add_option("KEY", arguments->key, "One of" + KeyNames() + ", or its position")
                     ->required();
                 app.add_option("--answer", arguments->answers,
                                "An answer to a macro's question; once for each")
                     ->type_name("TEXT")
                     ->allow_extra_args(false); // else it would take the key's name, too
                 app.add_option("--file", arguments->file, "The file that the key asks for")
                     ->type_name("PATH");
                 app.add_option("--protocol", arguments->protocol,
                                "How UploadB and DownloadB go; kermit without it")
                     ->transform(CLI::IsMember({"zmodem", "kermit"}, CLI::ignore_case));
             },
             [arguments](Session& session) { return PressKey(session, *arguments); }}};
}

} // namespace qnctl
