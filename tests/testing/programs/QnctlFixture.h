#pragma once

#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace qncomm::testing {

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

/// Waits for the program's end; one that needs longer than mostMs hangs.
Ended EndedOf(Program& program, int mostMs = Program::AnyTime);

/// Runs the command line in a folder of its own, with settings of its own, and a virtual printer
/// beside it when a test asks for one.
class QnctlFixture : public ::testing::Test {
  protected:
    /// Starts qnctl with these arguments, behind a command that runs it when there is one.
    std::unique_ptr<Program> Start(const Arguments& arguments,
                                   Program::Stdio stdio = Program::Stdio::Pipes,
                                   Arguments command = {}) const;
    /// Runs qnctl to its end, with this input.
    Ended Run(const Arguments& arguments, std::string_view input = {}) const;

    /// Starts a virtual printer on a pseudo-terminal; its path is Printer().
    void StartSimulator(const Arguments& options = {});
    /// Runs a program on it that prints 42 and never ends; nobody listens any more.
    void StartTalking() const;
    /// The virtual printer's program.
    Program& Simulator() { return *mSimulator; }
    void StopSimulator() { mSimulator.reset(); }
    std::string Printer() const { return mFolder.File("printer"); }

    std::string SettingsPath() const { return mFolder.File("qncomm/settings.ini"); }
    std::string SettingsText() const { return mFolder.Read("qncomm/settings.ini"); }
    std::string PathOf(const std::string& name) const { return mFolder.File(name); }
    void WriteHostFile(const std::string& name, std::string_view text) const {
        mFolder.Write(name, text);
    }
    /// The whole content of a file in the folder, empty when there is none.
    std::string HostFile(const std::string& name) const { return mFolder.Read(name); }
    bool HasHostFile(const std::string& name) const { return mFolder.Has(name); }

  private:
    qncomm::testing::ScratchFolder mFolder;
    std::unique_ptr<Program> mSimulator;
};

} // namespace qncomm::testing
