#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qncomm {

/// The menu of the right mouse button; an item's index is what QNComm::mnuPopUp_Click takes.
struct PopUpMenu {
    /// One line of the menu.
    struct Item {
        std::int16_t index;       ///< from 1
        std::string_view caption; ///< a text that lives as long as the program
    };
    std::vector<Item> items; ///< from top to bottom
};

} // namespace qncomm
