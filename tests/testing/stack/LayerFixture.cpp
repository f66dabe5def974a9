#include "testing/stack/LayerFixture.h"

#include <utility>

namespace qncomm::testing {

LayerLine LineInProcess() {
    return {"InProcess", PrinterInProcess, [] { return std::make_unique<ManualReactor>(); }};
}

LayerFixture::LayerFixture(const std::string& printer, const LayerLine& line)
    : mReactor(line.reactor()),
      mPrinter(line.printer(printer)),
      mStack(*mReactor, mPrinter->Address()) {}

LayerFixture::~LayerFixture() {
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_FALSE(mStack.mSerial.PortOpen());
}

Lines LayerFixture::Names(const std::string& device) {
    Lines names;
    for (const auto& file : *mQuorin.PrinterDevices()->Item(device)->Files)
        names.push_back(file->Name);
    return names;
}

Lines LayerFixture::FilesOn(std::string device, bool system) {
    mQuorin.Files(device, true, system);
    return Names(device);
}

std::shared_ptr<ModuleErrors> LayerFixture::Upload(const std::string& target, std::string text) {
    std::string path = target;
    return mQuorin.ModuleUpload("", path, text);
}

std::string LayerFixture::SetupValue(const std::string& key) {
    mQuorin.GetSetup();
    return mQuorin.PrinterSetupItems()->Item(key)->Value;
}

std::string SmallPcx() {
    std::string pcx(128, '\0');
    const std::pair<std::size_t, char> fields[] = {{0, 10}, {1, 5},  {2, 1}, {3, 1},
                                                   {8, 7},  {65, 1}, {66, 2}};
    for (const auto& [at, value] : fields)
        pcx[at] = value;
    return pcx + "\xC1\xAA" + std::string(1, '\0');
}

} // namespace qncomm::testing
