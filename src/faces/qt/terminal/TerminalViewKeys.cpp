// What the user types.

#include "TerminalViewParts.h"
#include "TypedKeys.h"
#include "qt/Charset.h"
#include "terminal/view/TerminalSearch.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

namespace qncomm {

void TerminalView::Run(ViewCommand command) {
    Parts& p = *mParts;
    switch (command) {
    case ViewCommand::None:
        break;
    case ViewCommand::Search:
        ShowSearch();
        break;
    case ViewCommand::ZoomIn:
        ZoomBy(1);
        break;
    case ViewCommand::ZoomOut:
        ZoomBy(-1);
        break;
    case ViewCommand::ZoomReset:
        ZoomReset();
        break;
    case ViewCommand::Copy:
        if (HasSelection()) p.input.Copy(SelectedText());
        break;
    case ViewCommand::Paste:
        ScrollToEnd();
        p.input.Paste();
        break;
    case ViewCommand::SelectAll:
        SelectAll();
        break;
    case ViewCommand::Break:
        p.input.Break();
        break;
    case ViewCommand::PageUp:
        p.scroll.PageBy(-1);
        break;
    case ViewCommand::PageDown:
        p.scroll.PageBy(1);
        break;
    case ViewCommand::ToStart:
        p.scroll.ScrollTo(p.text.Begin());
        break;
    case ViewCommand::ToEnd:
        ScrollToEnd();
        break;
    case ViewCommand::NextControl:
        QAbstractScrollArea::focusNextPrevChild(true);
        break;
    case ViewCommand::PreviousControl:
        QAbstractScrollArea::focusNextPrevChild(false);
        break;
    }
    ShowScroll();
}

bool TerminalView::TakesKey(const QKeyEvent& event) const {
    const KeyPress press = KeyPressOf(event);
    return isEnabled()
           && (CommandOf(press) != ViewCommand::None || FunctionKeyOf(KeyStrokeOf(event)) != 0
               || !BytesOf(press).empty());
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
    const KeyPress press = KeyPressOf(*event);
    if (const ViewCommand command = CommandOf(press); command != ViewCommand::None) {
        Run(command);
        return;
    }
    const std::string bytes = BytesOf(press);
    if (bytes.empty())
        event->ignore();
    else
        TypeBytes(bytes);
}

void TerminalView::TypeBytes(std::string_view bytes) {
    Parts& p = *mParts;
    if (!p.selection.Empty()) ClearSelection();
    p.scroll.KeyTyped();
    ShowScroll();
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
    const TextPosition from = p.selection.Empty() ? p.scroll.TextEnd() : p.selection.From();
    const auto found = FindText(p.text, ToLine(text), from,
                                forward ? SearchDirection::Forward : SearchDirection::Back);
    if (!found) {
        ClearSelection();
        return false;
    }
    p.scroll.ScrollToLine(found->from.line);
    p.scroll.ShowColumns(found->from.column, found->to.column);
    ShowScroll();
    Select(found->from, found->to);
    return true;
}

} // namespace qncomm
