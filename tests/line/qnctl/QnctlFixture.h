#pragma once

#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace qntest {

using Arguments = std::vector<std::string>;

/// A program that has ended.
struct Ended {
    int status = -1;
    std::string out;
    std::string err;
    long peakKb = 0;

    /// The one JSON document on the output; fails the test when it is none.
    nlohmann::json Document() const;
    /// The one JSON document on the error stream.
    nlohmann::json Failure() const;
};

/// Runs the command line in a folder of its own, with settings of its own, and a virtual printer
/// beside it when a test asks for one.
class QnctlFixture : public testing::Test {
  protected:
    QnctlFixture();
    ~QnctlFixture() override;

    /// Starts qnctl with these arguments.
    std::unique_ptr<Program> Start(const Arguments& arguments,
                                   Program::Stdio stdio = Program::Stdio::Pipes) const;
    /// Runs qnctl to its end, with this input.
    Ended Run(const Arguments& arguments, std::string_view input = {}) const;

    /// Starts a virtual printer on a pseudo-terminal; its path is Printer().
    void StartSimulator(const Arguments& options = {});
    /// The virtual printer's program.
    Program& Simulator() { return *mSimulator; }
    void StopSimulator() { mSimulator.reset(); }
    std::string Printer() const { return (mFolder / "printer").string(); }

    std::string SettingsPath() const { return (mFolder / "qncomm" / "settings.ini").string(); }
    std::string SettingsText() const;
    std::string PathOf(const std::string& name) const { return (mFolder / name).string(); }
    void WriteHostFile(const std::string& name, std::string_view text) const;

  private:
    std::filesystem::path mFolder;
    std::unique_ptr<Program> mSimulator;
};

} // namespace qntest
