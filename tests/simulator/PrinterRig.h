// A virtual printer on a driven clock, and one call per exchange.
#pragma once

#include "simulator/VirtualPrinter.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

using namespace qnsim;

class PrinterRig {
  public:
    explicit PrinterRig(std::string_view address = "R7G") : PrinterRig(Parse(address)) {}
    explicit PrinterRig(const Options& options) : mPrinter(options) { mPrinter.HostOpened(mNow); }

    static Options Parse(std::string_view address) {
        const ParseResult result = ParseAddress(address);
        EXPECT_TRUE(result.options.has_value()) << result.error;
        return result.options.value_or(Options{});
    }

    VirtualPrinter& Printer() { return mPrinter; }
    Micros Now() const { return mNow; }
    void Pass(Micros micros) { mNow += micros; }

    /// Sends bytes as they are.
    void Send(std::string_view bytes) { mPrinter.FromHost(bytes, mNow); }

    /// Everything that the printer says in that time, until it rests.
    std::string Read(Micros wait = 0) {
        std::string all;
        const Micros end = mNow + wait;
        for (int turns = 0; turns < 100'000; ++turns) {
            all += mPrinter.ToHost(mNow, 1 << 20);
            const auto due = mPrinter.NextDue();
            if (!due || *due > end) {
                mNow = end;
                return all;
            }
            mNow = std::max(mNow, *due);
        }
        ADD_FAILURE() << "the printer never rests";
        return all;
    }

    /// One command line, ended as hosts end them, and the whole reply.
    std::string Ask(std::string_view line) {
        Send(std::string(line) + "\r\n");
        return Read();
    }

    /// The reply's lines between the echo and the closing "Ok".
    std::vector<std::string> Lines(std::string_view line) {
        std::vector<std::string> lines = SplitLines(Ask(line));
        EXPECT_GE(lines.size(), 2U) << line;
        if (lines.size() < 2) return {};
        EXPECT_EQ(lines.front(), line);
        EXPECT_EQ(lines.back(), "Ok") << line;
        return {lines.begin() + 1, lines.end() - 1};
    }

    /// The single line of a reply.
    std::string Line(std::string_view line) {
        const std::vector<std::string> lines = Lines(line);
        EXPECT_EQ(lines.size(), 1U) << line;
        return lines.empty() ? std::string() : lines.front();
    }

    static std::vector<std::string> SplitLines(const std::string& text) {
        std::vector<std::string> lines;
        std::size_t at = 0;
        while (at < text.size()) {
            const auto end = text.find("\r\n", at);
            if (end != at) lines.push_back(text.substr(at, end - at));
            if (end == std::string::npos) break;
            at = end + 2;
        }
        return lines;
    }

  private:
    Micros mNow = 1'000'000;
    VirtualPrinter mPrinter;
};

} // namespace qncomm::testing
