#include "common/modErrorHandling.h"

#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <array>
#include <limits>

namespace qncomm {
namespace {

constexpr std::int32_t FirstOwnError = 1000;

constexpr std::array<std::string_view, 25> OwnMessages = {
    /* 1000 */ "Communication or Protocol error.",
    /* 1001 */ "Invalid Baudrate property value.",
    /* 1002 */ "Invalid Parity property value.",
    /* 1003 */ "Invalid Databits property value.",
    /* 1004 */ "Invalid Stopbits property value.",
    /* 1005 */ "Invalid Flowcontrol property value.",
    /* 1006 */ "Invalid Commport.",
    /* 1007 */ "Output timeout.",
    /* 1008 */ "Input timeout.",
    /* 1009 */ "Unknown Printermodel.",
    /* 1010 */ "Missing or invalid device name.",
    /* 1011 */ "Missing or invalid filename for Upload.",
    /* 1012 */ "Missing or invalid filename for Download.",
    /* 1013 */ "Missing or invalid Image name.",
    /* 1014 */ "Invalid Comm.settings, must use 8 databits and  no Xon/Xoff for Image Load.",
    /* 1015 */ "Invalid Image Format (supports monochome PCX type 3 or 5 only).",
    /* 1016 */ "Missing or invalid Fontname.",
    /* 1017 */ "This Printer doesn't support TrueType Fonts",
    /* 1018 */ "Invalid Property Value",
    /* 1019 */ "Unable to Recognize Printer",
    /* 1020 */ "Missing or invalid Module name.",
    /* 1021 */ "Module source file is empty.",
    /* 1022 */ "Timeout during Binary Download.",
    /* 1023 */ "Timeout during Binary Upload.",
    /* 1024 */ "Comm Port Not Open.",
};

} // namespace

std::string GetErrorText(std::int32_t lNumber) {
    const std::int64_t index = std::int64_t{lNumber} - FirstOwnError;
    if (index < 0 || index >= std::ssize(OwnMessages)) return "An unknown error has occurred!";
    return std::string(OwnMessages[static_cast<std::size_t>(index)]);
}

void RaiseError(std::int32_t lNumber, std::string_view sSource) {
    std::string description =
        lNumber < FirstOwnError ? RuntimeErrorText(lNumber) : GetErrorText(lNumber);
    Pointer::Screen().Set(PointerDefault);
    throw QNError(lNumber, std::string(sSource), std::move(description));
}

void RaisePrinterError(std::int32_t lNumber, std::string_view sSource,
                       std::string_view sDescription) {
    Pointer::Screen().Set(PointerDefault);
    if (lNumber > std::numeric_limits<std::int32_t>::max() - PrinterErrorBase)
        RaiseRuntimeError(RtOverflow);
    throw QNError(PrinterErrorBase + lNumber, std::string(sSource), std::string(sDescription));
}

} // namespace qncomm
