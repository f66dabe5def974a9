#include "EngineFuzz.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>

namespace qncomm::fuzz {

using transfer::AnswerKind;
using transfer::Outcome;
using transfer::Request;
using transfer::RequestKind;
using transfer::Time;
using transfer::TransferEngine;

namespace {

void Promise(bool bKept) {
    if (!bKept) std::abort();
}

// The fuzzer's bytes, taken one by one; zeros when they are used up.
class Choices {
  public:
    Choices(const std::uint8_t* data, std::size_t size)
        : mRest(reinterpret_cast<const char*>(data), size) {}
    [[nodiscard]] bool IsOver() const { return mRest.empty(); }
    std::uint8_t Next() {
        if (mRest.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(mRest.front());
        mRest.remove_prefix(1);
        return byte;
    }
    std::string_view Take(std::size_t count) {
        const auto part = mRest.substr(0, count);
        mRest.remove_prefix(part.size());
        return part;
    }

  private:
    std::string_view mRest;
};

// Files that fail and refuse as the fuzzer chooses, and watch what they are asked.
class Files {
  public:
    transfer::Answer Carry(const Request& request, std::uint8_t choice) {
        transfer::Answer answer;
        if (choice == 255) answer.kind = AnswerKind::Failed;
        switch (request.kind) {
        case RequestKind::NextFile:
            if (mFiles++ >= 2) answer.kind = AnswerKind::Skip;
            answer.file.name = "name";
            if (choice % 2 == 0) answer.file.size = mContent.size();
            answer.file.text = choice % 5 == 0;
            answer.file.resume = choice % 7 == 0;
            break;
        case RequestKind::Read:
            if (request.offset < mContent.size()) {
                answer.data = std::string_view(mContent).substr(
                    static_cast<std::size_t>(request.offset), request.length);
            }
            break;
        case RequestKind::Offer:
            if (choice % 8 == 1) answer.kind = AnswerKind::Skip;
            if (choice % 8 == 2) answer.offset = choice;
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
    std::string mContent = std::string(3000, '\x11') + std::string(3000, 'x');
    std::uint64_t mWritten = 0;
    int mFiles = 0;
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
    Files files;
    Time now = std::chrono::seconds(1000);
    engine.Start(now);
    Drain(engine, files, choices, now, 1U << 20U);
    while (!choices.IsOver()) {
        const std::uint8_t choice = choices.Next();
        switch (choice % 4) {
        case 0:
            engine.Receive(wellFormed(choices.Take(choice)), now);
            break;
        case 1:
            engine.Receive(choices.Take(choices.Next()), now);
            break;
        case 2:
            now += std::chrono::milliseconds(choice * 10);
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
