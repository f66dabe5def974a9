#pragma once

// The label that statements draw on: a position, an anchor, a direction, a font, and dots.

#include "Errors.h"
#include "Setup.h"
#include "Storage.h"
#include "label/Bitmap.h"
#include "label/TextPainter.h"

#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

/// Positions are dots from the label's lower left corner, upwards and to the right. An anchor is
/// the place of an object that lies on the position, as on a numeric keypad: 1 its lower left
/// corner, 9 its upper right one. A direction turns the object clockwise around its anchor in
/// quarters: 1 not at all, 2 a quarter, 3 a half, 4 three.
class Label {
  public:
    Label(const Model& model, const SetupTree& setup, Storage& storage)
        : mModel(model), mSetup(setup), mStorage(storage) {}

    /// Takes everything off the label and puts position, anchor, direction, font and mode back to
    /// the beginning.
    void Clear();

    void MoveTo(int x, int y) {
        mX = x;
        mY = y;
    }
    void SetAnchor(int anchor) { mAnchor = anchor; }
    void SetDirection(int direction) { mDirection = direction; }
    void SetInverse(bool inverse) { mInverse = inverse; }
    Error SetFont(const FontChoice& font);

    Error PrintText(std::string_view text);
    Error PrintImage(std::string_view name);
    void DrawLine(int length, int thickness);
    void DrawBox(int height, int width, int thickness);

    /// The label as it would be burnt, and an empty one in its place.
    Bitmap Feed();

  private:
    Bitmap& Canvas();
    void PlaceText(const Bitmap& line);
    void Place(const Bitmap& object);

    const Model& mModel;
    const SetupTree& mSetup;
    Storage& mStorage;
    std::optional<Bitmap>
        mCanvas; ///< made when the first thing is drawn, as large as the setup says then
    int mX = 0;
    int mY = 0;
    int mAnchor = 1;
    int mDirection = 1;
    bool mInverse = false;
    FontChoice mFont{"SW030RSN.1", 12, 0, 100};
};

} // namespace qnsim
