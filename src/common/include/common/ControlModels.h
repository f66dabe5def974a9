#pragma once

#include "common/Event.h"
#include "common/TextKind.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

/// What every control of a form has. A control is a plain object: the form sets it, and a face
/// shows it and follows Changed. What the user does comes back through the members that speak of
/// the user (Click, Pick, Type). They do nothing on a control that is disabled or hidden, and
/// pass on what the form's handler raises. A caption may hold "&" before the letter that is the
/// control's key.
class ControlModel {
  public:
    ControlModel(const ControlModel&) = delete;
    ControlModel& operator=(const ControlModel&) = delete;

    /// Whether the user may use it; true at first.
    bool Enabled() const { return mEnabled; }
    /// Lets the user use it, or not.
    void SetEnabled(bool bEnabled) { Store(mEnabled, bEnabled); }
    /// Whether it is shown; true at first.
    bool Visible() const { return mVisible; }
    /// Shows or hides it.
    void SetVisible(bool bVisible) { Store(mVisible, bVisible); }

    /// Something that a face shows differs now. Never raised for a value that stays the same.
    Event<> Changed;

  protected:
    ControlModel() = default;
    ~ControlModel() = default;

    /// Whether what the user does counts: enabled and visible.
    bool TakesInput() const { return mEnabled && mVisible; }

    /// Gives one of the model's fields a value, and raises Changed when it differs. Returns whether
    /// it did.
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

/// A line of text that the user reads.
class LabelModel : public ControlModel {
  public:
    /// A label with this text.
    explicit LabelModel(std::string_view sCaption = {}) : mCaption(sCaption) {}

    /// The text that is shown.
    const std::string& Caption() const { return mCaption; }
    /// Replaces the text.
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

  private:
    std::string mCaption;
};

/// A button that the user presses.
class ButtonModel : public ControlModel {
  public:
    /// A button with this text on it.
    explicit ButtonModel(std::string_view sCaption = {}) : mCaption(sCaption) {}

    /// The text on the button.
    const std::string& Caption() const { return mCaption; }
    /// Replaces the text on the button.
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

    /// The user presses the button.
    void Click();

    /// The user has pressed the button.
    Event<> Clicked;

  private:
    std::string mCaption;
};

/// A box with a check mark or without.
class CheckBoxModel : public ControlModel {
  public:
    /// A box without a check mark, with this text beside it.
    explicit CheckBoxModel(std::string_view sCaption) : mCaption(sCaption) {}

    /// The text beside the box.
    const std::string& Caption() const { return mCaption; }
    /// Whether the box has its check mark.
    bool Checked() const { return mChecked; }
    /// Sets the check mark or takes it away. Clicked is not raised.
    void SetChecked(bool bChecked) { Store(mChecked, bChecked); }

    /// The user flips the box.
    void Click();

    /// The user has flipped the box; Checked is the new state.
    Event<> Clicked;

  private:
    std::string mCaption;
    bool mChecked = false;
};

/// A drop-down list: entries with a text for the user and a value for the program, at most one of
/// them selected. Positions count from 0; -1 is no selection.
class ListModel : public ControlModel {
  public:
    /// One row of the list.
    struct Entry {
        std::string text;       ///< what the user reads
        std::int32_t value = 0; ///< what it means to the program
        /// Whether text and value are the same.
        bool operator==(const Entry&) const = default;
    };

    /// The entries from top to bottom.
    const std::vector<Entry>& Entries() const { return mEntries; }
    /// Replaces the entries; none is selected then.
    void SetEntries(std::vector<Entry> entries);

    /// The selected entry's position, from 0; -1 without a selection.
    std::int32_t ListIndex() const { return mListIndex; }
    /// Selects the entry at a position, from 0, or none with -1. Clicked is not raised. Raises 9
    /// for a position that is not there.
    void SetListIndex(std::int32_t lIndex);
    /// Selects the first entry of this value. False, and the selection stays, when there is none.
    bool SelectValue(std::int32_t lValue);
    /// Whether an entry is selected.
    bool HasSelection() const { return mListIndex >= 0; }
    /// The selected entry's value; raises 9 without a selection.
    std::int32_t SelectedValue() const;

    /// The user picks an entry, maybe the one that is selected already. Raises 9 for a position
    /// that is not there.
    void Pick(std::int32_t lIndex);

    /// The user has picked an entry; it is the selected one now.
    Event<> Clicked;

  private:
    std::vector<Entry> mEntries;
    std::int32_t mListIndex = -1;
};

/// One line of text that the user edits. Positions are bytes from 0.
class TextBoxModel : public ControlModel {
  public:
    /// What the box holds, in the bytes that Kind tells.
    const std::string& Text() const { return mText; }
    /// Replaces the text and puts the cursor at its start, as a box does whose text is replaced.
    void SetText(std::string_view sText);

    /// What the bytes of the text stand for; Host at first.
    TextKind Kind() const { return mKind; }
    /// Says what the bytes of the text stand for; the text stays.
    void SetKind(TextKind kind) { Store(mKind, kind); }

    /// The cursor, or the start of what is selected: bytes from 0.
    std::size_t SelStart() const { return mSelStart; }
    /// Bytes that are selected; 0 without a selection.
    std::size_t SelLength() const { return mSelLength; }
    /// The cursor with what is selected behind it; both are cut to the text.
    void Select(std::size_t start, std::size_t length = 0);
    /// Puts sText in place of the selection and the cursor behind it.
    void InsertAtCursor(std::string_view sText);

    /// The user's editing left this text and this cursor.
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
    /// A strip of these tabs, at least one; the first is current.
    explicit TabStripModel(std::vector<std::string> captions) : mCaptions(std::move(captions)) {}

    /// The texts on the tabs from left to right.
    const std::vector<std::string>& Captions() const { return mCaptions; }
    /// Replaces the text on a tab, from 0. Raises 9 for one that is not there.
    void SetCaption(std::size_t tab, std::string_view sCaption);
    /// The current tab, from 0.
    std::size_t Tab() const { return mTab; }

    /// The user turns to a tab. Raises 9 for one that is not there.
    void Pick(std::size_t tab);

    /// The user has turned to a tab; the argument is the one that was current before.
    Event<std::size_t> Clicked;

  private:
    std::vector<std::string> mCaptions;
    std::size_t mTab = 0;
};

/// A bar that shows how far something has come.
class ProgressBarModel : public ControlModel {
  public:
    /// A bar from lMin (empty, as it is at first) to lMax (full).
    ProgressBarModel(std::int32_t lMin, std::int32_t lMax) : mMin(lMin), mMax(lMax), mValue(lMin) {}

    /// The value of the empty bar.
    std::int32_t Min() const { return mMin; }
    /// The value of the full bar.
    std::int32_t Max() const { return mMax; }
    /// How far it has come, Min to Max.
    std::int32_t Value() const { return mValue; }

    /// Raises 5 for a value outside Min to Max; the bar then stays as it is.
    void SetValue(std::int32_t lValue);

  private:
    std::int32_t mMin;
    std::int32_t mMax;
    std::int32_t mValue;
};

} // namespace qncomm
