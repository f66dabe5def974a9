// What is known of line and printer, as a host reads it.

#include "Members.h"
#include "common/Numbers.h"
#include "common/Utf8.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace qncomm {
namespace {

/// Adds facts, aged at the moment at which the facts are asked for.
class FactList {
  public:
    explicit FactList(std::int64_t nowMs) : mNow(nowMs) {}

    template <class T>
    void Add(std::string_view name, std::string value, const Learnt<T>& known) {
        auto fact = std::make_shared<clsLiveFact>();
        fact->Name = name;
        fact->Value = std::move(value);
        fact->LearntFrom = WordFor(known.from);
        if (known.from != LearntNot)
            fact->AgeMs = static_cast<std::int32_t>(
                std::min<std::int64_t>(mNow - known.at, std::numeric_limits<std::int32_t>::max()));
        mFacts->Add(std::move(fact), name);
    }
    std::shared_ptr<LiveFacts> Take() { return std::move(mFacts); }

  private:
    std::int64_t mNow;
    std::shared_ptr<LiveFacts> mFacts = std::make_shared<LiveFacts>();
};

} // namespace

std::int16_t QNComm::LineState() const {
    return Link().Live().line.value;
}

std::int16_t QNComm::PrinterActivity() const {
    return Link().Live().printer.value;
}

std::int32_t QNComm::Generation() const {
    return Link().Live().generation;
}

std::shared_ptr<qncomm::LiveFacts> QNComm::LiveFacts() const {
    const LiveState& live = Link().Live();
    const PrinterPlace& place = live.place.value;
    FactList facts(mServices.loop.NowMs());
    facts.Add("line", std::string(WordFor(live.line.value)), live.line);
    facts.Add("line detail", live.lineDetail, live.line);
    facts.Add("printer", std::string(WordFor(live.printer.value)), live.printer);
    facts.Add("model", Utf8FromPrinter(live.identity.value.model), live.identity);
    facts.Add("version", Utf8FromPrinter(live.identity.value.version), live.identity);
    facts.Add("port", ToText(std::int32_t{place.port}), live.place);
    facts.Add("address", place.name, live.place);
    facts.Add("settings", place.settings, live.place);
    facts.Add("generation", ToText(live.generation), live.place);
    return facts.Take();
}

void QNComm::RequireGeneration(std::int32_t lGeneration) {
    Begin().Link().RequireGeneration(lGeneration);
}

} // namespace qncomm
