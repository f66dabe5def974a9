// What a host can call of a settings store. Values are texts of any bytes.

#include "Classes.h"
#include "Rows.h"

namespace qncomm {

const SurfaceClass& SettingsClass() {
    using namespace rows;
    static const SurfaceClass of{
        "RegSettings",
        {Method<&RegSettings::ReadValue>(1, "ReadValue", Needs::Nothing, Path("sSection"),
                                         Path("sKey"), In("sDefault")),
         Method<&RegSettings::WriteValue>(2, "WriteValue", Needs::Nothing, Path("sSection"),
                                          Path("sKey"), In("sValue"))}};
    return of;
}

} // namespace qncomm
