#include "platform/TemporaryFolder.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "platform/SystemFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>

namespace qncomm {
namespace {

TEST(TemporaryFolders, AreTheOwnersAloneAndGoWithAllThatTheyHold) {
    std::string path;
    {
        const TemporaryFolder folder;
        const TemporaryFolder other;
        path = folder.Path();
        EXPECT_NE(path, other.Path());
        struct stat is {};
        ASSERT_EQ(::stat(path.c_str(), &is), 0);
        EXPECT_EQ(is.st_mode & 0777U, 0700U);
        std::filesystem::create_directory(path + "/inner");
        SystemFiles().Save(path + "/inner/file", "bytes");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolders, ThatCannotBeMadeAreAnError) {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before != nullptr ? before : "";
    ::setenv("TMPDIR", "/dev/null", 1);
    try {
        const TemporaryFolder folder;
        ADD_FAILURE() << folder.Path();
    } catch (const QNError& error) {
        EXPECT_EQ(error.Number(), RtPathNotFound);
    }
    before != nullptr ? ::setenv("TMPDIR", kept.c_str(), 1) : ::unsetenv("TMPDIR");
}

} // namespace
} // namespace qncomm
