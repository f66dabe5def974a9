#pragma once

#include "TypedFunctions.h"

#include <string>

namespace qncomm::bindings {

/// The module qncomm._members: the records, and a class with all members for each class of the
/// table, with their types and comments.
std::string MembersModule(const CommentsOfClass& comments);

/// A name of the system as Python writes it: "UploadQNProgram" is upload_qn_program.
std::string SnakeName(std::string_view name);

} // namespace qncomm::bindings
