#pragma once

#include "automation/SurfaceMembers.h"
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

    /// The argument as what a member of QNComm takes.
    template <class T>
    T As(std::size_t at) const;

    const Variant& At(std::size_t at) const { return mValues[at]; }
    /// The member used this value.
    void Use(std::size_t at, Variant value) { mValues[at] = std::move(value); }
    /// What is written back.
    Variant::Record WrittenBack(const SurfaceMember& member) const;

  private:
    const std::string& Text(std::size_t at) const {
        return std::get<VariantText>(mValues[at].value).text;
    }

    std::vector<Variant> mValues;
};

template <>
inline bool MemberArguments::As(std::size_t at) const {
    return std::get<bool>(mValues[at].value);
}
template <>
inline std::int32_t MemberArguments::As(std::size_t at) const {
    return std::get<std::int32_t>(mValues[at].value);
}
template <>
inline std::int16_t MemberArguments::As(std::size_t at) const {
    return static_cast<std::int16_t>(As<std::int32_t>(at));
}
template <>
inline std::string MemberArguments::As(std::size_t at) const {
    return Text(at);
}
template <>
inline std::string_view MemberArguments::As(std::size_t at) const {
    return Text(at);
}
template <>
Collection<std::string> MemberArguments::As(std::size_t at) const;
template <>
TerminalFont MemberArguments::As(std::size_t at) const;
template <>
std::shared_ptr<RegSettings> MemberArguments::As(std::size_t at) const;

} // namespace qncomm
