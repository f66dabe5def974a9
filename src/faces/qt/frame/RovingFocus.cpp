#include "qt/RovingFocus.h"

#include <QKeyEvent>

#include <algorithm>

namespace qncomm {
namespace {

/// Whether the button by itself can take the keyboard focus, whatever the state of its bar is.
bool MayBeStop(const QToolButton* button) {
    return button != nullptr && !button->isHidden() && !button->testAttribute(Qt::WA_ForceDisabled);
}

} // namespace

void RovingFocus::Add(QToolButton& button) {
    mButtons.emplace_back(&button);
    button.setFocusPolicy(Qt::NoFocus);
    button.installEventFilter(this);
    FindStop();
}

bool RovingFocus::eventFilter(QObject* watched, QEvent* event) {
    auto* button = qobject_cast<QToolButton*>(watched);
    if (button == nullptr) return false;
    switch (event->type()) {
    case QEvent::KeyPress:
        return Move(*button, static_cast<QKeyEvent*>(event)->key());
    case QEvent::FocusIn:
        MakeStop(*button);
        break;
    case QEvent::EnabledChange:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
        FindStop();
        break;
    default:
        break;
    }
    return false;
}

bool RovingFocus::Move(QToolButton& from, int key) {
    std::vector<QToolButton*> shown;
    for (const auto& each : mButtons)
        if (each && each->isVisible() && each->isEnabled()) shown.push_back(each);
    const auto here = std::ranges::find(shown, &from);
    if (here == shown.end()) return false;
    const bool leftToRight = from.layoutDirection() == Qt::LeftToRight;
    const auto last = std::prev(shown.end());
    auto to = here;
    if (key == Qt::Key_Home) {
        to = shown.begin();
    } else if (key == Qt::Key_End) {
        to = last;
    } else if (key == (leftToRight ? Qt::Key_Right : Qt::Key_Left)) {
        to = here == last ? shown.begin() : std::next(here);
    } else if (key == (leftToRight ? Qt::Key_Left : Qt::Key_Right)) {
        to = here == shown.begin() ? last : std::prev(here);
    } else {
        return false;
    }
    (*to)->setFocus(Qt::TabFocusReason);
    return true;
}

void RovingFocus::MakeStop(QToolButton& button) {
    if (mStop) mStop->setFocusPolicy(Qt::NoFocus);
    mStop = &button;
    button.setFocusPolicy(Qt::TabFocus);
}

/// Moves the Tab stop to another button when the present one is hidden or disabled.
void RovingFocus::FindStop() {
    if (MayBeStop(mStop)) return;
    const auto next = std::ranges::find_if(mButtons, MayBeStop);
    if (next != mButtons.end()) MakeStop(**next);
}

} // namespace qncomm
