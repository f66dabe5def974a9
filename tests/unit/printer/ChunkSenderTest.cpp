#include "ChunkSender.h"
#include "platform/SystemFiles.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Chunks : public ::testing::Test {
  protected:
    void SendFile(const std::string& bytes) {
        const auto file = SystemFiles().Open(mFolder.Write("f", bytes));
        mSender.SendFile(*file);
    }
    std::string Event(int progress) const {
        return "Downloading " + mFolder.File("f") + " " + std::to_string(progress);
    }

    ScratchFolder mFolder;
    std::string mSent;
    std::vector<std::size_t> mSizes;
    std::vector<std::string> mEvents;
    ChunkSender mSender{[this](std::string_view bytes) {
                            mSent += bytes;
                            mSizes.push_back(bytes.size());
                        },
                        [this](const std::string& message, std::int16_t progress) {
                            mEvents.push_back(message + " " + std::to_string(progress));
                        }};
};

TEST_F(Chunks, AreOf1024BytesWithAnEventBeforeEach) {
    const std::string bytes(1500, '\0');
    SendFile(bytes);
    EXPECT_EQ(mSent, bytes);
    EXPECT_THAT(mSizes, ElementsAre(1024U, 476U));
    EXPECT_THAT(mEvents, ElementsAre(Event(0), Event(68), Event(-1)));
}

TEST_F(Chunks, OfExactlyOnePieceAreOne) {
    SendFile(std::string(1024, 'x'));
    EXPECT_THAT(mSizes, ElementsAre(1024U));
    EXPECT_THAT(mEvents, ElementsAre(Event(0), Event(-1)));
}

TEST_F(Chunks, OfAnEmptyFileAreNone) {
    SendFile("");
    EXPECT_THAT(mSizes, IsEmpty());
    EXPECT_THAT(mEvents, ElementsAre(Event(-1)));
}

TEST_F(Chunks, OfATextAreTheSame) {
    mSender.SendText("a text", std::string(2048, 'x') + "y");
    EXPECT_THAT(mSizes, ElementsAre(1024U, 1024U, 1U));
    EXPECT_THAT(mEvents, ElementsAre("Downloading a text 0", "Downloading a text 50",
                                     "Downloading a text 100", "Downloading a text -1"));
    mSender.SendText("nothing", "");
    EXPECT_EQ(mEvents.back(), "Downloading nothing -1");
}

TEST_F(Chunks, AreAsManyBytesAsTheFileHeldWhenItWasOpened) {
    const auto file = SystemFiles().Open(mFolder.Write("f", "abc"));
    std::ofstream(mFolder.File("f"), std::ios::app) << "more";
    mSender.SendFile(*file);
    EXPECT_EQ(mSent, "abc");
}

TEST_F(Chunks, OfAFileThatShrankRaise) {
    const auto file = SystemFiles().Open(mFolder.Write("f", "abc"));
    std::filesystem::resize_file(mFolder.File("f"), 1);
    EXPECT_RAISED(mSender.SendFile(*file), 62);
}

} // namespace
} // namespace qncomm::testing
