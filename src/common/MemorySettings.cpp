#include "common/MemorySettings.h"

namespace qncomm {

std::string MemorySettings::ReadValue(std::string_view sSection, std::string_view sKey,
                                      std::string_view sDefault) const {
    return mDocument.Value(sSection, sKey).value_or(std::string(sDefault));
}

void MemorySettings::WriteValue(std::string_view sSection, std::string_view sKey,
                                std::string_view sValue) {
    mDocument.SetValue(sSection, sKey, sValue);
}

} // namespace qncomm
