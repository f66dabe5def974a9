#pragma once

// The printer's own errors: their numbers as they appear on the line, and their texts.

#include <string_view>

namespace qnsim {

enum class Error : int {
    None = 0,
    OutOfData = 4,
    IllegalArgument = 5,
    Overflow = 6,
    OutOfMemory = 7,
    UndefinedLine = 8,
    SubscriptOutOfRange = 9,
    ArrayAgain = 10,
    DivisionByZero = 11,
    ImmediateOnly = 12,
    TypeMismatch = 13,
    StringTooLong = 15,
    NestingTooDeep = 16,
    NotProgrammable = 17,
    Syntax = 19,
    LineTooLong = 20,
    LineNumber = 21,
    ReturnWithoutGosub = 22,
    NextWithoutFor = 23,
    ForWithoutNext = 24,
    WendWithoutWhile = 25,
    WhileWithoutWend = 26,
    ResumeWithoutError = 27,
    DeviceNotFound = 1018,
    DeviceFull = 1019,
    WriteProtected = 1020,
    BadFileName = 1021,
    FileNotFound = 1022,
    FileNumberInUse = 1023,
    FileNotOpen = 1024,
    BadFileMode = 1025,
    InputPastEnd = 1026,
    TooManyFiles = 1027,
    DataTimeout = 1028,
    SetupItemUnknown = 1030,
    SetupValueBad = 1031,
    FontNotFound = 1040,
    NotAFont = 1041,
    ImageNotFound = 1042,
    NotAnImage = 1043,
    TransferFailed = 1050,
    TransferCancelled = 1051,
    EightBitsNeeded = 1052,
    LabelLost = 1098,
    PrintHead = 1099,
};

/// The text of an error, in English; empty for None.
std::string_view ErrorText(Error error);

} // namespace qnsim
