#pragma once

#include "platform/IoResult.h"

#include <string>

namespace qncomm {

/// The system's own text for an error number (errno), without a capital, as the middle of a
/// sentence.
std::string SystemText(int error);

/// What an error number (errno) means while something is being opened.
IoResult OpenFailure(int error);

/// What an error number (errno) means for the file at sPath, with the path in the text.
IoResult FileFailure(int error, const std::string& sPath);

/// What an error number (errno; 0: the other side ended it) means on an open line: always that it
/// is lost. The text is sLost, with the system's text in brackets.
IoResult LineFailure(int error, const std::string& sLost);

} // namespace qncomm
