#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"

#include <gtest/gtest.h>

#include <limits>

namespace qncomm {
namespace {

QNError Raised(const std::function<void()>& raise) {
    try {
        raise();
    } catch (const QNError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was raised";
    return {0, "", ""};
}

TEST(Errors, OwnMessagesReadAsStored) {
    const std::pair<int, const char*> messages[] = {
        {1000, "Communication or Protocol error."},
        {1001, "Invalid Baudrate property value."},
        {1002, "Invalid Parity property value."},
        {1003, "Invalid Databits property value."},
        {1004, "Invalid Stopbits property value."},
        {1005, "Invalid Flowcontrol property value."},
        {1006, "Invalid Commport."},
        {1007, "Output timeout."},
        {1008, "Input timeout."},
        {1009, "Unknown Printermodel."},
        {1010, "Missing or invalid device name."},
        {1011, "Missing or invalid filename for Upload."},
        {1012, "Missing or invalid filename for Download."},
        {1013, "Missing or invalid Image name."},
        {1014, "Invalid Comm.settings, must use 8 databits and  no Xon/Xoff for Image Load."},
        {1015, "Invalid Image Format (supports monochome PCX type 3 or 5 only)."},
        {1016, "Missing or invalid Fontname."},
        {1017, "This Printer doesn't support TrueType Fonts"},
        {1018, "Invalid Property Value"},
        {1019, "Unable to Recognize Printer"},
        {1020, "Missing or invalid Module name."},
        {1021, "Module source file is empty."},
        {1022, "Timeout during Binary Download."},
        {1023, "Timeout during Binary Upload."},
        {1024, "Comm Port Not Open."},
    };
    for (const auto& [number, text] : messages)
        EXPECT_EQ(GetErrorText(number), text) << number;
}

TEST(Errors, NumbersOutsideTheTableHaveTheUnknownText) {
    for (const int number : {0, 62, 999, 1025, 1030, -1, std::numeric_limits<int>::min()})
        EXPECT_EQ(GetErrorText(number), "An unknown error has occurred!") << number;
}

TEST(Errors, OwnErrorCarriesNumberSourceAndMessage) {
    const QNError error = Raised([] { RaiseError(1003, "DataLink:Let Databits"); });
    EXPECT_EQ(error.Number(), 1003);
    EXPECT_EQ(error.Source(), "DataLink:Let Databits");
    EXPECT_EQ(error.Description(), "Invalid Databits property value.");
    EXPECT_STREQ(error.what(), "Invalid Databits property value.");
}

TEST(Errors, NumbersBelow1000CarryTheRuntimesDescription) {
    EXPECT_EQ(Raised([] { RaiseError(62, "here"); }).Description(), "Input past end of file");
    EXPECT_EQ(Raised([] { RaiseError(999, "here"); }).Description(),
              "Application-defined or object-defined error");
}

TEST(Errors, OwnErrorWithoutEntryKeepsItsNumber) {
    const QNError error = Raised([] { RaiseError(1030, "here"); });
    EXPECT_EQ(error.Number(), 1030);
    EXPECT_EQ(error.Description(), "An unknown error has occurred!");
}

TEST(Errors, RuntimeDescriptionsExistForEveryNumberTheSystemRaises) {
    for (const int number :
         {5, 6, 7, 9, 11, 13, 52, 53, 54, 55, 57, 58, 61, 62, 67, 68, 70, 71, 75, 76, 91, 440, 457})
        EXPECT_NE(RuntimeErrorText(number), RuntimeErrorText(-1)) << number;
}

TEST(Errors, RuntimeDescriptionsExistForWhatAHostMayRaiseInAHandler) {
    for (const int number :
         {20, 35, 47, 48, 49, 92, 93, 97, 298, 321, 380, 381, 424, 429, 448, 481})
        EXPECT_NE(RuntimeErrorText(number), RuntimeErrorText(-1)) << number;
    EXPECT_EQ(RuntimeErrorText(380), "Invalid property value");
    EXPECT_EQ(RuntimeErrorText(424), "Object required");
}

TEST(Errors, PrinterErrorsLieAbove60000) {
    const QNError error =
        Raised([] { RaisePrinterError(1022, "clsDatalink:GetPrinterError", "as it is "); });
    EXPECT_EQ(error.Number(), 61022);
    EXPECT_EQ(error.Source(), "clsDatalink:GetPrinterError");
    EXPECT_EQ(error.Description(), "as it is ");
}

TEST(Errors, PrinterErrorBeyond32BitsOverflows) {
    const int largest = std::numeric_limits<int>::max() - 60000;
    EXPECT_EQ(Raised([&] { RaisePrinterError(largest, "s", "d"); }).Number(),
              std::numeric_limits<int>::max());
    EXPECT_EQ(Raised([&] { RaisePrinterError(largest + 1, "s", "d"); }).Number(), 6);
}

TEST(Errors, RaisingSetsThePointerBack) {
    for (const auto& raise : {std::function<void()>([] { RaiseError(1000, "s"); }),
                              std::function<void()>([] { RaiseError(62, "s"); }),
                              std::function<void()>([] { RaisePrinterError(5, "s", "d"); })}) {
        Pointer::Screen().Set(PointerHourglass);
        Raised(raise);
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
    }
}

TEST(Errors, RuntimeErrorsLeaveThePointer) {
    const BusyPointer busy;
    Raised([] { RaiseRuntimeError(RtInvalidCall); });
    EXPECT_EQ(Pointer::Screen().Shape(), PointerHourglass);
}

TEST(BusyPointer, ShowsTheHourglassAndPutsTheFormerShapeBack) {
    Pointer::Screen().Set(3);
    std::vector<int> shapes;
    const Subscription follow =
        Pointer::Screen().Changed.Connect([&](std::int16_t shape) { shapes.push_back(shape); });
    { const BusyPointer busy; }
    EXPECT_EQ(shapes, (std::vector{11, 3}));
    Pointer::Screen().Set(PointerDefault);
}

} // namespace
} // namespace qncomm
