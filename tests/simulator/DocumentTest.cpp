// docs/virtual-printer.md says what the printer understands; here it is held to that.
#include "Errors.h"
#include "language/Words.h"
#include "simulator/Options.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <utility>

namespace qncomm::testing {

using namespace qnsim;
namespace {

std::string Document() {
    std::ifstream file(PRINTER_DOCUMENT);
    EXPECT_TRUE(file.is_open()) << PRINTER_DOCUMENT;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The document's words, without the signs around them.
std::set<std::string> Words(const std::string& document) {
    const std::regex word(R"([A-Za-z]+\$?)");
    return {std::sregex_token_iterator(document.begin(), document.end(), word),
            std::sregex_token_iterator()};
}

TEST(PrinterDocument, ListsEveryErrorWithItsText) {
    const std::string document = Document();
    const std::regex row(R"(\n\| (\d+) \| ([^|\n]+) \|(?=\n))");
    int listed = 0;
    for (std::sregex_iterator found(document.begin(), document.end(), row), end; found != end;
         ++found) {
        const auto error = static_cast<Error>(std::stoi((*found)[1]));
        EXPECT_EQ((*found)[2].str(), ErrorText(error)) << (*found)[1];
        ++listed;
    }
    int known = 0;
    for (int number = 1; number < 2000; ++number)
        known += ErrorText(static_cast<Error>(number)).empty() ? 0 : 1;
    EXPECT_EQ(listed, known);
}

TEST(PrinterDocument, ListsEveryOptionWithItsFlagAndNoOther) {
    const std::string document = Document();
    const std::regex row(R"(\n\| ([a-z-]+) \(`(--[a-z-]+)`\) \|)");
    std::set<std::pair<std::string, std::string>> listed;
    for (std::sregex_iterator found(document.begin(), document.end(), row), end; found != end;
         ++found)
        listed.emplace((*found)[1], (*found)[2]);
    std::set<std::pair<std::string, std::string>> known;
    for (const OptionText& option : AllOptions()) {
        if (option.name != "model") known.emplace(option.name, option.flag);
    }
    EXPECT_EQ(listed, known);
}

TEST(PrinterDocument, NamesEveryStatementAndFunction) {
    const std::string document = Document();
    for (const StatementRow& row : AllStatements()) {
        const std::string name(row.words);
        EXPECT_NE(document.find("`" + name), std::string::npos) << name;
    }
    const std::set<std::string> words = Words(document);
    for (const FunctionRow& row : AllFunctions()) {
        const std::string name(row.name);
        EXPECT_EQ(words.count(name), 1U) << name;
    }
}

} // namespace
} // namespace qncomm::testing
