#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using qncomm::testing::Program;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(HostExample, FindsAPrinterAndListsItsFiles) {
    const qncomm::testing::ScratchFolder folder;
    Program printer({QN_PROGRAMS "/qnsim", "--link", folder.File("printer")});
    ASSERT_TRUE(printer.WaitForOut("\n")) << printer.Err();
    Program host({QN_HOST_PROGRAM, folder.File("printer")});
    host.CloseInput();
    EXPECT_EQ(host.Wait(), 0) << host.Err();
    EXPECT_THAT(host.Out(), StartsWith("R7G, "));
    EXPECT_THAT(host.Out(), HasSubstr(" bytes\n"));
}

TEST(HostExample, SaysWhatIsWrongWithAPort) {
    for (const char* address : {"/dev/there-is-none", "sim:R7G"}) {
        Program host({QN_HOST_PROGRAM, address});
        host.CloseInput();
        EXPECT_EQ(host.Wait(), 1) << address;
        EXPECT_EQ(host.Out(), "") << address;
        EXPECT_THAT(host.Err(), HasSubstr(": ")) << address;
    }
}

TEST(HostExample, LoadsNoLibraryOfTheVirtualPrinterOrOfAToolkit) {
    Program loader({"/usr/bin/ldd", QN_HOST_PROGRAM});
    ASSERT_EQ(loader.Wait(), 0) << loader.Err();
    ASSERT_THAT(loader.Out(), HasSubstr("libc.so"));
    for (const char* library : {"freetype", "png", "Qt"})
        EXPECT_THAT(loader.Out(), Not(HasSubstr(library)));
}

TEST(HostExample, IsShortEnoughToBeReadAtOnce) {
    const std::string code = qncomm::testing::ContentOf(QN_HOST_CODE);
    EXPECT_FALSE(code.empty());
    EXPECT_LE(std::count(code.begin(), code.end(), '\n'), 60);
}

} // namespace
