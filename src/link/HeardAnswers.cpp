// What a search makes of answers that are no printer's, and why it failed.

#include "HeardAnswers.h"

#include "link/SearchReport.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

bool IsNoise(const LineVerdict& verdict) {
    return verdict.talk == LineTalk::Noise;
}

/// How much a verdict tells: text more than noise, and text that came undamaged most.
int Worth(const LineVerdict& verdict) {
    if (verdict.talk == LineTalk::Silence) return 0;
    if (IsNoise(verdict)) return 1;
    return verdict.fit == FormatFit::Fits ? 3 : 2;
}

struct Reason {
    LineTalk talk;
    std::string_view sentence;
};

/// Why nobody was found where what came back was that; anything else says it by itself.
constexpr std::array Reasons{
    Reason{LineTalk::Silence, "no printer answered"},
    Reason{LineTalk::Noise, "what answers is no text at any rate and format that was tried: the "
                            "printer has another parity, or the line is bad"},
    Reason{LineTalk::Echo, "the line returns what is sent to it and says nothing else: its two "
                           "ends are joined, or a program takes it for its input"},
};

/// What a search has done: where, and behind that why.
struct Deed {
    SearchEnd end;
    std::string_view deed;
    std::string_view preposition;
};

constexpr std::array Deeds{
    Deed{SearchEnd::Unanswered, "No printer was found", " on "},
    Deed{SearchEnd::LineTalks, "Nothing was sent", " to "},
    Deed{SearchEnd::Taken, "Only one line was sent", " to "},
};
constexpr Deed Unanswered{SearchEnd::Unanswered, "No printer answered", " on "};

const Deed* DeedOf(const SearchReport& report) {
    const auto found = std::find_if(Deeds.begin(), Deeds.end(),
                                    [&](const Deed& deed) { return deed.end == report.end; });
    return found == Deeds.end() ? nullptr : &*found;
}

} // namespace

void HeardAnswers::Add(const std::string& rate, const std::string& format, const HeardLine& heard) {
    LineVerdict verdict = Classify(heard);
    if (verdict.talk != LineTalk::Silence) mAnswers.push_back({rate, format, std::move(verdict)});
}

void HeardAnswers::TellIn(SearchReport& report) const {
    const auto best =
        std::max_element(mAnswers.begin(), mAnswers.end(), [](const Answer& a, const Answer& b) {
            return Worth(a.verdict) < Worth(b.verdict);
        });
    if (best == mAnswers.end()) return;
    report.heard = best->verdict;
    report.settings = best->rate + "," + best->format;
}

std::vector<std::string> HeardAnswers::DamagedRates() const {
    const bool anyText = std::any_of(mAnswers.begin(), mAnswers.end(),
                                     [](const Answer& a) { return Worth(a.verdict) == 2; });
    std::vector<std::string> rates;
    for (const Answer& answer : mAnswers) {
        if (Worth(answer.verdict) != (anyText ? 2 : 1)) continue;
        if (rates.empty() || rates.back() != answer.rate) rates.push_back(answer.rate);
    }
    return rates;
}

bool IsKeptFrom(const SearchReport& report) {
    return report.end == SearchEnd::LineTalks || report.end == SearchEnd::Taken;
}

std::string Explain(const SearchReport& report, std::string_view place) {
    const bool silent =
        report.end == SearchEnd::Unanswered && report.heard.talk == LineTalk::Silence;
    const Deed* deed = silent ? &Unanswered : DeedOf(report);
    if (deed == nullptr) return {};
    std::string text(deed->deed);
    if (!place.empty()) text.append(deed->preposition).append(place);
    return silent ? text : text + ": " + SentenceFor(report);
}

std::string SentenceFor(const SearchReport& report) {
    if (report.end == SearchEnd::LineTalks) return SentenceFor(report.heard);
    if (report.end != SearchEnd::Unanswered && report.end != SearchEnd::Taken) return {};
    for (const Reason& reason : Reasons)
        if (reason.talk == report.heard.talk) return std::string(reason.sentence);
    return SentenceFor(report.heard);
}

} // namespace qncomm
