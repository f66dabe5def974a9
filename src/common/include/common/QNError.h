#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace qncomm {

/// The one error that crosses every boundary of the system: a number, the source that names class
/// and operation, and a description for the user.
///
/// Numbers below 1000 are the runtime's own (RuntimeErrors.h), 1000 to 1024 the system's
/// (modErrorHandling.h), 8000 to 8999 the serial control's, and 60000 + n is error n that the
/// printer reported.
class QNError : public std::exception {
  public:
    /// An error of these three parts, as they stand.
    QNError(std::int32_t lNumber, std::string sSource, std::string sDescription);

    /// The error's number.
    std::int32_t Number() const noexcept { return mNumber; }
    /// The class and operation that raised it, such as "clsDataLink,Upload".
    const std::string& Source() const noexcept { return mSource; }
    /// What the user is told.
    const std::string& Description() const noexcept { return mDescription; }

    /// The description, so that a handler of std::exception shows something useful.
    const char* what() const noexcept override { return mDescription.c_str(); }

  private:
    std::int32_t mNumber;
    std::string mSource;
    std::string mDescription;
};

/// Thrown by a host's message loop out of a wait when the user ends the program. It is no
/// QNError: nothing in the system traps it, so it unwinds to the host while every claim, sink and
/// setting on the way is put back.
class OperationCancelled : public std::exception {
  public:
    /// "Operation cancelled."
    const char* what() const noexcept override { return "Operation cancelled."; }
};

} // namespace qncomm
