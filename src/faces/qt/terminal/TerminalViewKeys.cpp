// What the user types.

#include "TerminalSearch.h"
#include "TerminalViewParts.h"
#include "TypedKeys.h"
#include "qt/Charset.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace qncomm {

/// A key of the view's own.
struct TerminalView::Command {
    int key;
    Qt::KeyboardModifiers held;
    void (*run)(TerminalView& view);
};

const TerminalView::Command* TerminalView::CommandFor(const QKeyEvent& event) {
    static const std::array commands{
        Command{Qt::Key_F, Qt::ControlModifier, [](TerminalView& view) { view.ShowSearch(); }},
        Command{Qt::Key_Plus, Qt::ControlModifier, [](TerminalView& view) { view.ZoomBy(1); }},
        Command{Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier,
                [](TerminalView& view) { view.ZoomBy(1); }},
        Command{Qt::Key_Equal, Qt::ControlModifier, [](TerminalView& view) { view.ZoomBy(1); }},
        Command{Qt::Key_Minus, Qt::ControlModifier, [](TerminalView& view) { view.ZoomBy(-1); }},
        Command{Qt::Key_0, Qt::ControlModifier, [](TerminalView& view) { view.ZoomReset(); }},
        Command{Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier,
                [](TerminalView& view) {
                    if (view.HasSelection()) view.mParts->input.Copy(view.SelectedText());
                }},
        Command{Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier,
                [](TerminalView& view) {
                    view.ScrollToEnd();
                    view.mParts->input.Paste();
                }},
        Command{Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier,
                [](TerminalView& view) { view.SelectAll(); }},
        Command{Qt::Key_PageUp, Qt::ShiftModifier, [](TerminalView& view) { view.PageBy(-1); }},
        Command{Qt::Key_PageDown, Qt::ShiftModifier, [](TerminalView& view) { view.PageBy(1); }},
        Command{Qt::Key_Home, Qt::ShiftModifier,
                [](TerminalView& view) {
                    view.ScrollTo(view.mParts->text.Begin(), true);
                    view.UpdateScrollBars();
                }},
        Command{Qt::Key_End, Qt::ShiftModifier, [](TerminalView& view) { view.ScrollToEnd(); }},
        Command{Qt::Key_Tab, Qt::ControlModifier,
                [](TerminalView& view) { view.QAbstractScrollArea::focusNextPrevChild(true); }},
        Command{Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier,
                [](TerminalView& view) { view.QAbstractScrollArea::focusNextPrevChild(false); }},
    };
    const Qt::KeyboardModifiers held =
        event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const auto found = std::ranges::find_if(commands, [&](const Command& each) {
        return each.key == event.key() && each.held == held;
    });
    return found == commands.end() ? nullptr : &*found;
}

bool TerminalView::TakesKey(const QKeyEvent& event) const {
    return isEnabled()
           && (CommandFor(event) != nullptr || FunctionKeyOf(KeyStrokeOf(event)) != 0
               || !BytesOf(event).empty());
}

void TerminalView::keyPressEvent(QKeyEvent* event) {
    TerminalInput& input = mParts->input;
    const KeyStroke stroke = KeyStrokeOf(*event);
    event->accept();
    if (const std::int32_t key = FunctionKeyOf(stroke); key != 0) {
        input.FunctionKey(key);
        return;
    }
    if (stroke.code != 0 && !input.KeyDown(stroke)) return;
    if (const Command* command = CommandFor(*event)) {
        command->run(*this);
        return;
    }
    const std::string bytes = BytesOf(*event);
    if (bytes.empty())
        event->ignore();
    else
        TypeBytes(bytes);
}

void TerminalView::TypeBytes(std::string_view bytes) {
    Parts& p = *mParts;
    p.typedOn = p.text.CursorLine();
    if (!p.selection.Empty()) ClearSelection();
    if (!p.follows) ScrollToEnd();
    if (!p.input.Type(bytes)) Ring(); // the key is lost: say so
}

void TerminalView::inputMethodEvent(QInputMethodEvent* event) {
    mParts->preedit = event->preeditString();
    event->accept();
    viewport()->update();
    if (!event->commitString().isEmpty()) TypeBytes(ToLine(event->commitString()));
}

QVariant TerminalView::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
    case Qt::ImEnabled:
        return isEnabled();
    case Qt::ImCursorRectangle:
        return CursorRect().translated(viewport()->pos());
    case Qt::ImFont:
        return mParts->font.Font();
    case Qt::ImHints:
        return static_cast<int>(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

// -- Search

void TerminalView::ShowSearch() {
    mParts->search->Ask();
    PlaceSearchBar();
}

bool TerminalView::FindNext(const QString& sText) {
    return Find(sText, true);
}

bool TerminalView::FindPrevious(const QString& sText) {
    return Find(sText, false);
}

bool TerminalView::Find(const QString& text, bool forward) {
    Parts& p = *mParts;
    // The first search looks from the end of the text back: what came last is wanted most.
    const TextPosition from =
        p.selection.Empty() ? TextPosition{p.contentEnd - 1, p.widest} : p.selection.From();
    const auto found = FindText(p.text, ToLine(text), from,
                                forward ? SearchDirection::Forward : SearchDirection::Back);
    if (!found) {
        ClearSelection();
        return false;
    }
    ScrollToLine(found->from.line);
    const auto columns = static_cast<std::size_t>(p.columns);
    if (found->from.column < p.left || found->to.column > p.left + columns)
        p.left = found->to.column <= columns ? 0 : found->from.column;
    UpdateScrollBars();
    Select(found->from, found->to);
    return true;
}

} // namespace qncomm
