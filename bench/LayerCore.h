#pragma once

#include "common/MemorySettings.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/printer/InstantPrinter.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

/// What the printer of a LayerCore has to say, in rows that end in CR LF.
struct LayerReplies {
    std::string files{};
    std::string fonts{};
    std::string setup{};
    std::string errors{}; ///< of a module
};

/// The core on a printer that answers at once. A box ends the program.
class LayerCore {
  public:
    explicit LayerCore(LayerReplies replies) : mReplies(std::move(replies)) {
        mLink.SetSerialPort(&mPrinter);
        mLink.SetRegSettings(std::make_shared<qncomm::MemorySettings>());
        mLink.SetImmediateMode(true);
    }

    qncomm::clsQuorin& Quorin() { return mQuorin; }

  private:
    class NoDesktop : public qncomm::Desktop {
      public:
        qncomm::MsgBoxResult ShowMsgBox(const qncomm::MsgBox& box) override {
            throw std::runtime_error(box.text);
        }
        void Log(std::string_view /*sLine*/) override {}
    };

    class NoDialogs : public qncomm::LinkDialogs {
      public:
        std::int16_t ShowCommSettings(qncomm::clsDataLink& /*link*/) override { return 2; }
        std::unique_ptr<qncomm::ShownWindow> ShowWaitForReboot() override { return nullptr; }
    };

    std::string AnswerTo(const std::string& line) const {
        const std::string counts = "100 BYTES FREE  20 BYTES USED\r\n";
        std::string body;
        if (line.starts_with("PRINT SYSVAR")) body = "-1\r\n2\r\n";
        if (line.starts_with("PRINT VERSION")) body = "v8.10\r\nR7G\r\n";
        if (line.starts_with("FILES")) body = "FILES ON C:\r\n" + mReplies.files + counts;
        if (line == "FONTS") body = mReplies.fonts + counts;
        if (line.starts_with("SETUP WRITE")) body = mReplies.setup;
        if (line == "IMMEDIATE ON") body = mReplies.errors;
        if (line.find(" REM ") != std::string::npos) return {}; // typed lines have no answer
        return line + "\r\n" + body + "Ok\r\n";
    }

    LayerReplies mReplies;
    InstantPrinter mPrinter{[this](const std::string& line) { return AnswerTo(line); }};
    NoDesktop mDesktop;
    NoDialogs mDialogs;
    qncomm::clsDataLink mLink{
        qncomm::LinkHost{mPrinter, mDesktop, mDialogs, qncomm::SystemFiles()}};
    qncomm::clsQuorin mQuorin{mLink, mDesktop, qncomm::SystemFiles()};
};
