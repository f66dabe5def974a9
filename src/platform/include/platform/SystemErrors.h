#pragma once

#include "platform/IoResult.h"

#include <string>

namespace qncomm {

/// The system's own text for an error number, in small letters as the middle of a sentence.
std::string SystemText(int error);

/// What an error number means while something is being opened.
IoResult OpenFailure(int error);

/// What an error number means for the file at sPath, with the path in the text.
IoResult FileFailure(int error, const std::string& sPath);

/// What an error number means on an open line: everything is the end of it.
IoResult LineFailure(int error, const std::string& sLost);

} // namespace qncomm
