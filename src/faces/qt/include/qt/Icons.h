#pragma once

#include <QIcon>
#include <QPalette>
#include <QString>

namespace qncomm {

/// A picture drawn in one colour, by its name in any case: a toolbar button's key, "Copy", "Paste"
/// or "Close". It is drawn anew for each size and pixel ratio in the palette's colour for role, and
/// is to be asked for again when the palette changes. Null for a name without a picture.
QIcon LineIcon(const QString& sName, const QPalette& palette,
               QPalette::ColorRole role = QPalette::ButtonText);

/// The picture of the system itself, for windows and menus.
QIcon ProductIcon();

} // namespace qncomm
