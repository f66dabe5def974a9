// What SECURITY.md says of limits is what the sources hold to.

#include "Limits.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace {

namespace fs = std::filesystem;

using qncomm::testing::DefinitionsOf;
using qncomm::testing::StatedLimit;
using qncomm::testing::StatedLimits;
using testing::ElementsAre;
using testing::IsEmpty;

const fs::path Tree = QN_SOURCE_DIR;

std::string ContentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(StatedLimitsTest, AreReadFromTheTable) {
    const auto limits =
        StatedLimits("# X\n| a | 9 | `No` |\n\n## Limits\n\n| what | at most | in |\n"
                     "|---|---|---|\n| lines | 1,048,576 | `Lines` |\n"
                     "| talk | 15 s and 256 KiB | `TalkUs`, `Talk` |\n"
                     "| nameless | 3 bytes | |\n\n## More\n| b | 9 | `No` |\n");
    ASSERT_EQ(limits.size(), 4U);
    EXPECT_EQ(limits[0].name, "Lines");
    EXPECT_EQ(limits[0].amount, 1'048'576U);
    EXPECT_EQ(limits[1].amount, 15'000'000U);
    EXPECT_EQ(limits[2].amount, 256U * 1024);
    EXPECT_EQ(limits[3].name, "");
}

TEST(StatedLimitsTest, AreKnownInTheSourcesHoweverTheyAreWritten) {
    for (const char* written :
         {"16UL * 1024", "std::size_t{16} * 1024", "std::size_t{1} << 14", "16'384", "1U << 14U"})
        EXPECT_THAT(DefinitionsOf("Most", "inline constexpr std::size_t Most = "
                                              + std::string(written) + "; // x"),
                    ElementsAre(16384U))
            << written;
    EXPECT_THAT(DefinitionsOf("Most", "constexpr int MostOf = 1; f(Most);"), IsEmpty());
    EXPECT_THAT(DefinitionsOf("Most", "constexpr int Most = 1 + 1;"), ElementsAre(std::nullopt));
}

TEST(TheHouse, KeepsTheLimitsThatItStates) {
    std::vector<std::string> sources;
    for (const auto& entry : fs::recursive_directory_iterator(Tree / "src"))
        if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
            sources.push_back(ContentOf(entry.path()));
    const auto limits = StatedLimits(ContentOf(Tree / "SECURITY.md"));
    EXPECT_GT(limits.size(), 20U);
    for (const StatedLimit& limit : limits) {
        ASSERT_NE(limit.name, "") << "a limit of " << limit.amount << " has no name";
        std::vector<std::optional<std::uint64_t>> found;
        for (const std::string& source : sources)
            std::ranges::copy(DefinitionsOf(limit.name, source), std::back_inserter(found));
        EXPECT_THAT(found, ElementsAre(limit.amount)) << limit.name;
    }
}

} // namespace
