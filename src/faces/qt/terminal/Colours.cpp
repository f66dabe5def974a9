#include "qt/Colours.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qncomm {
namespace {

struct DesktopColour {
    std::uint32_t number;
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

constexpr std::uint32_t DesktopMark = 0x80000000;

/// The desktop's colours by the number below the mark.
constexpr std::array DesktopColours{
    DesktopColour{0, QPalette::Active, QPalette::Mid},
    DesktopColour{1, QPalette::Active, QPalette::Dark},
    DesktopColour{2, QPalette::Active, QPalette::Highlight},
    DesktopColour{3, QPalette::Inactive, QPalette::Highlight},
    DesktopColour{4, QPalette::Active, QPalette::Window},
    DesktopColour{5, QPalette::Active, QPalette::Base},
    DesktopColour{6, QPalette::Active, QPalette::Shadow},
    DesktopColour{7, QPalette::Active, QPalette::WindowText},
    DesktopColour{8, QPalette::Active, QPalette::Text},
    DesktopColour{9, QPalette::Active, QPalette::HighlightedText},
    DesktopColour{10, QPalette::Active, QPalette::Mid},
    DesktopColour{11, QPalette::Inactive, QPalette::Mid},
    DesktopColour{12, QPalette::Active, QPalette::Dark},
    DesktopColour{13, QPalette::Active, QPalette::Highlight},
    DesktopColour{14, QPalette::Active, QPalette::HighlightedText},
    DesktopColour{15, QPalette::Active, QPalette::Button},
    DesktopColour{16, QPalette::Active, QPalette::Dark},
    DesktopColour{17, QPalette::Disabled, QPalette::WindowText},
    DesktopColour{18, QPalette::Active, QPalette::ButtonText},
    DesktopColour{19, QPalette::Inactive, QPalette::HighlightedText},
    DesktopColour{20, QPalette::Active, QPalette::Light},
    DesktopColour{21, QPalette::Active, QPalette::Shadow},
    DesktopColour{22, QPalette::Active, QPalette::Midlight},
    DesktopColour{23, QPalette::Active, QPalette::ToolTipText},
    DesktopColour{24, QPalette::Active, QPalette::ToolTipBase},
};

/// How bright a colour is to the eye, 0 to 1.
double LuminanceOf(const QColor& colour) {
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
           + 0.0722 * linear(colour.blueF());
}

/// 1 for the same brightness, 21 for black on white.
double ContrastOf(const QColor& one, const QColor& other) {
    const auto [dark, bright] = std::minmax({LuminanceOf(one), LuminanceOf(other)});
    return (bright + 0.05) / (dark + 0.05);
}

constexpr double LeastContrast = 2.0;

} // namespace

QColor ColourOf(std::int32_t lColor, const QPalette& palette, QPalette::ColorRole unknown) {
    const auto bits = static_cast<std::uint32_t>(lColor);
    if (lColor >= 0)
        return QColor(static_cast<int>(bits & 0xFF), static_cast<int>(bits >> 8 & 0xFF),
                      static_cast<int>(bits >> 16 & 0xFF));
    const auto known =
        std::ranges::find(DesktopColours, bits & ~DesktopMark, &DesktopColour::number);
    return known == DesktopColours.end() ? palette.color(unknown)
                                         : palette.color(known->group, known->role);
}

std::int32_t NumberOfColour(const QColor& colour) {
    return colour.blue() << 16 | colour.green() << 8 | colour.red();
}

QColor ReadableOn(const QColor& back, const QColor& text) {
    if (ContrastOf(back, text) >= LeastContrast) return text;
    return ContrastOf(back, Qt::white) >= ContrastOf(back, Qt::black) ? Qt::white : Qt::black;
}

} // namespace qncomm
