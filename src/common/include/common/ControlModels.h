#pragma once

#include "common/Event.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

// The controls of a form as plain objects. The form sets them and a face shows them, following
// Changed; what the person does comes back through the members that speak of the person (Click,
// Pick, Type), which do nothing on a control that is disabled or hidden. Those members pass on what
// the form's handler raises. Captions may hold "&" before the letter that is the control's key.

/// What every control has.
class ControlModel {
  public:
    ControlModel(const ControlModel&) = delete;
    ControlModel& operator=(const ControlModel&) = delete;

    bool Enabled() const { return mEnabled; }
    void SetEnabled(bool bEnabled) { Store(mEnabled, bEnabled); }
    bool Visible() const { return mVisible; }
    void SetVisible(bool bVisible) { Store(mVisible, bVisible); }

    /// Something that a face shows differs now. Never raised for a value that stays the same.
    Event<> Changed;

  protected:
    ControlModel() = default;
    ~ControlModel() = default;

    bool TakesInput() const { return mEnabled && mVisible; }

    template <class T>
    bool Store(T& member, T value) {
        if (member == value) return false;
        member = std::move(value);
        Changed.Raise();
        return true;
    }

  private:
    bool mEnabled = true;
    bool mVisible = true;
};

/// A line of text that the person reads.
class LabelModel : public ControlModel {
  public:
    explicit LabelModel(std::string_view sCaption = {}) : mCaption(sCaption) {}

    const std::string& Caption() const { return mCaption; }
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

  private:
    std::string mCaption;
};

class ButtonModel : public ControlModel {
  public:
    explicit ButtonModel(std::string_view sCaption = {}) : mCaption(sCaption) {}

    const std::string& Caption() const { return mCaption; }
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

    /// The person presses the button.
    void Click();

    Event<> Clicked;

  private:
    std::string mCaption;
};

class CheckBoxModel : public ControlModel {
  public:
    explicit CheckBoxModel(std::string_view sCaption) : mCaption(sCaption) {}

    const std::string& Caption() const { return mCaption; }
    bool Checked() const { return mChecked; }
    void SetChecked(bool bChecked) { Store(mChecked, bChecked); }

    /// The person flips the box.
    void Click();

    Event<> Clicked;

  private:
    std::string mCaption;
    bool mChecked = false;
};

/// A drop-down list: entries with a text for the person and a value for the program, at most one of
/// them selected. Positions count from 0; -1 is no selection.
class ListModel : public ControlModel {
  public:
    struct Entry {
        std::string text;
        std::int32_t value = 0;
        bool operator==(const Entry&) const = default;
    };

    const std::vector<Entry>& Entries() const { return mEntries; }
    /// Replaces the entries; none is selected then.
    void SetEntries(std::vector<Entry> entries);

    std::int32_t ListIndex() const { return mListIndex; }
    /// Raises 9 for a position that is not there.
    void SetListIndex(std::int32_t lIndex);
    /// Selects the first entry of this value. False, and the selection stays, when there is none.
    bool SelectValue(std::int32_t lValue);
    bool HasSelection() const { return mListIndex >= 0; }
    /// The selected entry's value; raises 9 without a selection.
    std::int32_t SelectedValue() const;

    /// The person picks an entry, maybe the one that is selected already. Raises 9 for a position
    /// that is not there.
    void Pick(std::int32_t lIndex);

    Event<> Clicked;

  private:
    std::vector<Entry> mEntries;
    std::int32_t mListIndex = -1;
};

/// What the bytes of a text stand for, so that a face shows them rightly.
enum class TextKind {
    Host, ///< UTF-8: paths and words of this machine
    Line, ///< 8-bit text that goes to the printer as it is
};

/// One line of text that the person edits. Positions are bytes from 0.
class TextBoxModel : public ControlModel {
  public:
    const std::string& Text() const { return mText; }
    /// Puts the cursor at the start, as a box does whose text is replaced.
    void SetText(std::string_view sText);

    TextKind Kind() const { return mKind; }
    void SetKind(TextKind kind) { Store(mKind, kind); }

    std::size_t SelStart() const { return mSelStart; }
    std::size_t SelLength() const { return mSelLength; }
    /// The cursor with what is selected behind it; both are cut to the text.
    void Select(std::size_t start, std::size_t length = 0);
    /// Puts sText in place of the selection and the cursor behind it.
    void InsertAtCursor(std::string_view sText);

    /// The person's editing left this text and this cursor.
    void Type(std::string_view sText, std::size_t cursor);

  private:
    std::string mText;
    TextKind mKind = TextKind::Host;
    std::size_t mSelStart = 0;
    std::size_t mSelLength = 0;
};

/// A strip of tabs, one of them current. Positions count from 0.
class TabStripModel : public ControlModel {
  public:
    explicit TabStripModel(std::vector<std::string> captions) : mCaptions(std::move(captions)) {}

    const std::vector<std::string>& Captions() const { return mCaptions; }
    void SetCaption(std::size_t tab, std::string_view sCaption);
    std::size_t Tab() const { return mTab; }

    /// The person turns to a tab. Raises 9 for one that is not there.
    void Pick(std::size_t tab);

    /// The tab that was current before.
    Event<std::size_t> Clicked;

  private:
    std::vector<std::string> mCaptions;
    std::size_t mTab = 0;
};

class ProgressBarModel : public ControlModel {
  public:
    ProgressBarModel(std::int32_t lMin, std::int32_t lMax) : mMin(lMin), mMax(lMax), mValue(lMin) {}

    std::int32_t Min() const { return mMin; }
    std::int32_t Max() const { return mMax; }
    std::int32_t Value() const { return mValue; }

    /// Raises 5 for a value outside Min to Max; the bar then stays as it is.
    void SetValue(std::int32_t lValue);

  private:
    std::int32_t mMin;
    std::int32_t mMax;
    std::int32_t mValue;
};

} // namespace qncomm
