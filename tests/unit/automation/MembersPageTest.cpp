#include "MembersPage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> LinesOf(std::istream&& in) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// The lines of one page that the other lacks, each behind a sign.
std::string Lacking(const std::vector<std::string>& page, const std::vector<std::string>& other,
                    char sign) {
    std::string text;
    for (const std::string& line : page)
        if (std::ranges::find(other, line) == other.end()) text += sign + line + '\n';
    return text;
}

TEST(MembersPage, IsWhatTheTableSays) {
    const auto page = LinesOf(std::ifstream(QN_SOURCE_DIR "/docs/members.md", std::ios::binary));
    const auto wanted = LinesOf(std::istringstream(qncomm::MembersPage()));
    EXPECT_TRUE(page == wanted) << "docs/members.md is not what the table says:\n"
                                << Lacking(page, wanted, '-') << Lacking(wanted, page, '+')
                                << "Write it anew: build/bin/members_page > docs/members.md";
}

} // namespace
