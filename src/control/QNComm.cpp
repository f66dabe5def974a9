// How the control comes into being, is shown, hidden and taken down.

#include "control/QNComm.h"

#include "Members.h"
#include "common/CountedScope.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

namespace qncomm {
namespace {

constexpr std::int32_t SoonestTurn = 1; // ms

} // namespace

QNComm::QNComm(const ControlParts& parts, const ControlServices& services)
    : mParts(parts),
      mServices(services),
      mPrompts(std::make_shared<MacroPrompts>(services.inputs,
                                              [&loop = services.loop] { loop.Yield(0); })) {
    mHandlers.push_back(
        Toolbar1.Clicked.Connect([this](const std::string& key) { Dispatch(key); }));
    mHandlers.push_back(lblCaption.Clicked.Connect([this] { mParts.terminal.SetFocus(); }));
    mHandlers.push_back(cmdClose.Clicked.Connect([this] { mParts.host.SetVisible(false); }));
}

QNComm::~QNComm() {
    try {
        Release();
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): nothing can be raised here
    }
}

const std::shared_ptr<QNComm::Members>& QNComm::Wired() const {
    if (!mMembers) RaiseRuntimeError(RtObjectNotSet);
    return mMembers;
}

std::shared_ptr<const void> QNComm::Hold() const {
    return std::make_shared<const Operation>(Wired());
}

clsQuorin& QNComm::Layer() const {
    return Wired()->quorin;
}

clsDataLink& QNComm::Link() const {
    return Wired()->link;
}

QNComm::Operation QNComm::Begin() const {
    return Operation(Wired());
}

bool QNComm::IsBusy() const {
    return mMembers && mMembers->operations > 0;
}

void QNComm::CancelOperations(std::int32_t lGraceMs) {
    if (IsBusy()) mMembers->loop.Cancel(lGraceMs);
}

void QNComm::Wire() {
    mMembers = std::make_shared<Members>(mServices, mParts.keep, mNextGeneration);
    Members& members = *mMembers;
    members.link.SetSerialPort(&mParts.PDQComm1);
    const auto relayStatus = [this, &members](std::string& text, std::int16_t& progress,
                                              bool& cancel) {
        const CountedScope relaying(members.events);
        StatusEvent.Raise(text, progress, cancel);
    };
    members.relays.push_back(members.link.StatusEvent.Connect(relayStatus));
    members.relays.push_back(members.quorin.StatusEvent.Connect(relayStatus));
    members.relays.push_back(members.link.PortStateEvent.Connect([this, &members](bool& open) {
        const CountedScope relaying(members.events);
        PortStateEvent.Raise(open);
    }));
    members.relays.push_back(members.link.LiveStateEvent.Connect(
        [this, &members](std::int16_t line, std::int16_t printer, std::int32_t generation) {
            const CountedScope relaying(members.events);
            LiveStateEvent.Raise(line, printer, generation);
        }));
}

/// Keeps link and command layer alive until a turn of the loop finds none of their events being
/// relayed.
void QNComm::KeepUntilRelayed(MessageLoop& loop, std::shared_ptr<Members> members) {
    struct Keeper {
        std::shared_ptr<Members> members;
        std::unique_ptr<RunningTimer> timer;
    };
    const auto keeper = std::make_shared<Keeper>(Keeper{std::move(members), nullptr});
    keeper->timer = loop.StartTimer(SoonestTurn, [keeper] {
        if (!keeper->members || keeper->members->events > 0) return;
        keeper->members.reset();
        const auto ended = std::move(keeper->timer); // the last to hold this handler
    });
}

/// Gives up link and command layer, the link first. Their operations that are still on the stack
/// end on their own and keep them alive until then.
void QNComm::Release() {
    const std::shared_ptr<Members> members = std::exchange(mMembers, nullptr);
    if (!members) return;
    members->released = true;
    mNextGeneration = members->link.Live().generation + 1;
    members->relays.clear();
    if (members->events > 0) KeepUntilRelayed(mServices.loop, members);
    members->link.TearDown();
    members->quorin.TearDown();
    mParts.PDQComm1.SetTag({}); // the mark of an operation that was cut short
}

void QNComm::TearDown() {
    Release();
}

void QNComm::UserControl_Show() {
    if (!mParts.host.UserMode()) {
        mParts.terminal.SetDisplayState(DisplayDesign);
        return;
    }
    const auto members = Wired();
    members->link.SetTerminalActive(true);
    if (!members->released) mParts.terminal.SetFocus(); // a released control may be destroyed
}

void QNComm::UserControl_Hide() {
    if (const auto members = mMembers) members->link.SetTerminalActive(false);
}

void QNComm::UserControl_EnterFocus() {
    lblCaption.SetColors(ActiveTitleColor, ActiveTitleTextColor);
}

void QNComm::UserControl_ExitFocus() {
    lblCaption.SetColors(InactiveTitleColor, InactiveTitleTextColor);
}

void QNComm::SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings) {
    mRegSettings = settings;
    const auto members = Wired();
    members->quorin.SetRegSettings(settings);
    members->link.SetRegSettings(std::move(settings));
    if (!members->released)
        LoadFunctionKeyTips(); // a busy port may have shown a box, in which the host ended the
                               // control
}

} // namespace qncomm
