// The control as a host in C++ has it, its members called by name.

#include "Jobs.h"
#include "assembly/AllChannelKinds.h"
#include "assembly/ControlAssembly.h"
#include "automation/CallMember.h"
#include "common/MemorySettings.h"
#include "common/QNError.h"
#include "common/Utf8.h"
#include "console/ConsoleDesk.h"
#include "control/PropertyBag.h"
#include "platform/HostedLoop.h"
#include "trace/TraceSink.h"

#include <iostream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {
namespace {

struct ToJson {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::int32_t value) const { return value; }
    Json operator()(double value) const { return value; }
    Json operator()(const VariantText& text) const {
        return text.kind == TextKind::Line ? Utf8FromPrinter(text.text) : text.text;
    }
    Json operator()(const std::shared_ptr<RegSettings>& store) const {
        return store ? Json("(the settings)") : Json();
    }
    Json operator()(const Variant::List& list) const {
        Json items = Json::array();
        for (const Variant& item : list)
            items.push_back(std::visit(*this, item.value));
        return items;
    }
    Json operator()(const Variant::Record& record) const {
        Json fields = Json::object();
        for (const auto& [name, value] : record)
            fields[name] = std::visit(*this, value.value);
        return fields;
    }
};

Json JsonOf(const Variant& value) {
    return std::visit(ToJson(), value.value);
}

/// An argument for a parameter of this type. A record of no fields stands for a store.
Variant VariantOf(const Json& value, MemberType type) {
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number_integer()) return value.get<std::int32_t>();
    if (value.is_number_float()) return value.get<double>();
    if (value.is_string()) {
        const auto text = value.get<std::string>();
        const bool forPrinter = type == MemberType::PrinterText || type == MemberType::Names;
        return forPrinter ? Variant(PrinterFromUtf8(text).value(), TextKind::Line) : Variant(text);
    }
    if (value.is_array()) {
        Variant::List items;
        for (const Json& item : value)
            items.push_back(VariantOf(item, type));
        return Variant(std::move(items));
    }
    if (value.is_object() && value.empty())
        return Variant(std::shared_ptr<RegSettings>(std::make_shared<MemorySettings>()));
    Variant::Record fields;
    for (const auto& [name, field] : value.items())
        fields.emplace_back(name, VariantOf(field, MemberType::HostText));
    return value.is_null() ? Variant() : Variant(std::move(fields));
}

/// The line's bytes, as a door's bytes.
class HeardLine final : public TraceSink {
  public:
    explicit HeardLine(Heard& heard) : mHeard(heard) {}
    void Record(std::int64_t /*lMs*/, TraceKind kind, std::string_view sBytes) override {
        if (kind == TraceKind::Event) return;
        Append(kind == TraceKind::Sent ? mHeard.sent : mHeard.received, sBytes);
    }

  private:
    Heard& mHeard;
};

class CppDoor final : public Door {
  public:
    explicit CppDoor(const Json& job) : mDesk(mLoop, mSilence, {.input = -1}), mLine(heard) {
        ControlAssembly::Options options;
        options.bindings = PortBindings(AllChannelKinds());
        // A program puts a port that is named by its address behind the highest number, and knows
        // it before there is a control.
        const bool program = job.at("program");
        const std::int16_t port = program ? PortBindings::Highest : 1;
        const std::string address = job.at("address");
        if (program) options.bindings.Give(port, address);
        options.trace = &mLine;
        options.link.remembered = true;
        options.link.listen = true;
        options.link.spoil = program;
        mAssembly = std::make_unique<ControlAssembly>(mLoop, mDesk.Services(), mDesk.View(),
                                                      std::move(options));
        QNComm& control = mAssembly->Control();
        mDesk.Host().Hold(&control);
        MemoryPropertyBag bag;
        control.UserControl_ReadProperties(bag);
        mStore->WriteValue("Settings", "Commport", std::to_string(port));
        control.SetRegSettings(mStore);
        if (!program) mAssembly->Bindings().Give(port, address);
        for (const SurfaceClass* of : SurfaceClasses())
            for (const SurfaceEvent& event : of->events)
                mEvents.push_back(ConnectEvent(control, event, Hearer(*of, event)));
    }

    ~CppDoor() override {
        mEvents.clear();
        mDesk.Host().Hold(nullptr);
        mAssembly.reset();
        mLoop.Yield(0);
    }

    void Show(bool shown) override { mDesk.Host().SetVisible(shown); }

    Json Call(const Json& member, const Json& arguments) override {
        const SurfaceClass& of = ClassNamed(std::string(member.at("class")));
        const SurfaceMember& row = FindMember(of, std::string(member.at("name")), arguments.size());
        std::vector<Variant> given;
        for (const Json& argument : arguments) {
            const std::size_t at = given.size();
            const auto& parameters = row.parameters;
            given.push_back(VariantOf(argument, at < parameters.size() ? parameters[at].type
                                                                       : MemberType::HostText));
        }
        const bool isStore = of.name == "RegSettings";
        const SurfaceObject on = isStore
                                     ? SurfaceObject(Variant(std::shared_ptr<RegSettings>(mStore)))
                                     : SurfaceObject(mAssembly->Control());
        try {
            const MemberOutcome outcome = CallMember(on, row, given);
            return {{"result", JsonOf(outcome.result)},
                    {"back", JsonOf(Variant(outcome.writtenBack))},
                    {"error", nullptr}};
        } catch (const QNError& error) {
            return {{"error", ErrorDocument(error.Number(), error.Source(), error.Description())}};
        }
    }

  private:
    EventHandler Hearer(const SurfaceClass& of, const SurfaceEvent& event) {
        const std::string name = std::string(of.name) + "." + std::string(event.name);
        return [this, name](std::vector<Variant>& arguments) {
            heard.events.push_back({name, JsonOf(Variant(Variant::List(arguments)))});
        };
    }

    HostedLoop mLoop;
    std::ostream mSilence{nullptr};
    ConsoleDesk mDesk;
    HeardLine mLine;
    std::shared_ptr<MemorySettings> mStore = std::make_shared<MemorySettings>();
    std::unique_ptr<ControlAssembly> mAssembly;
    std::vector<Subscription> mEvents;
};

} // namespace
} // namespace qncomm::testing

int main() {
    using namespace qncomm::testing;
    RunJobs(std::cin, std::cout, [](const Json& job) { return std::make_unique<CppDoor>(job); });
}
