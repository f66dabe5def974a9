#include "automation/SurfaceMember.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

/// The word for a value of an enumeration whose words stand in its order.
template <std::size_t Count, class Enum>
std::string_view Word(const std::array<std::string_view, Count>& words, Enum value) {
    return words.at(static_cast<std::size_t>(value));
}

} // namespace

std::size_t SurfaceMember::LeastArguments() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(parameters, [](const MemberParameter& parameter) {
            return !parameter.byDefault.has_value();
        }));
}

std::string_view WordFor(MemberKind kind) {
    static constexpr std::array<std::string_view, 3> words{"method", "get", "let"};
    return Word(words, kind);
}

std::string_view WordFor(MemberType type) {
    static constexpr std::array<std::string_view, 12> words{
        "",     "boolean", "integer", "long", "single", "printer text",
        "text", "key",     "names",   "font", "object", "records"};
    return Word(words, type);
}

std::string_view WordFor(MemberNeeds needs) {
    static constexpr std::array<std::string_view, 5> words{"nothing", "printer", "fresh claim",
                                                           "open port", "free port"};
    return Word(words, needs);
}

} // namespace qncomm
