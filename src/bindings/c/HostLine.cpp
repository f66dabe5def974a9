#include "HostLine.h"

#include "Control.h"
#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <span>
#include <system_error>
#include <utility>

namespace qncomm::bindings {
namespace {

constexpr std::string_view Scheme = "host:";

IoResult Lost(std::string_view text) {
    return {IoStatus::Lost, 0, std::string(text)};
}

/// What a function said: 0, or why not as a number of errno.
IoResult Said(int number, IoStatus status) {
    if (number == 0) return {};
    return {status, number, std::generic_category().message(number)};
}

qn_line_settings SettingsOf(const LineSettings& settings) {
    return {settings.baud,     settings.parity,          settings.dataBits,
            settings.stopBits, settings.xonXoff ? 1 : 0, settings.rtsCts ? 1 : 0};
}

/// A line by functions of the host.
class HostLine final : public ByteChannel {
  public:
    HostLine(const LineOfHost& line, Reactor& reactor) : mLine(line), mReactor(reactor) {}
    ~HostLine() override { Shut(); }

    IoResult Open(const LineSettings& settings) override {
        const qn_line_settings given = SettingsOf(settings);
        if (IoResult refused = Said(mLine.functions.open(mLine.user, &given), IoStatus::Failed);
            !refused.Ok())
            return refused;
        mOpen = true;
        mHandle = mLine.functions.handle(mLine.user);
        if (mHandle < 0) {
            Shut();
            return {IoStatus::Failed, 0, "the host's line has no descriptor"};
        }
        mWatch = mReactor.Watch(mHandle, {}, [this](FdEvents events) {
            const Handler handler = mHandler; // it may be replaced while it runs
            if (handler) handler(events);
        });
        return {};
    }

    void Close() override { Shut(); }
    IoResult Probe() override { return {}; }

    IoResult Configure(const LineSettings& settings) override {
        if (mLine.functions.configure == nullptr) return {};
        const qn_line_settings given = SettingsOf(settings);
        return Said(mLine.functions.configure(mLine.user, &given), IoStatus::Unsupported);
    }

    IoResult SetBreak(bool bOn) override {
        if (mLine.functions.hold_break == nullptr) return ByteChannel::SetBreak(bOn);
        return Said(mLine.functions.hold_break(mLine.user, bOn ? 1 : 0), IoStatus::Unsupported);
    }

    IoCount Read(std::span<char> buffer) override {
        return Moved(mLine.functions.read(mLine.user, buffer.data(), buffer.size()), buffer.size());
    }

    IoCount Write(std::string_view bytes) override {
        return Moved(mLine.functions.write(mLine.user, bytes.data(), bytes.size()), bytes.size());
    }

    std::size_t OutputPending() override { return 0; }

    void DiscardInput() override {
        std::array<char, 512> bytes{};
        for (std::size_t rounds = 0; rounds < MostDiscarded / bytes.size(); ++rounds)
            if (const IoCount got = Read(bytes); got.count == 0) return;
    }

    void DiscardOutput() override {}

    std::optional<bool> Dsr() override {
        if (mLine.functions.dsr == nullptr) return std::nullopt;
        return mLine.functions.dsr(mLine.user) != 0;
    }

    void Want(FdEvents events) override { mWatch->Want(events); }
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }

    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override {
        return mReactor.WaitFor(mHandle, events, lLimitUs);
    }

  private:
    static constexpr std::size_t MostDiscarded = 65'536; ///< of a line that never falls silent

    void Shut() {
        mWatch.reset();
        mHandle = -1;
        if (std::exchange(mOpen, false)) mLine.functions.close(mLine.user);
    }

    /// A host is not believed to have moved more than there was.
    static IoCount Moved(std::ptrdiff_t count, std::size_t most) {
        if (count < 0) return {0, Lost("the host's line is gone")};
        return {std::min(static_cast<std::size_t>(count), most), {}};
    }

    LineOfHost mLine;
    Reactor& mReactor;
    Handler mHandler;
    std::unique_ptr<FdWatch> mWatch;
    int mHandle = -1;
    bool mOpen = false;
};

std::string CheckHostLine(std::string_view address) {
    return address.size() > Scheme.size() ? "" : "a line of the host has a number";
}

/// An address of this kind that no functions stand behind is never opened.
constinit const ChannelKind HostLineKind{
    .scheme = Scheme,
    .form = "host:NUMBER for a line by functions of the host",
    .check = CheckHostLine,
    .make = [](std::string_view /*address*/, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        qn_line_functions none{};
        none.open = [](void* /*user*/, const qn_line_settings* /*settings*/) { return ENODEV; };
        return std::make_unique<HostLine>(LineOfHost{none, nullptr}, reactor);
    },
    .look = [](std::string_view /*address*/) -> PortStatus {
        return {PortState::Free, {}};
    },
    .searched = false,
};

bool IsWhole(const qn_line_functions& functions) {
    return functions.open != nullptr && functions.close != nullptr && functions.handle != nullptr
           && functions.read != nullptr && functions.write != nullptr;
}

} // namespace

std::string HostLines::Add(const qn_line_functions& functions, void* user) {
    std::string address = std::string(Scheme) + std::to_string(mLines.size() + 1);
    mLines.try_emplace(address, LineOfHost{functions, user});
    return address;
}

std::unique_ptr<ByteChannel> HostLines::Make(const PortAddress& address, Reactor& reactor) const {
    const auto found = mLines.find(address.text);
    if (found == mLines.end()) return MakeChannel(address, reactor);
    return std::make_unique<HostLine>(found->second, reactor);
}

ChannelKinds KindsWithHostLines() {
    ChannelKinds kinds = AllChannelKinds();
    kinds.push_back(&HostLineKind);
    return kinds;
}

} // namespace qncomm::bindings

int qn_bind_line(qn_control* control, int port, const qn_line_functions* functions, void* user) {
    using namespace qncomm;
    return bindings::Guarded(control, [=](qn_control& mine) {
        if (functions == nullptr || functions->size < sizeof(*functions)
            || !bindings::IsWhole(*functions) || port < 0 || port > PortBindings::Highest)
            RaiseRuntimeError(RtInvalidCall);
        const std::string address = mine.lines.Add(*functions, user);
        mine.assembly->Bindings().Give(static_cast<std::int16_t>(port), address);
    });
}
