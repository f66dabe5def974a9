#include "terminal/view/TerminalSearch.h"

#include "terminal/view/Letters.h"

namespace qncomm {
namespace {

FoundText Found(const Paragraph& paragraph, std::size_t at, std::size_t length) {
    TextPosition to = paragraph.PositionOf(at + length - 1);
    ++to.column;
    return {paragraph.PositionOf(at), to};
}

/// The first place from offset on, or the last one before it.
std::size_t FindIn(const std::string& text, const std::string& wanted, std::size_t offset,
                   SearchDirection direction) {
    if (direction == SearchDirection::Forward) return text.find(wanted, offset);
    return offset == 0 ? std::string::npos : text.rfind(wanted, offset - 1);
}

/// Goes through the paragraphs in one direction and on at the other end.
class Walk {
  public:
    Walk(const TerminalText& text, std::uint64_t line, SearchDirection direction)
        : mText(text),
          mForward(direction == SearchDirection::Forward),
          mNow(text.ParagraphAt(line)) {
        mStart = mNow.first;
    }

    const Paragraph& Now() const { return mNow; }
    /// False when every paragraph, the first one a second time, has been there.
    bool Next() {
        if (mTurned && mNow.first == mStart) return false;
        const bool atEnd = mForward ? mNow.Last() + 1 >= mText.End() : mNow.first <= mText.Begin();
        mTurned = mTurned || atEnd;
        if (mForward)
            mNow = mText.ParagraphAt(atEnd ? mText.Begin() : mNow.Last() + 1);
        else
            mNow = mText.ParagraphAt((atEnd ? mText.End() : mNow.first) - 1);
        return true;
    }

  private:
    const TerminalText& mText;
    bool mForward;
    Paragraph mNow;
    std::uint64_t mStart;
    bool mTurned = false;
};

} // namespace

std::optional<FoundText> FindText(const TerminalText& text, std::string_view sWanted,
                                  const TextPosition& from, SearchDirection direction) {
    if (sWanted.empty()) return std::nullopt;
    const bool forward = direction == SearchDirection::Forward;
    const std::string wanted = WithSmallLetters(sWanted);
    Walk walk(text, from.line, direction);
    // Forward from behind the first cell, so that the same place is not found again.
    std::size_t offset = walk.Now().OffsetOf(from) + (forward ? 1 : 0);
    do {
        const std::size_t at = FindIn(WithSmallLetters(walk.Now().text), wanted, offset, direction);
        if (at != std::string::npos) return Found(walk.Now(), at, wanted.size());
        offset = forward ? 0 : std::string::npos;
    } while (walk.Next());
    return std::nullopt;
}

} // namespace qncomm
