#include "Graphics.h"

#include <array>
#include <optional>

namespace qncomm::terminal {
namespace {

constexpr std::size_t LargestCode = 107;

/// What one value does: attributes to set and to clear, or a colour.
struct GraphicChange {
    enum class Kind : std::uint8_t {
        None,
        Reset,
        Attributes,
        Underline,
        Foreground,
        Background,
        OtherColour, ///< of something that is not kept; its values are passed over
    };
    Kind kind = Kind::None;
    AttributeSet set = 0;
    AttributeSet clear = 0;
    bool extended = false; ///< the colour stands in the values behind
    Colour colour{};
};
using GraphicKind = GraphicChange::Kind;

constexpr GraphicChange Attributes(AttributeSet set, AttributeSet clear) {
    return {.kind = GraphicKind::Attributes, .set = set, .clear = clear};
}

constexpr void AddColours(std::array<GraphicChange, LargestCode + 1>& table, std::size_t first,
                          std::uint8_t index, GraphicKind kind) {
    for (std::uint8_t i = 0; i < 8; ++i)
        table[first + i] = {.kind = kind,
                            .colour = Colour::Indexed(static_cast<std::uint8_t>(index + i))};
}

constexpr std::array<GraphicChange, LargestCode + 1> MakeChanges() {
    using enum Attribute;
    std::array<GraphicChange, LargestCode + 1> table{};
    table[0] = {.kind = GraphicKind::Reset};
    table[1] = Attributes(SetOf(Bold), 0);
    table[2] = Attributes(SetOf(Faint), 0);
    table[3] = Attributes(SetOf(Italic), 0);
    table[4] = {.kind = GraphicKind::Underline};
    table[5] = table[6] = Attributes(SetOf(Blink), 0);
    table[7] = Attributes(SetOf(Inverse), 0);
    table[8] = Attributes(SetOf(Conceal), 0);
    table[9] = Attributes(SetOf(Strike), 0);
    table[21] = Attributes(SetOf(DoubleUnderline), SetOf(Underline));
    table[22] = Attributes(0, SetOf(Bold, Faint));
    table[23] = Attributes(0, SetOf(Italic));
    table[24] = Attributes(0, SetOf(Underline, DoubleUnderline));
    table[25] = Attributes(0, SetOf(Blink));
    table[27] = Attributes(0, SetOf(Inverse));
    table[28] = Attributes(0, SetOf(Conceal));
    table[29] = Attributes(0, SetOf(Strike));
    AddColours(table, 30, 0, GraphicKind::Foreground);
    table[38] = {.kind = GraphicKind::Foreground, .extended = true};
    table[39] = {.kind = GraphicKind::Foreground};
    AddColours(table, 40, 0, GraphicKind::Background);
    table[48] = {.kind = GraphicKind::Background, .extended = true};
    table[49] = {.kind = GraphicKind::Background};
    table[53] = Attributes(SetOf(Overline), 0);
    table[55] = Attributes(0, SetOf(Overline));
    table[58] = {.kind = GraphicKind::OtherColour, .extended = true};
    AddColours(table, 90, 8, GraphicKind::Foreground);
    AddColours(table, 100, 8, GraphicKind::Background);
    return table;
}

constexpr std::array<GraphicChange, LargestCode + 1> Changes = MakeChanges();

/// Reads the values of one sequence from left to right.
class GraphicReader {
    using enum Attribute;

  public:
    GraphicReader(Style style, const ControlSequence& sequence)
        : mStyle(style), mSequence(sequence) {}

    Style Read() {
        if (mSequence.count == 0) return {};
        while (mAt < mSequence.count)
            TakeOne();
        return mStyle;
    }

  private:
    void TakeOne() {
        const std::size_t code = mSequence.values[mAt];
        const std::size_t groupEnd = GroupEnd();
        const GraphicChange change = code <= LargestCode ? Changes[code] : GraphicChange{};
        const std::size_t at = mAt;
        mAt = groupEnd;
        switch (change.kind) {
        case GraphicKind::None:
            break;
        case GraphicKind::Reset:
            mStyle = {};
            break;
        case GraphicKind::Attributes:
            mStyle.Change(change.set, change.clear);
            break;
        case GraphicKind::Underline:
            SetUnderline(groupEnd > at + 1 ? mSequence.values[at + 1] : 1);
            break;
        default:
            SetColour(change, at, groupEnd);
        }
    }

    /// Where the value and those joined to it end.
    std::size_t GroupEnd() const {
        std::size_t end = mAt + 1;
        while (end < mSequence.count && mSequence.Joined(end))
            ++end;
        return end;
    }

    void SetUnderline(unsigned shape) {
        mStyle.Change(0, SetOf(Underline, DoubleUnderline));
        if (shape != 0) mStyle.Set(shape == 2 ? DoubleUnderline : Underline);
    }

    void SetColour(const GraphicChange& change, std::size_t at, std::size_t groupEnd) {
        std::optional<Colour> colour = change.colour;
        if (change.extended) {
            const bool joined = groupEnd > at + 1;
            colour = joined ? JoinedColour(at + 1, groupEnd) : SeparateColour();
        }
        if (!colour) return;
        if (change.kind == GraphicKind::Foreground) mStyle.SetForeground(*colour);
        if (change.kind == GraphicKind::Background) mStyle.SetBackground(*colour);
    }

    /// 38:5:N, 38:2:R:G:B or, with the colour space named or left out, 38:2:S:R:G:B.
    std::optional<Colour> JoinedColour(std::size_t at, std::size_t end) const {
        const std::size_t given = end - at;
        if (mSequence.values[at] == 5 && given >= 2) return Index(at + 1);
        if (mSequence.values[at] == 2 && given >= 4) return Direct(given == 4 ? at + 1 : at + 2);
        return std::nullopt;
    }

    /// 38;5;N or 38;2;R;G;B: the values behind belong to it.
    std::optional<Colour> SeparateColour() {
        const std::size_t at = mAt;
        const std::uint16_t form = mSequence.Value(at);
        mAt += form == 5 ? 2 : form == 2 ? 4 : 1;
        if (form == 5) return Index(at + 1);
        if (form == 2) return Direct(at + 1);
        return std::nullopt;
    }

    std::optional<Colour> Index(std::size_t at) const {
        const std::uint16_t index = mSequence.Value(at);
        if (index > 255) return std::nullopt;
        return Colour::Indexed(static_cast<std::uint8_t>(index));
    }

    std::optional<Colour> Direct(std::size_t at) const {
        std::array<std::uint8_t, 3> parts{};
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::uint16_t value = mSequence.Value(at + i);
            if (value > 255) return std::nullopt;
            parts[i] = static_cast<std::uint8_t>(value);
        }
        return Colour::Rgb(parts[0], parts[1], parts[2]);
    }

    Style mStyle;
    const ControlSequence& mSequence;
    std::size_t mAt = 0;
};

} // namespace

Style WithGraphics(Style style, const ControlSequence& sequence) {
    return GraphicReader(style, sequence).Read();
}

} // namespace qncomm::terminal
