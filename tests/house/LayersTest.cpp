#include "IncludeRules.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace {

namespace fs = std::filesystem;

using qncomm::testing::StrayIncludes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const fs::path Root = QN_SOURCE_DIR;

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

TEST(IncludeRules, RefuseFilesAndThreadsInTheCore) {
    for (const char* header : {"<filesystem>", "<fstream>", "<thread>", "<mutex>", "<cstdio>"}) {
        EXPECT_THAT(StrayIncludes("automation/X.cpp", Line(header)),
                    ElementsAre(HasSubstr("which an adapter brings")));
        EXPECT_THAT(StrayIncludes("transfer/X.cpp", Line(header)), SizeIs(1));
        EXPECT_THAT(StrayIncludes("platform/X.cpp", Line(header)), IsEmpty());
    }
}

TEST(IncludeRules, LetOneToolkitIntoItsOwnFaceAlone) {
    EXPECT_THAT(StrayIncludes("faces/qt/widget/X.h", Line("<QWidget>")), IsEmpty());
    EXPECT_THAT(StrayIncludes("apps/qnterm/files/X.h", Line("<QWidget>")), IsEmpty());
    for (const char* file : {"faces/console/X.h", "assembly/X.h", "serial/X.h", "bindings/c/X.h"})
        EXPECT_THAT(StrayIncludes(file, Line("<QWidget>")), ElementsAre(HasSubstr("toolkit")));
}

TEST(IncludeRules, LetNothingIncludeAProgramOrABinding) {
    for (const char* include : {"\"qnctl/Session.h\"", "\"bindings/Handle.h\"", "\"apps/X.h\""}) {
        EXPECT_THAT(StrayIncludes("faces/qt/X.cpp", Line(include)), SizeIs(1));
        EXPECT_THAT(StrayIncludes("apps/qnsim/main.cpp", Line(include)), SizeIs(1));
    }
}

TEST(IncludeRules, HoldTheRoomsOfTheVirtualPrinterToTheirOrder) {
    EXPECT_THAT(StrayIncludes("simulator/language/X.cpp", Line("\"label/Label.h\"")), IsEmpty());
    EXPECT_THAT(StrayIncludes("simulator/label/X.cpp", Line("\"language/Parser.h\"")),
                ElementsAre(HasSubstr("is not in the row of simulator/label/")));
    EXPECT_THAT(StrayIncludes("simulator/Line.cpp", Line("\"endpoints/Sleeper.h\"")),
                ElementsAre(HasSubstr("is not in the row of simulator/")));
    EXPECT_THAT(StrayIncludes("assembly/X.cpp", Line("\"simulator/VirtualPrinter.h\"")),
                ElementsAre(HasSubstr("is not in the row of assembly/")));
}

/// The text of a file of the tree.
std::string TextOf(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The files below a folder of the tree that have one of the names or extensions.
std::vector<fs::path> FilesBelow(const fs::path& folder, const std::set<std::string>& kinds) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (kinds.contains(entry.path().extension().string())
            || kinds.contains(entry.path().filename().string()))
            files.push_back(entry.path());
    EXPECT_THAT(files, Not(IsEmpty())) << "nothing was found below " << folder;
    return files;
}

TEST(TheHouse, IncludesWhatItsRowsName) {
    std::vector<std::string> stray;
    for (const fs::path& path : FilesBelow(Root / "src", {".h", ".cpp"})) {
        const std::string file = fs::relative(path, Root / "src").generic_string();
        EXPECT_FALSE(qncomm::testing::RuledFolderOf(file).empty()) << file << " has no row";
        std::ranges::copy(StrayIncludes(file, TextOf(path)), std::back_inserter(stray));
    }
    EXPECT_THAT(stray, IsEmpty());
}

/// The libraries that a program is made of, each with the program's folder.
std::map<std::string, std::string> PartsOfPrograms() {
    static const std::regex library(R"re(add_library\((\w+))re");
    std::map<std::string, std::string> parts;
    for (const fs::path& list : FilesBelow(Root / "src/apps", {"CMakeLists.txt"})) {
        const std::string text = TextOf(list);
        for (std::sregex_iterator match(text.begin(), text.end(), library), end; match != end;
             ++match)
            parts[(*match)[1]] = list.parent_path().filename().string();
    }
    return parts;
}

TEST(TheHouse, LinksTheLibraryOfAProgramInFoldersNamedAfterItAlone) {
    const auto parts = PartsOfPrograms();
    EXPECT_THAT(parts, Not(IsEmpty()));
    for (const char* top : {"src", "tests", "bench", "fuzz", "examples"})
        for (const fs::path& list : FilesBelow(Root / top, {"CMakeLists.txt"}))
            for (const auto& [library, program] : parts)
                if (TextOf(list).find(library) != std::string::npos) {
                    EXPECT_EQ(list.parent_path().filename(), program)
                        << list << " links " << library;
                }
}

TEST(TheHouse, ReachesIntoNoOtherFolderOfTestsByPath) {
    for (const char* top : {"tests", "bench", "fuzz"})
        for (const fs::path& list : FilesBelow(Root / top, {"CMakeLists.txt"}))
            EXPECT_THAT(TextOf(list), Not(HasSubstr("../"))) << list;
}

} // namespace
