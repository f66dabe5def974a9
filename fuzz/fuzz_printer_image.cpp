// The virtual printer's reader of PCX pictures, as any file may be.

#include "label/Pcx.h"

#include <cstdlib>

namespace qnsim {
namespace {

void Read(std::string_view file) {
    constexpr int largestSide = 8192;
    const auto picture = ReadPcx(file);
    if (!picture) return;
    if (picture->Width() < 1 || picture->Width() > largestSide) std::abort();
    if (picture->Height() < 1 || picture->Height() > largestSide) std::abort();
    if (picture->Get(picture->Width(), 0) || picture->Get(0, picture->Height())) std::abort();
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    qnsim::Read({static_cast<const char*>(static_cast<const void*>(data)), size});
    return 0;
}
