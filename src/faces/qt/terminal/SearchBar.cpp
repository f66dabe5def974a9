#include "SearchBar.h"

#include "qt/Icons.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace qncomm {
namespace {

QToolButton* AddButton(QBoxLayout& layout, const QString& name) {
    auto* button = new QToolButton;
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    layout.addWidget(button);
    return button;
}

} // namespace

SearchBar::SearchBar(QWidget* parent)
    : QWidget(parent), mText(new QLineEdit), mNotFound(new QLabel(tr("Not found"))) {
    setAutoFillBackground(true);
    setAccessibleName(tr("Search in the terminal"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);
    mText->setPlaceholderText(tr("Find"));
    mText->setAccessibleName(tr("Find"));
    mText->setMinimumWidth(80);
    layout->addWidget(mText, 1);
    layout->addWidget(mNotFound);
    auto* previous = AddButton(*layout, tr("Previous (Shift+Enter)"));
    previous->setArrowType(Qt::UpArrow);
    auto* next = AddButton(*layout, tr("Next (Enter)"));
    next->setArrowType(Qt::DownArrow);
    mClose = AddButton(*layout, tr("Close (Esc)"));
    setFocusProxy(mText);
    ShowFound(true);
    ShowPictures();
    connect(previous, &QToolButton::clicked, this, &SearchBar::previousAsked);
    connect(next, &QToolButton::clicked, this, &SearchBar::nextAsked);
    connect(mClose, &QToolButton::clicked, this, &SearchBar::closed);
    connect(mText, &QLineEdit::textChanged, this, &SearchBar::textChanged);
}

QString SearchBar::Text() const {
    return mText->text();
}

void SearchBar::Ask() {
    // Only now: for this button's icon the toolkit looks through the desktop's theme.
    mText->setClearButtonEnabled(true);
    show();
    mText->setFocus(Qt::ShortcutFocusReason);
    mText->selectAll();
}

void SearchBar::ShowFound(bool bFound) {
    mNotFound->setVisible(!bFound);
}

void SearchBar::ShowPictures() {
    mClose->setIcon(LineIcon(QStringLiteral("Close"), palette()));
}

void SearchBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) ShowPictures();
}

void SearchBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        emit closed();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->modifiers().testFlag(Qt::ShiftModifier) ? emit previousAsked() : emit nextAsked();
    else
        QWidget::keyPressEvent(event);
}

} // namespace qncomm
