#include "automation/SurfaceClass.h"

#include "Classes.h"
#include "Records.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>
#include <array>

namespace qncomm {

std::span<const SurfaceClass* const> SurfaceClasses() {
    static const std::array classes{&ControlClass(),
                                    &LayerClass(),
                                    &LinkClass(),
                                    &RecordClass<clsPrinterDevice>(),
                                    &RecordClass<clsPrinterFile>(),
                                    &RecordClass<clsPrinterSetupItem>(),
                                    &RecordClass<clsQNModuleError>(),
                                    &RecordClass<clsLiveFact>(),
                                    &FontClass(),
                                    &SettingsClass()};
    return classes;
}

const SurfaceClass& ClassNamed(std::string_view sName) {
    const auto found = std::ranges::find_if(
        SurfaceClasses(), [&](const SurfaceClass* of) { return EqualNoCase(of->name, sName); });
    if (found == SurfaceClasses().end()) RaiseRuntimeError(RtNoSuchMember);
    return **found;
}

} // namespace qncomm
