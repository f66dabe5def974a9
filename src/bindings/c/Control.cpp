#include "Control.h"

#include "common/MemorySettings.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "control/PropertyBag.h"

#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <unistd.h>
#include <utility>

namespace {

using namespace qncomm;
using namespace qncomm::bindings;

constexpr std::int32_t CancelGraceMs = 150; ///< in which a cancelled operation ends by itself
constexpr std::string_view Source = "QNComm";

ControlServices ServicesOf(ConsoleDesk& desk, Desktop& boxes) {
    const ControlServices usual = desk.Services();
    return {usual.loop,  boxes,          usual.inputs, usual.clipboard,
            usual.files, usual.launcher, usual.forms,  usual.hostFiles};
}

/// 0 stands for what the assembly takes by itself.
template <class Number>
void Choose(Number& option, auto chosen) {
    if (chosen > 0) option = static_cast<Number>(chosen);
}

ControlAssembly::Options OptionsOf(const qn_options& options, TraceSink& trace,
                                   const HostLines& lines) {
    ControlAssembly::Options all;
    all.bindings = PortBindings(KindsWithHostLines());
    all.factory = [&lines](const PortAddress& address, Reactor& reactor) {
        return lines.Make(address, reactor);
    };
    all.trace = &trace;
    all.link.remembered = options.remembered != 0;
    all.link.listen = options.listen != 0;
    Choose(all.grid.rows, options.rows);
    Choose(all.grid.columns, options.columns);
    Choose(all.grid.scrollbackLines, options.scroll_back);
    return all;
}

/// A port of its own number, so that a host need only say where it is.
std::shared_ptr<RegSettings> SettingsWithPort() {
    auto settings = std::make_shared<MemorySettings>();
    settings->WriteValue("Settings", "Commport", "1");
    return settings;
}

} // namespace

qn_control::qn_control(const qn_options& options)
    : owner(::gettid()),
      texts(options.texts == QN_8BIT ? QN_8BIT : QN_UTF8),
      loop({.signalled =
                [this] {
                    if (signalled.handler != nullptr) signalled.handler(signalled.user);
                },
            .cancelled =
                [this] {
                    cancelling = true;
                    runs = 0;
                    assembly->Control().CancelOperations(CancelGraceMs);
                }}),
      desk(loop, silence, {.input = -1}),
      trace(sealed),
      returned(std::make_unique<Returned>(texts)),
      assembly(std::make_unique<ControlAssembly>(loop, ServicesOf(desk, boxes),
                                                 ControlView{desk.Host(), desk.Host(), screen},
                                                 OptionsOf(options, trace, lines))) {
    QNComm& control = assembly->Control();
    desk.Host().Hold(&control);
    MemoryPropertyBag bag;
    control.UserControl_ReadProperties(bag);
    control.SetRegSettings(SettingsWithPort());
    cancels = control.StatusEvent.Connect([this](std::string&, std::int16_t, bool& bCancel) {
        if (cancelling) bCancel = true;
    });
}

qn_control::~qn_control() {
    mark = 0;
    sealed = true; // what its end tells may not call it
    handlers.clear();
    boxes.Set(nullptr, nullptr);
    screen.Set(nullptr, nullptr);
    desk.Host().Hold(nullptr);
    assembly.reset();
    try {
        loop.Yield(0); // what an operation has left behind goes with the next turn
    } catch (...) {    // nobody is left to hear it
    }
}

bool qn_control::IsMine() const {
    return mark == Alive && ::gettid() == owner;
}

bool qn_control::MayBegin() {
    if (!IsMine()) return false; // its error belongs to its own thread
    if (!freed && !sealed) return true;
    Fail(QN_FAILED, RtInvalidCall, Source,
         freed ? "The control was freed." : "A trace's function may not call the control.");
    return false;
}

int qn_control::Fail(qn_status status, std::int32_t number, std::string_view source,
                     std::string_view description) {
    error = {number, Values::Shown(source), Values::Shown(description)};
    return status;
}

int qn_control::FailWithCurrent() {
    constexpr std::int32_t interrupted = 18; // the number that hosts know for it
    try {
        throw;
    } catch (const QNError& raised) {
        return Fail(QN_FAILED, raised.Number(), raised.Source(), raised.Description());
    } catch (const OperationCancelled& raised) {
        return Fail(QN_CANCELLED, interrupted, Source, raised.what());
    } catch (const std::bad_alloc&) {
        return Fail(QN_FAILED, RtOutOfMemory, Source, RuntimeErrorText(RtOutOfMemory));
    } catch (const std::exception& raised) {
        return Fail(QN_FAILED, RtAutomation, Source, raised.what());
    }
}

namespace qncomm::bindings {

RunningCall::RunningCall(qn_control& control) : mControl(control) {
    // Whoever cancels means what runs already.
    if (mControl.depth++ == 0) mControl.loop.ForgetCancel();
}

RunningCall::~RunningCall() {
    if (--mControl.depth > 0) return;
    mControl.cancelling = false;
    if (mControl.freed)
        delete &mControl;
    else
        mControl.loop.Arm();
}

const SurfaceClass& ClassNumbered(std::int32_t number) {
    static const std::array classes{&ClassNamed("QNComm"), &ClassNamed("clsQuorin"),
                                    &ClassNamed("clsDataLink"), &ClassNamed("RegSettings")};
    if (number < 1 || static_cast<std::size_t>(number) > classes.size())
        RaiseRuntimeError(RtNoSuchMember);
    return *classes.at(static_cast<std::size_t>(number) - 1);
}

} // namespace qncomm::bindings

const char* qn_version(void) {
    return QN_VERSION;
}

qn_control* qn_create(const qn_options* options) {
    qn_options chosen{};
    if (options != nullptr) {
        if (options->size < sizeof(qn_options)) return nullptr;
        chosen = *options;
    }
    try {
        return new qn_control(chosen);
    } catch (...) {
        return nullptr;
    }
}

int qn_free(qn_control* control) {
    if (control == nullptr) return QN_OK;
    return Guarded(control,
                   [](qn_control& mine) {
                       mine.freed = true;
                       mine.runs = 0;
                       if (mine.depth > 1) mine.assembly->Control().CancelOperations(0);
                   })
                   == QN_FREED
               ? QN_OK
               : QN_FAILED;
}

std::int32_t qn_error_number(const qn_control* control) {
    if (control == nullptr || !control->IsMine()) return RtInvalidCall;
    return control->error.number;
}

const char* qn_error_source(const qn_control* control) {
    if (control == nullptr || !control->IsMine()) return "QNComm";
    return control->error.source.c_str();
}

const char* qn_error_description(const qn_control* control) {
    if (control == nullptr) return "There is no control.";
    if (!control->IsMine()) return "The control belongs to another thread.";
    return control->error.description.c_str();
}

int qn_bind(qn_control* control, int port, const char* address) {
    return Guarded(control, [=](qn_control& mine) {
        if (address == nullptr || port < 0 || port > PortBindings::Highest)
            RaiseRuntimeError(RtInvalidCall);
        const auto number = static_cast<std::int16_t>(port);
        if (const std::string wrong = mine.assembly->Bindings().Give(number, address);
            !wrong.empty())
            throw QNError(RtInvalidCall, std::string(Source), wrong);
    });
}

int qn_show(qn_control* control, int shown) {
    return Guarded(control, [=](qn_control& mine) { mine.desk.Host().SetVisible(shown != 0); });
}
