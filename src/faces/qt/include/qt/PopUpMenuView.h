#pragma once

#include "control/PopUpMenu.h"

#include <QMenu>

#include <functional>

namespace qncomm {

/// Shows the menu at a place of the screen and returns at once; it goes when it closes. picked gets
/// the index of the item that the user picks, as long as parent lives, and must not raise.
QMenu* ShowMenu(const PopUpMenu& menu, QWidget& parent, const QPoint& place,
                const std::function<void(std::int16_t)>& picked);

} // namespace qncomm
