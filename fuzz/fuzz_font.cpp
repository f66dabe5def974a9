// Any file as a scalable font: a line of text becomes a picture of bounded size. The last bytes
// choose size, slant and width, so that a font's own places stay where they are.

#include "Choices.h"
#include "label/TextPainter.h"

#include <algorithm>
#include <string>

namespace qnsim {
namespace {

constexpr std::size_t ChoiceBytes = 4;

void Paint(const std::uint8_t* data, std::size_t size) {
    const std::size_t chosen = std::min(size, ChoiceBytes);
    qncomm::fuzz::Choices choices(data + size - chosen, chosen);
    const std::string file(data, data + size - chosen);
    FontChoice font;
    font.points = 1 + choices.Next() % 100;
    font.slant = choices.Next() % 61;
    font.width = 1 + choices.NextWord() % 400;
    constexpr int dotsPerMm = 12;
    const Bitmap line = PaintScalableText("Ag \x80\xFF", font, dotsPerMm, file);
    // Four times the size up and down, at 12 dots to the millimetre.
    qncomm::fuzz::Promise(line.Width() <= 32'000 && line.Height() <= 40 * font.points + 80);
    if (!IsScalableFont(file)) qncomm::fuzz::Promise(line.Width() == 0 || line.Height() == 0);
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qnsim::Paint(data, size);
    return 0;
}
