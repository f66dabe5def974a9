#pragma once

#include <QString>

#include <cstdint>

namespace qnterm {

/// A size for the user, such as "512 bytes" or "8.2 MB", in the style of the locale.
QString SizeText(std::int64_t lBytes);

} // namespace qnterm
