#pragma once

#include <QIcon>

namespace qnterm {

/// A picture of this program in the text colour of the palette, sharp at every size, light and
/// dark.
QIcon ThemedIcon(const char* sName);

} // namespace qnterm
