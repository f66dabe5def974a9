#include "GivenSettings.h"

#include "serial/LineSettings.h"

#include <CLI/CLI.hpp>

namespace qnctl {

void DeclareGivenSettings(CLI::App& app, std::string& given) {
    app.add_option("--as", given,
                   "Rate, parity, data bits and stop bits, such as 9600,n,8,2, instead of the "
                   "configured ones")
        ->type_name("SETTINGS");
}

Outcome UseGivenSettings(qncomm::clsDataLink& link, const std::string& given) {
    if (given.empty()) return {};
    const auto settings = qncomm::ParseLineSettings(given);
    if (!settings)
        return Refused(ExitStatus::Usage, "--as " + given
                                              + ": write rate, parity, data bits and stop bits, "
                                                "such as 9600,n,8,2.");
    link.SetBaudrate(std::to_string(settings->baud));
    link.SetParity(std::string(1, settings->parity));
    link.SetDatabits(std::to_string(settings->dataBits));
    link.SetStopbits(std::to_string(settings->stopBits));
    return {};
}

} // namespace qnctl
