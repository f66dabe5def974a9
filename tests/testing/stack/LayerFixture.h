#pragma once

#include "platform/Reactor.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qncomm::testing {

using Lines = std::vector<std::string>;

/// A kind of line with the clock that it needs: one that a test drives for the printer in this
/// process, the machine's for every other.
struct LayerLine {
    const char* name;
    std::function<std::unique_ptr<ServedPrinter>(const std::string&)> printer;
    std::function<std::unique_ptr<Reactor>()> reactor;
};

inline void PrintTo(const LayerLine& line, std::ostream* stream) {
    *stream << line.name;
}

/// The line of a printer in this process.
LayerLine LineInProcess();

/// The command layer on the virtual printer, the whole way down.
class LayerFixture : public ::testing::Test {
  protected:
    /// printer: what follows "sim:" in an address.
    explicit LayerFixture(const std::string& printer, const LayerLine& line = LineInProcess());
    /// Every operation gave back what it claimed.
    ~LayerFixture() override;

    Lines Names(const std::string& device);
    Lines FilesOn(std::string device, bool system = false);
    std::shared_ptr<ModuleErrors> Upload(const std::string& target, std::string text);
    std::string SetupValue(const std::string& key);

    ScratchFolder mFolder;
    std::unique_ptr<Reactor> mReactor;
    std::unique_ptr<ServedPrinter> mPrinter;
    Stack mStack;
    clsQuorin mQuorin{mStack.mLink, mStack.mDesktop, SystemFiles()};
};

/// A picture of 8 by 1 dots, run-length packed.
std::string SmallPcx();

/// The suite that runs over each kind of line.
class Layer : public LayerFixture, public ::testing::WithParamInterface<LayerLine> {
  protected:
    Layer() : LayerFixture("R7G", GetParam()) {}
};

/// The name of a suite's instance.
inline std::string NameOfLine(const ::testing::TestParamInfo<LayerLine>& line) {
    return line.param.name;
}

} // namespace qncomm::testing
