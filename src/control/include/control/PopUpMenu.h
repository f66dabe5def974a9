#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qncomm {

/// The menu of the right mouse button; an item's index is what QNComm::mnuPopUp_Click takes.
struct PopUpMenu {
    struct Item {
        std::int16_t index;
        std::string_view caption;
    };
    std::vector<Item> items;
};

} // namespace qncomm
