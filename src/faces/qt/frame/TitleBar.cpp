#include "qt/TitleBar.h"

#include "ElidedLabel.h"
#include "qt/Binders.h"
#include "qt/Charset.h"
#include "qt/Colours.h"
#include "qt/Icons.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QToolButton>

namespace qncomm {
namespace {

constexpr int TitlePadding = 2; // pixels around the bar's pieces
constexpr int TitleIndent = 6;  // pixels before the caption
constexpr int ClosePictureSize = 14;

/// Many desktops define no colour of their own for an inactive title bar. There it is grey, so that
/// it can be told from an active one.
QColor BackOf(const TitleModel& title, const QPalette& desktop) {
    const QColor back = ColourOf(title.BackColor(), desktop);
    const bool asActive =
        title.BackColor() == InactiveTitleColor && back == ColourOf(ActiveTitleColor, desktop);
    return asActive ? desktop.color(QPalette::Active, QPalette::Mid) : back;
}

} // namespace

TitleBar::TitleBar(TitleModel& title, ButtonModel& close, const ActionGuard& guard, QWidget* parent)
    : QWidget(parent),
      mTitle(title),
      mGuard(guard),
      mCaption(new ElidedLabel(this, Qt::ElideRight)),
      mClose(new QToolButton(this)) {
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    mCaption->setObjectName(u"lblCaption"_qs);
    mClose->setObjectName(u"cmdClose"_qs);
    mClose->setAutoRaise(true);
    mClose->setIconSize({ClosePictureSize, ClosePictureSize});
    mClose->setAccessibleName(tr("Close"));
    mClose->setToolTip(tr("Close"));
    Bind(close, *mClose, guard);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(TitleIndent, TitlePadding, TitlePadding, TitlePadding);
    layout->setSpacing(TitlePadding);
    layout->addWidget(mCaption, 1);
    layout->addWidget(mClose);
    mChanges = title.Changed.Connect([this] { Show(); });
    Show();
}

void TitleBar::Show() {
    if (mShowing) return; // the colours set below are a change of the palette, too
    const QScopedValueRollback showing(mShowing, true);
    const QPalette desktop = parentWidget() != nullptr ? parentWidget()->palette() : QPalette();
    const QColor back = BackOf(mTitle, desktop);
    const QColor fore = ReadableOn(back, ColourOf(mTitle.ForeColor(), desktop));
    QPalette own = desktop;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto role : {QPalette::Window, QPalette::Button})
            own.setColor(group, role, back);
        for (const auto role : {QPalette::WindowText, QPalette::ButtonText})
            own.setColor(group, role, fore);
    }
    setPalette(own);
    mCaption->setText(FromHost(mTitle.Caption()));
    mClose->setIcon(LineIcon(u"Close"_qs, own));
}

void TitleBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) Show();
}

void TitleBar::mousePressEvent(QMouseEvent* event) {
    QWidget::mousePressEvent(event);
    TitleModel& title = mTitle;
    if (event->button() == Qt::LeftButton) mGuard.Run([&title] { title.Click(); });
}

} // namespace qncomm
