#include "TransferFixture.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <random>
#include <utility>

namespace qncomm::testing {
namespace {

Arguments Joined(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

std::string TransferFixture::Content(std::size_t size, unsigned seed) {
    std::mt19937 source(seed);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(source()); });
    return bytes;
}

void TransferFixture::PrinterOnPty(const Arguments& options) {
    StartSimulator(Joined({"--state", PathOf("state")}, options));
    mPort = Printer();
}

void TransferFixture::PrinterOnTcp(const Arguments& options) {
    PrinterOnSocket("--tcp", options);
}

void TransferFixture::PrinterOnRemotePort(const Arguments& options) {
    PrinterOnSocket("--rfc2217", options);
}

void TransferFixture::PrinterOnSocket(const std::string& kind, const Arguments& options) {
    StartSimulator(Joined({"--state", PathOf("state"), kind, "0"}, options));
    mPort = Simulator().Out();
    mPort.erase(mPort.find('\n'));
}

Arguments TransferFixture::OnPort(Arguments arguments) const {
    return Joined(std::move(arguments), {"--port", mPort});
}

Ended TransferFixture::RunLimited(int kiB, const Arguments& arguments) {
    const std::string limits = "ulimit -f " + std::to_string(kiB);
    return EndedOf(*Start(OnPort(arguments), Program::Stdio::Pipes,
                          {"bash", "-c", limits + "; exec \"$@\"", "bash"}));
}

Ended TransferFixture::RunInto(const std::string& rest, const Arguments& arguments) {
    return EndedOf(*Start(OnPort(arguments), Program::Stdio::Pipes,
                          {"bash", "-c", "\"$@\" " + rest + "; exit ${PIPESTATUS[0]}", "bash"}));
}

void TransferFixture::MakeFolder(const std::string& name) const {
    std::filesystem::create_directory(PathOf(name));
}

bool TransferFixture::FolderIsEmpty(const std::string& name) const {
    return std::filesystem::is_empty(PathOf(name));
}

void TransferFixture::TypeLine(const std::string& line) {
    const Ended typed = Run(OnPort({"terminal"}), line + "\n");
    ASSERT_EQ(typed.status, 0) << typed.err;
}

std::string TransferFixture::PrinterFile(const std::string& name) {
    const Ended fetched = Carry({"kermit", "receive", name, PathOf("fetched")});
    EXPECT_EQ(fetched.status, 0) << fetched.err;
    return HostFile("fetched");
}

Ended TransferFixture::Interrupt(const Arguments& arguments) {
    const auto program = Start(OnPort(Joined(arguments, {"--json"})));
    EXPECT_TRUE(program->WaitForOut("\"progress\"")) << program->Err();
    program->Signal(SIGINT);
    return EndedOf(*program);
}

} // namespace qncomm::testing
