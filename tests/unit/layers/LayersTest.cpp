#include "IncludeRules.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using layers::StrayIncludes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Line(std::string_view include) {
    return "#pragma once\n#include " + std::string(include) + "\nint x;\n";
}

TEST(IncludeRules, LetAFolderIncludeWhatItsRowNames) {
    EXPECT_THAT(StrayIncludes("printer/Fonts.cpp", Line("\"link/clsDataLink.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("printer/Fonts.cpp", Line("\"Exchange.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("printer/Fonts.cpp", Line("<vector>")), IsEmpty());
    EXPECT_THAT(StrayIncludes("platform/Fd.cpp", Line("<sys/ioctl.h>")), IsEmpty());
    EXPECT_THAT(StrayIncludes("apps/qnctl/main.cpp", Line("\"serial/PDQComm.h\"")), IsEmpty());
}

TEST(IncludeRules, RefuseAnArrowThatRunsUp) {
    EXPECT_THAT(StrayIncludes("link/Search.cpp", Line("\"dialogs/frmCommSettings.h\"")),
                ElementsAre(HasSubstr("is not in the row of link/")));
    EXPECT_THAT(StrayIncludes("faces/console/X.cpp", Line("\"serial/PDQComm.h\"")),
                ElementsAre(HasSubstr("is not in the row of faces/console/")));
    EXPECT_THAT(StrayIncludes("simulator/X.cpp", Line("\"common/Text.h\"")),
                ElementsAre(HasSubstr("is not in the row of simulator/")));
    EXPECT_THAT(StrayIncludes("common/X.cpp", Line("\"../link/Search.h\"")),
                ElementsAre(HasSubstr("relative path")));
}

TEST(IncludeRules, RefuseTheSystemAndToolkitsInTheCore) {
    EXPECT_THAT(StrayIncludes("link/X.h", Line("<unistd.h>")),
                ElementsAre(HasSubstr("standard library")));
    EXPECT_THAT(StrayIncludes("control/X.h", Line("<QWidget>")),
                ElementsAre(HasSubstr("standard library")));
    EXPECT_THAT(StrayIncludes("common/X.h", Line("<sys/stat.h>")),
                ElementsAre(HasSubstr("standard library")));
}

TEST(IncludeRules, LetCallersByNameSeeTheControlAndTheControlNoneOfThem) {
    EXPECT_THAT(StrayIncludes("automation/X.cpp", Line("\"control/QNComm.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("apps/qnctl/X.cpp", Line("\"automation/X.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("automation/X.cpp", Line("\"console/Charset.h\"")),
                ElementsAre(HasSubstr("is not in the row of automation/")));
    EXPECT_THAT(StrayIncludes("control/X.cpp", Line("\"automation/X.h\"")),
                ElementsAre(HasSubstr("is not in the row of control/")));
}

TEST(IncludeRules, LetSerialSeeOneHeaderOfTheLinkAndNothingOfTheVirtualPrinter) {
    EXPECT_THAT(StrayIncludes("serial/PDQComm.h", Line("\"link/SerialControl.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("serial/PDQComm.h", Line("\"link/clsDataLink.h\"")),
                ElementsAre(HasSubstr("is not in the row of serial/")));
    const std::string simulator = Line("\"simulator/VirtualPrinter.h\"");
    EXPECT_THAT(StrayIncludes("assembly/virtual_printer/X.cpp", simulator), IsEmpty());
    EXPECT_THAT(StrayIncludes("serial/TtyChannel.cpp", simulator),
                ElementsAre(HasSubstr("is not in the row of serial/")));
}

TEST(IncludeRules, HoldTheTerminalToTheStandardLibrary) {
    EXPECT_THAT(StrayIncludes("terminal/Grid.cpp", Line("\"terminal/Damage.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("terminal/Grid.cpp", Line("<unistd.h>")),
                ElementsAre(HasSubstr("standard library")));
    EXPECT_THAT(StrayIncludes("terminal/Grid.cpp", Line("\"serial/PDQComm.h\"")),
                ElementsAre(HasSubstr("is not in the row of terminal/")));
    EXPECT_THAT(StrayIncludes("terminal/Grid.cpp", Line("\"terminal/view/KeyPress.h\"")),
                ElementsAre(HasSubstr("is not in the row of terminal/")));
}

TEST(IncludeRules, KeepToolkitsFromTheRulesOfInteraction) {
    const std::string_view file = "terminal/view/KeyPress.cpp";
    EXPECT_THAT(StrayIncludes(file, Line("\"terminal/Terminal.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes(file, Line("\"terminal/view/Letters.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes(file, Line("\"common/Windows1252.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes(file, Line("<QKeyEvent>")),
                ElementsAre(HasSubstr("standard library")));
    EXPECT_THAT(StrayIncludes(file, Line("\"qt/KeyCodes.h\"")),
                ElementsAre(HasSubstr("is not in the row of terminal/view/")));
}

TEST(IncludeRules, LetTheTransferEnginesBeUsedBySerialAndTheSimulatorAlone) {
    const std::string engine = Line("\"transfer/TransferEngine.h\"");
    EXPECT_THAT(StrayIncludes("serial/PDQComm.cpp", engine), IsEmpty());
    EXPECT_THAT(StrayIncludes("simulator/FileTransfer.h", engine), IsEmpty());
    EXPECT_THAT(StrayIncludes("link/X.cpp", engine),
                ElementsAre(HasSubstr("is not in the row of link/")));
    EXPECT_THAT(StrayIncludes("transfer/X.cpp", Line("\"link/clsDataLink.h\"")),
                ElementsAre(HasSubstr("is not in the row of transfer/")));
}

TEST(IncludeRules, LetTheAssemblyAloneJoinTheControlToTheSerialControl) {
    EXPECT_THAT(StrayIncludes("assembly/X.cpp", Line("\"serial/PDQComm.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("faces/qt/X.cpp", Line("\"assembly/ControlAssembly.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("faces/qt/X.cpp", Line("\"terminal/Terminal.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("assembly/X.cpp", Line("\"qt/QNCommWidget.h\"")),
                ElementsAre(HasSubstr("is not in the row of assembly/")));
    EXPECT_THAT(StrayIncludes("control/X.cpp", Line("\"assembly/ControlAssembly.h\"")),
                ElementsAre(HasSubstr("is not in the row of control/")));
}

TEST(IncludeRules, HoldInEveryFileOfTheHouse) {
    namespace fs = std::filesystem;
    const fs::path root = QN_SOURCE_DIR "/src";
    std::vector<std::string> stray;
    std::size_t filesRead = 0;
    for (const std::string_view folder : layers::RuledFolders()) {
        if (!fs::exists(root / folder)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension != ".h" && extension != ".cpp") continue;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(in), {}};
            const auto found =
                StrayIncludes(fs::relative(entry.path(), root).generic_string(), text);
            stray.insert(stray.end(), found.begin(), found.end());
            ++filesRead;
        }
    }
    EXPECT_THAT(stray, IsEmpty());
    EXPECT_GT(filesRead, 20U) << "the sources were not found under " << root;
}

} // namespace
