#pragma once

#include <map>
#include <string>
#include <vector>

namespace qncomm::bindings {

/// The lines of the comments of a header, by the names of the functions that they stand above; of
/// several with one name, those of the first.
using HeaderComments = std::map<std::string, std::vector<std::string>, std::less<>>;

/// Reads them from the text of a header: lines that begin with "///", without that and its blank.
HeaderComments CommentsOf(const std::string& header);

} // namespace qncomm::bindings
