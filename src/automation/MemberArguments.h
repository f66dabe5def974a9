#pragma once

#include "automation/SurfaceMember.h"
#include "common/Collection.h"
#include "control/TerminalFont.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// The arguments of one call, each of the type that its parameter has. Positions count from 0.
class MemberArguments {
  public:
    /// Converts what is given and fills in what is left out; raises as CallMember.
    MemberArguments(const SurfaceMember& member, const std::vector<Variant>& given);

    const Variant& At(std::size_t at) const { return mValues[at]; }
    /// The member gave this value back.
    void GiveBack(std::size_t at, Variant value) { mValues[at] = std::move(value); }
    /// What is written back.
    Variant::Record WrittenBack(const SurfaceMember& member) const;

  private:
    std::vector<Variant> mValues;
};

/// The value as one of this type. Raises 13 or 6 for what is none; the parameter's name is not in
/// the description.
Variant ConvertedTo(MemberType type, const Variant& given);

} // namespace qncomm
