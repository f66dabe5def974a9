#include "Errors.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qnsim {
namespace {

constexpr std::array<std::pair<Error, std::string_view>, 44> ErrorTexts{{
    {Error::OutOfData, "Out of data"},
    {Error::IllegalArgument, "Illegal argument"},
    {Error::Overflow, "Overflow"},
    {Error::OutOfMemory, "Out of memory"},
    {Error::UndefinedLine, "Undefined line number"},
    {Error::SubscriptOutOfRange, "Subscript out of range"},
    {Error::ArrayAgain, "Array already dimensioned"},
    {Error::DivisionByZero, "Division by zero"},
    {Error::ImmediateOnly, "Not allowed in a program"},
    {Error::TypeMismatch, "Type mismatch"},
    {Error::StringTooLong, "String too long"},
    {Error::NestingTooDeep, "Nesting too deep"},
    {Error::NotProgrammable, "Printer is not programmable"},
    {Error::Syntax, "Syntax error"},
    {Error::LineTooLong, "Line too long"},
    {Error::LineNumber, "Line number out of range"},
    {Error::ReturnWithoutGosub, "RETURN without GOSUB"},
    {Error::NextWithoutFor, "NEXT without FOR"},
    {Error::ForWithoutNext, "FOR without NEXT"},
    {Error::WendWithoutWhile, "WEND without WHILE"},
    {Error::WhileWithoutWend, "WHILE without WEND"},
    {Error::ResumeWithoutError, "RESUME without error"},
    {Error::DeviceNotFound, "Device not found"},
    {Error::DeviceFull, "Device full"},
    {Error::WriteProtected, "Device is write protected"},
    {Error::BadFileName, "Bad file name"},
    {Error::FileNotFound, "File not found"},
    {Error::FileNumberInUse, "File number in use"},
    {Error::FileNotOpen, "File not open"},
    {Error::BadFileMode, "Bad file mode"},
    {Error::InputPastEnd, "Input past end"},
    {Error::TooManyFiles, "Too many files"},
    {Error::DataTimeout, "Time-out while receiving data"},
    {Error::SetupItemUnknown, "Unknown setup item"},
    {Error::SetupValueBad, "Bad setup value"},
    {Error::FontNotFound, "Font not found"},
    {Error::NotAFont, "Not a font"},
    {Error::ImageNotFound, "Image not found"},
    {Error::NotAnImage, "Not an image"},
    {Error::TransferFailed, "File transfer failed"},
    {Error::TransferCancelled, "File transfer cancelled"},
    {Error::EightBitsNeeded, "Line carries seven bits only"},
    {Error::LabelLost, "Label could not be delivered"},
    {Error::PrintHead, "Print head fault"},
}};

} // namespace

std::string_view ErrorText(Error error) {
    const auto* found = std::find_if(ErrorTexts.begin(), ErrorTexts.end(),
                                     [error](const auto& entry) { return entry.first == error; });
    return found == ErrorTexts.end() ? std::string_view() : found->second;
}

} // namespace qnsim
