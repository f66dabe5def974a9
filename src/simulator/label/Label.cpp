#include "label/Label.h"

#include "label/BuiltInFonts.h"
#include "label/Pcx.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

/// How far a step to the right and a step up in the object lead on the label, for each direction.
struct Turn {
    int rightX;
    int rightY;
    int upX;
    int upY;
};

constexpr std::array<Turn, 4> Turns{{{1, 0, 0, 1}, {0, -1, 1, 0}, {-1, 0, 0, -1}, {0, 1, -1, 0}}};

} // namespace

void Label::Clear() {
    mCanvas.reset();
    mX = 0;
    mY = 0;
    mAnchor = 1;
    mDirection = 1;
    mInverse = false;
    mFont = {"SW030RSN.1", 12, 0, 100};
}

Error Label::SetFont(const FontChoice& font) {
    if (!IsBuiltInFont(font.name) && mStorage.Find("fonts:" + font.name) == nullptr)
        return Error::FontNotFound;
    mFont = font;
    return Error::None;
}

Bitmap& Label::Canvas() {
    if (!mCanvas) mCanvas.emplace(mSetup.Number("LABEL,WIDTH"), mSetup.Number("LABEL,LENGTH"));
    return *mCanvas;
}

Error Label::PrintText(std::string_view text) {
    if (IsBuiltInFont(mFont.name)) {
        PlaceText(PaintBitmapText(text, mFont, mModel.dotsPerMm));
        return Error::None;
    }
    const StoredFile* file = mStorage.Find("fonts:" + mFont.name);
    if (file == nullptr) return Error::FontNotFound;
    PlaceText(PaintScalableText(text, mFont, mModel.dotsPerMm, file->content));
    return Error::None;
}

void Label::PlaceText(const Bitmap& line) {
    // Inverse text stands on a black bar that reaches a little beyond it.
    constexpr int lineToBorder = 8;
    Place(mInverse ? line.Bordered(line.Height() / lineToBorder) : line);
}

Error Label::PrintImage(std::string_view name) {
    const StoredFile* file = mStorage.Find("images:" + std::string(name));
    if (file == nullptr) return Error::ImageNotFound;
    const auto picture = ReadPcx(file->content);
    if (!picture) return Error::NotAnImage;
    Place(*picture);
    return Error::None;
}

void Label::DrawLine(int length, int thickness) {
    Bitmap line(length, thickness);
    line.FillBox(0, 0, length, thickness);
    Place(line);
}

void Label::DrawBox(int height, int width, int thickness) {
    Bitmap box(width, height);
    if (2 * thickness >= std::min(width, height)) {
        box.FillBox(0, 0, width, height);
        return Place(box);
    }
    box.FillBox(0, 0, width, thickness);
    box.FillBox(0, height - thickness, width, thickness);
    box.FillBox(0, 0, thickness, height);
    box.FillBox(width - thickness, 0, thickness, height);
    Place(box);
}

void Label::Place(const Bitmap& object) {
    Bitmap& canvas = Canvas();
    const Turn& turn = Turns[static_cast<std::size_t>(mDirection - 1)];
    const int anchorRight = (object.Width() - 1) * ((mAnchor - 1) % 3) / 2;
    const int anchorUp = (object.Height() - 1) * ((mAnchor - 1) / 3) / 2;
    for (int row = 0; row < object.Height(); ++row) {
        const int up = object.Height() - 1 - row - anchorUp;
        for (int column = 0; column < object.Width(); ++column) {
            if (object.Get(column, row) == mInverse) continue;
            const int right = column - anchorRight;
            const int x = mX + right * turn.rightX + up * turn.upX;
            const int y = mY + right * turn.rightY + up * turn.upY;
            canvas.Set(x, canvas.Height() - 1 - y);
        }
    }
}

Bitmap Label::Feed() {
    Bitmap printed = std::move(Canvas());
    mCanvas.reset();
    return printed;
}

} // namespace qnsim
