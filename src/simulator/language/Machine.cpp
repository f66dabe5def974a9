#include "language/Machine.h"

namespace qnsim {
namespace {

const Model& ModelOf(const Options& options) {
    const Model* model = FindModel(options.model);
    return model != nullptr ? *model : AllModels().front();
}

} // namespace

Machine::Machine(const Options& options)
    : model(ModelOf(options)),
      version(options.version.empty() ? std::string(model.version) : options.version),
      wiredUart(options.uart),
      setup(model, options),
      storage(model, options.capacity),
      label(model, setup, storage),
      power(options.moods) {
    if (!options.labelsDir.empty()) labels.emplace(options.labelsDir);
}

} // namespace qnsim
