// The stores that a host makes.

#include "HostServices.h"
#include "Values.h"
#include "common/MemorySettings.h"
#include "platform/FileSettings.h"

#include <memory>
#include <utility>

namespace {

using namespace qncomm;

template <class Make>
qn_settings* Made(Make make) {
    try {
        return new qn_settings{make()};
    } catch (...) {
        return nullptr;
    }
}

} // namespace

qn_settings* qn_settings_memory(void) {
    return Made([] { return std::make_shared<MemorySettings>(); });
}

qn_settings* qn_settings_file(const char* path) {
    return Made([=] {
        return std::make_shared<FileSettings>(path != nullptr ? std::string(path)
                                                              : FileSettings::DefaultPath());
    });
}

qn_settings* qn_settings_host(const qn_store_functions* functions, void* user) {
    if (functions == nullptr || functions->read == nullptr || functions->write == nullptr)
        return nullptr;
    return Made([=] { return std::make_shared<bindings::HostSettings>(*functions, user); });
}

qn_settings* qn_settings_keep(const qn_settings* settings) {
    if (settings == nullptr) return nullptr;
    return Made([=] { return settings->store; });
}

void qn_settings_free(qn_settings* settings) {
    delete settings;
}
