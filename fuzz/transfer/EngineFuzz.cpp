#include "EngineFuzz.h"

#include "Choices.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace qncomm::fuzz {

using transfer::AnswerKind;
using transfer::Outcome;
using transfer::Request;
using transfer::RequestKind;
using transfer::Time;
using transfer::TransferEngine;

namespace {

// Files that fail and refuse as the fuzzer chooses, and watch what they are asked.
class Files {
  public:
    explicit Files(Choices& choices) : mMost(choices.Next() % 64) {}

    transfer::Answer Carry(const Request& request, std::uint8_t choice) {
        transfer::Answer answer;
        if (choice == 255) answer.kind = AnswerKind::Failed;
        switch (request.kind) {
        case RequestKind::NextFile:
            if (mFiles++ >= mMost) answer.kind = AnswerKind::Skip;
            answer.file.name = "name";
            mSize = SizeOf(choice);
            if (choice % 2 == 0) answer.file.size = mSize;
            answer.file.text = choice % 5 == 0;
            answer.file.resume = choice % 7 == 0;
            break;
        case RequestKind::Read:
            answer.data = Content(request);
            break;
        case RequestKind::Offer:
            if (choice % 8 == 1) answer.kind = AnswerKind::Skip;
            if (choice % 8 == 2) answer.offset = SizeOf(choice);
            mWritten = answer.offset;
            break;
        case RequestKind::Write:
            Promise(request.offset == mWritten && !request.data.empty());
            mWritten += request.data.size();
            break;
        case RequestKind::Close:
            break;
        }
        return answer;
    }

  private:
    /// A few bytes, or around 4 GiB and beyond: places need more than 32 bits there.
    static std::uint64_t SizeOf(std::uint8_t choice) {
        constexpr std::uint64_t large = (std::uint64_t{1} << 32U) - 3000;
        return choice < 64 ? large * (1U + choice % 4U) : std::uint64_t{choice} * 32;
    }

    /// The bytes at that place: half of them such as must be hidden from the line.
    std::string_view Content(const Request& request) const {
        if (request.offset >= mSize) return {};
        const auto most = std::min<std::uint64_t>(request.length, mSize - request.offset);
        return std::string_view(mBytes).substr(request.offset % 3000,
                                               static_cast<std::size_t>(most));
    }

    std::string mBytes = std::string(3000, '\x11') + std::string(70'000, 'x');
    std::uint64_t mSize = 0;
    std::uint64_t mWritten = 0;
    int mFiles = 0;
    int mMost;
};

void Serve(TransferEngine& engine, Files& files, Choices& choices, Time now) {
    for (int i = 0; engine.PendingRequest() != nullptr; ++i) {
        Promise(i < 100000);
        engine.Answer(files.Carry(*engine.PendingRequest(), choices.Next()), now);
    }
}

void Drain(TransferEngine& engine, Files& files, Choices& choices, Time now, std::size_t most) {
    for (int i = 0; i < 1000; ++i) {
        Serve(engine, files, choices, now);
        const std::size_t size = engine.Output(now).size();
        Promise(size < 4U << 20U);
        if (size == 0 && engine.PendingRequest() == nullptr) return;
        engine.Sent(std::min(size, most), now);
        if (size > most) return;
    }
}

} // namespace

void DriveEngine(TransferEngine& engine, WellFormed wellFormed, const std::uint8_t* data,
                 std::size_t size) {
    Choices choices(data, size);
    Files files(choices);
    Time now = std::chrono::seconds(1000);
    engine.Start(now);
    Drain(engine, files, choices, now, 1U << 20U);
    while (!choices.IsOver()) {
        const std::uint8_t choice = choices.Next();
        switch (choice % 8) {
        case 0:
            engine.Receive(wellFormed(choices.Take(choice)), now);
            break;
        case 1:
            engine.Receive(choices.Take(choices.Next()), now);
            break;
        case 2:
            now += std::chrono::milliseconds(choice * 10);
            break;
        case 3:
            engine.Receive(wellFormed(choices.Take(choices.NextWord())), now);
            break;
        case 4:
            engine.Receive(std::string(choices.NextWord(), static_cast<char>(choices.Next())), now);
            break;
        default:
            if (choice == 255) engine.Cancel(now);
            break;
        }
        if (const auto due = engine.NextDeadline(); due && *due <= now) engine.Tick(now);
        Drain(engine, files, choices, now, choice % 3 == 0 ? choice : 1U << 20U);
    }
    // Silence ends it within the minute that is promised, in a bounded number of steps.
    const Time silent = now;
    for (int i = 0; !engine.IsOver(); ++i) {
        Promise(i < 10000 && now - silent <= std::chrono::seconds(60));
        if (const auto due = engine.NextDeadline()) {
            now = std::max(now, *due);
            engine.Tick(now);
        }
        Drain(engine, files, choices, now, 1U << 20U);
    }
    Promise(engine.Outcome() != Outcome::Running && engine.PendingRequest() == nullptr);
}

} // namespace qncomm::fuzz
