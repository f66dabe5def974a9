#pragma once

#include "HeaderComments.h"
#include "MemberNames.h"

#include <functional>
#include <string>

namespace qncomm::bindings {

/// The comments of a class's header.
using CommentsOfClass = std::function<HeaderComments(const CallableClass&)>;

/// The header qncomm/members.h: numbers and typed functions of all members, with their comments.
std::string MembersHeader(const CommentsOfClass& comments);

/// What implements it.
std::string MembersSource();

} // namespace qncomm::bindings
