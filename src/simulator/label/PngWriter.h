#pragma once

// Writes a label as a PNG.

#include "label/Bitmap.h"

#include <optional>
#include <string>

namespace qnsim {

/// Writes the picture (1 bit per dot, black as burnt, with its resolution) to a
/// file. False when that was not possible; what stood there before then stays.
bool WritePng(const Bitmap& picture, int dotsPerMm, const std::string& path);

/// The folder's labels in the order they are printed: label-0001.png and so on, after the last one
/// that is there.
class LabelFolder {
  public:
    explicit LabelFolder(std::string folder);

    /// Makes the folder when it is missing; false when that is not possible or it cannot be
    /// written.
    bool IsUsable() const { return mUsable; }
    bool Add(const Bitmap& picture, int dotsPerMm);

  private:
    std::string mFolder;
    bool mUsable = false;
    int mLast = 0;
};

} // namespace qnsim
