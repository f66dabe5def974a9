// Any setup file in the virtual printer: all of it is taken or nothing, and what the printer writes
// it can load. The first byte chooses the model, the first line after it changes a single item.

#include "Choices.h"
#include "Setup.h"

#include <string>

namespace qnsim {
namespace {

using qncomm::fuzz::Choices;
using qncomm::fuzz::Promise;

void Check(Choices choices) {
    const auto models = AllModels();
    const Model& model = models[choices.Next() % models.size()];
    SetupTree tree(model, Options{});
    const std::string factory = tree.Write();
    if (tree.Change(choices.TakeUntil('\n')) != Error::None) Promise(tree.Write() == factory);

    const std::string before = tree.Write();
    if (tree.Load(choices.Rest()) != Error::None) Promise(tree.Write() == before);
    const std::string after = tree.Write();
    Promise(tree.Load(after) == Error::None && tree.Write() == after);
    for (int number = 1; number <= model.uarts; ++number) {
        const Uart uart = tree.Channel(number);
        Promise(uart.baud > 0 && uart.BitsPerCharacter() >= 9 && uart.BitsPerCharacter() <= 12);
    }
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qnsim::Check({data, size});
    return 0;
}
