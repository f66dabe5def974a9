#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// A parameter as a header declares it.
struct DeclaredParameter {
    std::string type; ///< without const, reference and std::
    std::string name;
    std::string byDefault; ///< as written; empty when there is none
};

/// A member as a header declares it.
struct DeclaredMember {
    std::string name; ///< a setter by the property that it sets
    bool isLet = false;
    std::vector<DeclaredParameter> parameters;
};

/// The functions that the text of a class declares between two of its headings ("// -- …"). An
/// overload that follows the one before it is left out; an argument structure stands for its
/// fields.
std::vector<DeclaredMember> DeclaredMembers(std::string_view sHeader, std::string_view sFrom,
                                            std::string_view sTo);

} // namespace qncomm::testing
