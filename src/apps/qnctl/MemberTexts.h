#pragma once

#include "Outcome.h"
#include "Output.h"

#include "automation/CallMember.h"

#include <optional>
#include <string>
#include <vector>

namespace qnctl {

// The control's members in the words of a command line.

/// A call that has been understood: the member and its arguments.
struct MemberCall {
    const qncomm::SurfaceMember* member = nullptr;
    std::vector<qncomm::Variant> arguments;
};

/// Understands a member's name and its arguments: in their order, or as "name:=value". Nothing,
/// with the outcome set, for an unknown member, for too many or too few arguments, for a character
/// that the printer's character set lacks and for a text that is no value of its parameter's type.
std::optional<MemberCall> UnderstandCall(const std::string& name,
                                         const std::vector<std::string>& texts, Outcome& outcome);

/// "Files(sDeviceName, brefresh:=False, bShowSystemFiles:=False)".
std::string SignatureOf(const qncomm::SurfaceMember& member);

/// A value as JSON, texts in UTF-8.
Json JsonOf(const qncomm::Variant& value);

/// A value as lines: a list of records as a table under its fields' names; no line for nothing.
void ShowValue(const Output& out, const qncomm::Variant& value);

/// One value in one line.
std::string LineOf(const qncomm::Variant& value);

} // namespace qnctl
