#include "printer/ModuleReply.h"
#include "testing/core/ExpectRaised.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

std::string Error(std::string_view line) {
    const auto error = ParseModuleError(line);
    if (!error) return "none";
    return std::to_string(error->QNErrCode) + "@" + std::to_string(error->QNErrInLine) + " "
           + error->QNErrDesc;
}

TEST(ModuleReply, HasCodeLineAndDescription) {
    EXPECT_EQ(Error("Error 19 in line 12: Syntax error "), "19@12 Syntax error");
    EXPECT_EQ(Error("?  Error 19in line12:Syntax: error"), "19@12 Syntax: error");
    EXPECT_EQ(Error("Error 19 : in line 12: x"), "19@12 x");
}

TEST(ModuleReply, WithoutAPartThatTellsTheLineIsDropped) {
    for (const char* line :
         {"", "Ok", "Error 19: Syntax error", "error 19 in line 12: x", "Error 0 in line 12: x",
          "Error in line 12: x", "Error 19 in line 0: x", "Error 19 in line x: x",
          "Error 19 in line 12", "in line 12: Error 19", "Error"})
        EXPECT_EQ(Error(line), "none") << line;
}

TEST(ModuleReply, RaisesForANumberThatIsTooLarge) {
    EXPECT_RAISED(ParseModuleError("Error 99999999999 in line 1: x"), 6);
    EXPECT_RAISED(ParseModuleError("Error 1 in line 99999999999: x"), 6);
}

} // namespace
} // namespace qncomm::testing
