#include "HostileHost.h"

#include "TamperedChannel.h"

#include "assembly/AllChannelKinds.h"
#include "automation/CallMember.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmCommSettings.h"
#include "platform/SystemFiles.h"

#include <array>
#include <utility>

namespace qncomm::fuzz {
namespace {

constexpr int MostDepth = 2;    // members that are called within each other
constexpr int MostSteps = 24;   // of one input
constexpr int MostTimer = 2000; // ms between two calls of the host's timer

/// No operation takes longer on this line, whatever the printer answers: hours of driven time.
constexpr std::int64_t LongestOperation = std::int64_t{4} * 3600 * 1000 * 1000;

constexpr std::array<const char*, 4> Printers = {"sim:R7G?boot-ms=500", "sim:R7A?boot-ms=0",
                                                 "sim:R7G?boot-ms=0&baud=19200",
                                                 "sim:R7G?noise=0.01"};

/// Runs what may raise. Errors have a number; a cancel is no error.
template <class Body>
void Guarded(Body body) {
    try {
        body();
    } catch (const QNError& error) {
        Promise(error.Number() != 0);
    } catch (const OperationCancelled&) {
        return;
    }
}

} // namespace

HostileHost::HostileHost(Choices steps, Choices moments, Choices line)
    : mSteps(steps), mMoments(moments), mLineChoices(line) {
    mFolder.Write("in", std::string(300, 'x') + "\r\n10 PRINT 1\r\n");
    mFolder.MakeFolder("folder");
    mHost.mUserMode = true;
    mSettings->WriteValue("Settings", "Commport", "1");
    mTimer = mReactor.StartTimer(100 + mSteps.Next() * MostTimer / 255, [this] { Moment(); });
    Assemble();
}

HostileHost::~HostileHost() {
    mTimer.reset();
    mAssembly.reset();
    mReactor.Pass(1000); // what the control has left for the loop's next turns
    Pointer::Screen().Set(PointerDefault);
}

void HostileHost::Assemble() {
    const std::uint8_t choice = mSteps.Next();
    ControlAssembly::Options options;
    options.bindings = PortBindings(AllChannelKinds());
    Promise(options.bindings.Give(1, Printers[choice % Printers.size()]).empty());
    options.factory = [this](const PortAddress& address, Reactor& reactor) {
        return std::make_unique<TamperedChannel>(MakeChannel(address, reactor), mLineChoices);
    };
    options.link.remembered = (choice & 0x10U) != 0;
    options.link.listen = (choice & 0x20U) != 0;
    options.link.polled = (choice & 0x40U) != 0;
    options.link.spoil = (choice & 0x80U) != 0;
    mAssembly = std::make_unique<ControlAssembly>(
        mReactor,
        ControlServices{mReactor, *this, *this, *this, *this, *this, *this, SystemFiles()},
        ControlView{mHost, mWindow, *this}, std::move(options));
    QNComm& control = mAssembly->Control();
    mWindow.mControl = &control;
    control.UserControl_ReadProperties(MemoryPropertyBag{});
    control.SetRegSettings(mSettings);
    Connect();
}

void HostileHost::Connect() {
    QNComm& control = mAssembly->Control();
    mEvents.clear();
    mEvents.push_back(control.StatusEvent.Connect(
        [this](std::string&, std::int16_t, bool& cancel) { Moment(&cancel); }));
    mEvents.push_back(control.PortStateEvent.Connect([this](bool&) { Moment(); }));
    mEvents.push_back(control.LiveStateEvent.Connect(
        [this](std::int16_t, std::int16_t, std::int32_t) { Moment(); }));
}

void HostileHost::Run() {
    for (int step = 0; step < MostSteps && !mSteps.IsOver(); ++step) {
        const std::int64_t start = mReactor.NowUs();
        if (!mAssembly) Assemble();
        Guarded([this] { Step(); });
        Promise(mReactor.NowUs() - start < LongestOperation);
        ExpectAtRest();
    }
}

void HostileHost::Step() {
    switch (const std::uint8_t choice = mSteps.Next(); choice % 8) {
    case 0:
        mReactor.Pass(choice * 20);
        break;
    case 1:
        ActOnSurface();
        break;
    case 2:
        mAssembly->Viewport().Type(Line());
        mReactor.Pass(50);
        break;
    case 3:
        mAssembly->Control().DoAutoconnect();
        break;
    default:
        CallAny();
        break;
    }
}

void HostileHost::CallAny() {
    const auto& members = ControlClass().members;
    const SurfaceMember& member = members[mSteps.Next() % members.size()];
    std::vector<Variant> arguments;
    for (const MemberParameter& parameter : member.parameters)
        arguments.push_back(Argument(parameter));
    ++mDepth;
    const std::shared_ptr<const void> count(nullptr, [this](const void*) { --mDepth; });
    CallMember(mAssembly->Control(), member, arguments);
}

void HostileHost::ActOnSurface() {
    QNComm& control = mAssembly->Control();
    switch (const std::uint8_t choice = mSteps.Next(); choice % 8) {
    case 0:
        return control.UserControl_Show();
    case 1:
        return control.UserControl_Hide();
    case 2:
        return control.UserControl_Resize();
    case 3:
        return control.mnuPopUp_Click(static_cast<std::int16_t>(choice / 8));
    case 4:
        return control.imgSizer_MouseUp(choice * 16 - 1000);
    case 5:
        mSettings->WriteValue("FunctionKeys", "F" + std::to_string(choice / 8 % 12 + 1), Line());
        return control.SetRegSettings(mSettings);
    case 6:
        return control.cmdClose.Click();
    default:
        mAssembly.reset();
    }
}

void HostileHost::Moment(bool* cancel) {
    if (mActing || mMoments.IsOver()) return;
    mActing = true;
    const std::shared_ptr<const void> acting(nullptr, [this](const void*) { mActing = false; });
    Act(mMoments.Next(), cancel);
}

void HostileHost::Act(std::uint8_t choice, bool* cancel) {
    if (!mAssembly || choice < 128) return;
    switch (choice % 8) {
    case 0:
        if (cancel != nullptr) *cancel = true;
        break;
    case 1:
        mAssembly->Control().TearDown();
        break;
    case 2:
        mEvents.clear();
        mAssembly.reset();
        break;
    case 3:
        mAssembly->Control().CancelOperations(choice * 10);
        break;
    case 4:
        if (cancel != nullptr) throw QNError(RtInvalidCall, "Host", "a handler's own");
        break;
    case 5:
        mAssembly->CancelTransfer();
        break;
    case 6:
        mReactor.Pass(choice);
        break;
    default:
        if (mDepth < MostDepth) Guarded([this] { CallAny(); });
    }
}

void HostileHost::ExpectAtRest() {
    Promise(mDepth == 0 && !mActing);
    Promise(Pointer::Screen().Shape() == PointerDefault);
    if (!mAssembly) return;
    Promise(!mAssembly->Control().IsBusy());
    Promise(mAssembly->Serial().Tag().empty());
}

MsgBoxResult HostileHost::ShowMsgBox(const MsgBox& box) {
    const bool agrees = mMoments.Next() % 2 == 0;
    Moment();
    if (box.buttons == MsgBoxButtons::YesNo) return agrees ? MsgBoxResult::Yes : MsgBoxResult::No;
    return agrees ? MsgBoxResult::Ok : MsgBoxResult::Cancel;
}

std::string HostileHost::ShowInputBox(const InputBox& /*box*/) {
    Moment();
    return Line();
}

std::optional<std::string> HostileHost::ChooseFile(const FileDialog& /*dialog*/) {
    Moment();
    return mSteps.Next() % 4 == 0 ? std::nullopt : std::optional(Path());
}

LaunchResult HostileHost::Launch(const LaunchRequest& request) {
    Promise(!request.program.empty());
    Moment();
    return {};
}

void HostileHost::ShowModal(FormModel& form) {
    Moment();
    const std::uint8_t choice = mSteps.Next();
    if (auto* settings = dynamic_cast<frmCommSettings*>(&form)) {
        if (choice % 2 == 0) settings->cmdAutoConnect.Click();
        if (form.IsOpen()) (choice % 4 < 2 ? settings->cmdOK : settings->cmdCancel).Click();
    }
    if (auto* transfer = dynamic_cast<frmBinaryTransfer*>(&form)) {
        transfer->cmdBrowse.Click();
        if (form.IsOpen()) transfer->cmdButton[choice % 2].Click();
    }
}

std::unique_ptr<ShownWindow> HostileHost::Show(FormModel& /*form*/) {
    Moment();
    return std::make_unique<ShownWindow>();
}

Variant HostileHost::Argument(const MemberParameter& parameter) {
    switch (parameter.type) {
    case MemberType::Boolean:
        return mSteps.Next() % 2 == 0;
    case MemberType::Integer:
    case MemberType::Long:
    case MemberType::Single:
        return std::int32_t{static_cast<std::int8_t>(mSteps.Next())};
    case MemberType::HostText:
        return Variant(Path());
    case MemberType::PrinterText:
    case MemberType::KeyIndex:
        return Variant(Line(), TextKind::Line);
    case MemberType::Names:
        return Variant(Variant::List{Variant(Line(), TextKind::Line)});
    case MemberType::Settings:
        return Variant(std::shared_ptr<RegSettings>(mSettings));
    default:
        return Variant(Line());
    }
}

/// A text that the control takes for something: a device, a file, a font, a key, or any bytes.
std::string HostileHost::Line() {
    static constexpr std::array<const char*, 12> Known = {
        "c:",  "tmp:",  "c:PRICES.DAT", "c:NEW",     "SW030RSN", "F1",
        "key", "2;c:X", "0;PRINT 1^M",  "1;nowhere", "rom:",     "LABEL,WIDTH"};
    const std::uint8_t choice = mSteps.Next();
    if (choice < 192) return Known[choice % Known.size()];
    return std::string(mSteps.Text());
}

std::string HostileHost::Path() {
    static constexpr std::array<const char*, 5> Names = {"in", "out", "folder", "no/where", ""};
    return mFolder.File(Names[mSteps.Next() % Names.size()]);
}

} // namespace qncomm::fuzz
