#pragma once

#include "control/PropertyBag.h"
#include "control/TerminalFont.h"

#include <QVariant>

namespace qncomm {

/// A property bag with the toolkit's values: fonts as QFont, texts as QString.
class QtPropertyBag : public MemoryPropertyBag {
  public:
    /// The stored value, or the fallback when there is none.
    QVariant Value(std::string_view sName, const Variant& fallback) const;
    /// Stores a value under a name, in place of the former one.
    void SetValue(std::string_view sName, const Variant& value);
};

/// A value of a bag as the toolkit has it, and back. Numbers become 32-bit ones.
QVariant QVariantOf(const Variant& value);
/// A font of a bag as the toolkit has it.
QFont FontOf(const TerminalFont& font);
/// A font of the toolkit as a bag keeps it: its family and its size in points.
TerminalFont TerminalFontOf(const QFont& font);

} // namespace qncomm
