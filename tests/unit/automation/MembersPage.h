#pragma once

#include <string>

namespace qncomm {

/// The reference of all classes, their members, events and fields, written from the table.
std::string MembersPage();

} // namespace qncomm
