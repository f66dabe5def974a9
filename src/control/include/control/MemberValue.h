#pragma once

#include "common/ControlModels.h"
#include "common/RegSettings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace qncomm {

/// A text with what its bytes stand for.
struct MemberText {
    std::string text;
    TextKind kind = TextKind::Host;
    bool operator==(const MemberText&) const = default;
};

/// What goes into a member of the control and what comes out, for hosts that find the member by its
/// name. Nothing stands for a result that there is not, and for an argument that is left out.
struct MemberValue {
    using Nothing = std::monostate;
    using List = std::vector<MemberValue>;
    /// Fields in their order, each with its name.
    using Record = std::vector<std::pair<std::string, MemberValue>>;
    using Value = std::variant<Nothing, bool, std::int32_t, double, MemberText,
                               std::shared_ptr<RegSettings>, List, Record>;

    MemberValue() = default;
    /// A plain text is one of this machine.
    MemberValue(const char* sText) : value(MemberText{sText, TextKind::Host}) {}
    MemberValue(std::string sText, TextKind kind = TextKind::Host)
        : value(MemberText{std::move(sText), kind}) {}
    MemberValue(bool bValue) : value(bValue) {}
    MemberValue(std::int16_t iValue) : value(std::int32_t{iValue}) {}
    MemberValue(std::int32_t lValue) : value(lValue) {}
    MemberValue(double dValue) : value(dValue) {}
    MemberValue(std::shared_ptr<RegSettings> settings) : value(std::move(settings)) {}
    MemberValue(List list) : value(std::move(list)) {}
    MemberValue(Record record) : value(std::move(record)) {}

    bool IsNothing() const { return std::holds_alternative<Nothing>(value); }
    bool operator==(const MemberValue& other) const;

    Value value;
};

inline bool MemberValue::operator==(const MemberValue& other) const {
    return value == other.value;
}

} // namespace qncomm
