#include "testing/programs/QnctlFixture.h"

#include "testing/core/OwnMachine.h"

#include <csignal>
#include <stdexcept>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

const fs::path Programs = QN_PROGRAMS;

nlohmann::json Parsed(const std::string& text) {
    auto document = nlohmann::json::parse(text, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << "not one JSON document: " << text;
    return document;
}

} // namespace

nlohmann::json Ended::Document() const {
    return Parsed(out);
}

nlohmann::json Ended::Failure() const {
    return Parsed(err);
}

Ended EndedOf(Program& program, int mostMs) {
    Ended ended;
    ended.status = program.Wait(mostMs);
    ended.out = program.Out();
    ended.err = program.Err();
    ended.peakKb = program.PeakKb();
    return ended;
}

std::unique_ptr<Program> QnctlFixture::Start(const Arguments& arguments, Program::Stdio stdio,
                                             Arguments command) const {
    command.push_back((Programs / "qnctl").string());
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Program>(
        command, stdio, Arguments{"XDG_CONFIG_HOME=" + mFolder.Path(), "HOME=" + mFolder.Path()});
}

Ended QnctlFixture::Run(const Arguments& arguments, std::string_view input) const {
    const auto program = Start(arguments);
    if (!input.empty()) program->Type(input);
    program->CloseInput();
    return EndedOf(*program);
}

void QnctlFixture::StartSimulator(const Arguments& options) {
    mSimulator.reset();
    fs::remove(Printer());
    Arguments command{(Programs / "qnsim").string(), "--link", Printer()};
    command.insert(command.end(), options.begin(), options.end());
    mSimulator = std::make_unique<Program>(command);
    MakeMachineOfItsOwn(mSimulator->Pid());
    if (!mSimulator->WaitForOut("\n")) throw std::runtime_error("qnsim: " + mSimulator->Err());
}

void QnctlFixture::StartTalking() const {
    const auto typing = Start({"terminal", "--port", Printer()});
    typing->Type("10 PRINT 42:GOTO 10\nRUN\n");
    if (!typing->WaitForOut("42\r\n42\r\n")) throw std::runtime_error("qnctl: " + typing->Err());
    typing->Signal(SIGKILL);
    typing->Wait();
}

} // namespace qncomm::testing
