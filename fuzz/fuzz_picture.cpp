// Any file as a picture that the window shows: it is read within its bounds, whatever it says of
// its size.

#include "files/PcxImage.h"

#include "Choices.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int largestSide = 8192;
    const QByteArray bytes(static_cast<const char*>(static_cast<const void*>(data)),
                           static_cast<qsizetype>(size));
    const QImage image = qnterm::DecodePcx(bytes);
    qncomm::fuzz::Promise(image.width() <= largestSide && image.height() <= largestSide);
    if (!image.isNull()) qncomm::fuzz::Promise(image.width() > 0 && image.depth() == 1);
    return 0;
}
