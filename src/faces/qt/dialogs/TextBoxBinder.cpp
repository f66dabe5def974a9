#include "Binder.h"
#include "qt/Binders.h"
#include "qt/Charset.h"

#include <QLineEdit>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>

namespace qncomm {
namespace {

QString ToWidget(std::string_view text, TextKind kind) {
    return kind == TextKind::Line ? FromLine(text) : FromHost(text);
}

std::string FromWidget(const QString& text, TextKind kind) {
    return kind == TextKind::Line ? ToLine(text) : ToHost(text);
}

/// A cursor with the selection behind it, in characters of the widget.
struct WidgetSelection {
    int start = 0;
    int length = 0;
    bool operator==(const WidgetSelection&) const = default;
};

WidgetSelection SelectionOf(const QLineEdit& edit) {
    if (edit.hasSelectedText()) return {edit.selectionStart(), edit.selectionLength()};
    return {edit.cursorPosition(), 0};
}

void Select(QLineEdit& edit, const WidgetSelection& selection) {
    if (selection == SelectionOf(edit)) return;
    if (selection.length > 0) {
        edit.setSelection(selection.start, selection.length);
    } else {
        edit.deselect();
        edit.setCursorPosition(selection.start);
    }
}

/// Replaces only what differs, so that the user can undo it.
void Rewrite(QLineEdit& edit, const QString& text) {
    const QString former = edit.text();
    const qsizetype most = std::min(former.size(), text.size());
    qsizetype front = 0;
    while (front < most && former[front] == text[front])
        ++front;
    qsizetype back = 0;
    while (back < most - front && former[former.size() - 1 - back] == text[text.size() - 1 - back])
        ++back;
    edit.setSelection(static_cast<int>(front), static_cast<int>(former.size() - back - front));
    if (!edit.hasSelectedText()) edit.setCursorPosition(static_cast<int>(front));
    if (text.size() - back > front)
        edit.insert(text.mid(front, text.size() - back - front));
    else
        edit.del();
}

class TextBoxBinder : public Binder<TextBoxModel, QLineEdit> {
  public:
    TextBoxBinder(TextBoxModel& model, QLineEdit& edit, const ActionGuard& guard)
        : Binder(model, edit, &guard) {
        edit.setMaxLength(std::numeric_limits<int>::max()); // the model alone says what fits
        connect(&edit, &QLineEdit::textEdited, this, [this] { TakeText(); });
        connect(&edit, &QLineEdit::cursorPositionChanged, this, [this] { TakeSelection(); });
        connect(&edit, &QLineEdit::selectionChanged, this, [this] { TakeSelection(); });
    }

  private:
    std::size_t BytesBefore(int position) const {
        return FromWidget(mWidget.text().left(position), mModel.Kind()).size();
    }

    int CharactersBefore(std::size_t byte) const {
        const std::string_view text = mModel.Text();
        return static_cast<int>(ToWidget(text.substr(0, byte), mModel.Kind()).size());
    }

    void TakeText() {
        if (mBusy) return;
        TextBoxModel& typed = mModel;
        const std::string text = FromWidget(mWidget.text(), typed.Kind());
        const std::size_t cursor = BytesBefore(mWidget.cursorPosition());
        mBusy = true; // the model speaks before it has the cursor
        const QPointer<QObject> self(this);
        Act([&typed, &text, cursor] { typed.Type(text, cursor); });
        if (!self) return;
        mBusy = false;
        ShowAll();
    }

    void TakeSelection() {
        if (mBusy || mWidget.text() != ToWidget(mModel.Text(), mModel.Kind())) return;
        const WidgetSelection selection = SelectionOf(mWidget);
        const std::size_t start = BytesBefore(selection.start);
        const std::size_t end = BytesBefore(selection.start + selection.length);
        const QScopedValueRollback busy(mBusy, true);
        mModel.Select(start, end - start);
    }

    void Show() override {
        if (mBusy) return;
        const QScopedValueRollback busy(mBusy, true);
        const QString text = ToWidget(mModel.Text(), mModel.Kind());
        if (mShown && mWidget.text() != text) Rewrite(mWidget, text);
        if (!mShown) mWidget.setText(text);
        mShown = true;
        const int start = CharactersBefore(mModel.SelStart());
        const int end = CharactersBefore(mModel.SelStart() + mModel.SelLength());
        Select(mWidget, {start, end - start});
    }

    bool mBusy = false;
    bool mShown = false;
};

} // namespace

void Bind(TextBoxModel& model, QLineEdit& edit, const ActionGuard& guard) {
    StartBinder<TextBoxBinder>(model, edit, guard);
}

} // namespace qncomm
