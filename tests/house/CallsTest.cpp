#include "CallRules.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

using qncomm::testing::StrayCalls;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(CallRules, LetOnePlaceOpenFiles) {
    for (const char* call : {"Fd fd(::open(path, O_RDONLY));", "std::ifstream in(path);",
                             "FILE* f = std::fopen(path, \"r\");", "QSaveFile file(path);"}) {
        EXPECT_THAT(StrayCalls("trace/X.cpp", call), ElementsAre(HasSubstr("files"))) << call;
    }
    EXPECT_THAT(StrayCalls("platform/FileOpening.cpp", "::open(path, flags)"), IsEmpty());
    EXPECT_THAT(StrayCalls("trace/X.cpp", "OpenToRead(path, {}, fd); QFileInfo(path).fileName()"),
                IsEmpty());
}

TEST(TheWholeProduct, CallsWhatOnlyOnePlaceMayCallThere) {
    const fs::path root = fs::path(QN_SOURCE_DIR) / "src";
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string ending = entry.path().extension().string();
        if (ending != ".cpp" && ending != ".h") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        EXPECT_THAT(StrayCalls(fs::relative(entry.path(), root).string(), text), IsEmpty());
        ++files;
    }
    EXPECT_GT(files, 400U);
}

} // namespace
