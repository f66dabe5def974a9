// How the view is built, what it is made of and how changes are painted.

#include "TerminalView.h"

#include "TerminalViewParts.h"
#include "qt/Charset.h"
#include "qt/Colours.h"

#include <QApplication>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace qncomm {
namespace {

constexpr qint64 FrameMs = 16;
constexpr qint64 LongestFrameMs = 50;
constexpr qint64 FrameShare = 10; // frames take at most a tenth of the time
constexpr qint64 NsPerMs = 1'000'000;
constexpr int BellMs = 120;
constexpr int FewestZoomSteps = -8;
constexpr int MostZoomSteps = 15;
constexpr qreal ZoomStep = 1.1;
constexpr qreal LeastPoints = 4;
constexpr QSize UsualCells(80, 16);

QFont FontFor(const terminal::TerminalAppearance& appearance, int zoom) {
    QFont font(FromHost(appearance.fontName));
    font.setStyleHint(QFont::Monospace); // in place of one that is not there
    font.setFixedPitch(true);
    const qreal size = std::max(1.0F, appearance.fontSize);
    font.setPointSizeF(std::max(LeastPoints, size * std::pow(ZoomStep, zoom)));
    font.setKerning(false);
    return font;
}

} // namespace

TerminalView::TerminalView(const Terminal& grid, TerminalChanges changes, TerminalInput& input,
                           QWidget* parent)
    : QAbstractScrollArea(parent), mParts(std::make_unique<Parts>(grid, changes, input)) {
    InstallTerminalAccessibility();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setFocusProxy(this);
    setAccessibleName(tr("Terminal"));
    Parts& p = *mParts;
    p.search = new SearchBar(this);
    p.search->hide();
    const auto find = [this](bool forward) {
        mParts->search->ShowFound(Find(mParts->search->Text(), forward));
    };
    connect(p.search, &SearchBar::nextAsked, this, [find] { find(true); });
    connect(p.search, &SearchBar::previousAsked, this, [find] { find(false); });
    connect(p.search, &SearchBar::textChanged, this, [this] { mParts->search->ShowFound(true); });
    connect(p.search, &SearchBar::closed, this, [this] {
        mParts->search->hide();
        PlaceSearchBar();
        setFocus();
    });
    UseFont();
    p.changes.TakeDamage(); // all of it is shown with the first paint
}

TerminalView::~TerminalView() = default;

// -- Looks

void TerminalView::UseFont() {
    Parts& p = *mParts;
    p.shown = p.grid.Appearance();
    p.devicePixels = devicePixelRatioF();
    p.font = CellFont(FontFor(p.shown, p.zoom), p.devicePixels);
    const QPalette& looks = palette();
    p.colours.back = ColourOf(p.shown.backColor, looks, QPalette::Base);
    p.colours.text = ReadableOn(p.colours.back, ColourOf(p.shown.foreColor, looks, QPalette::Text));
    p.colours.markedBack = looks.color(QPalette::Active, QPalette::Highlight);
    p.colours.markedText = looks.color(QPalette::Active, QPalette::HighlightedText);
    LayOut();
    viewport()->update();
    updateGeometry();
}

int TerminalView::RowHeight() const {
    return static_cast<int>(mParts->font.Height());
}

void TerminalView::ZoomBy(int steps) {
    const int zoom = std::clamp(mParts->zoom + steps, FewestZoomSteps, MostZoomSteps);
    if (zoom == mParts->zoom) return;
    mParts->zoom = zoom;
    UseFont();
}

void TerminalView::ZoomReset() {
    ZoomBy(-mParts->zoom);
}

int TerminalView::ZoomSteps() const {
    return mParts->zoom;
}

QSize TerminalView::sizeHint() const {
    const qreal width = UsualCells.width() * mParts->font.Width() + 2 * Parts::PadLeft
                        + verticalScrollBar()->sizeHint().width();
    return {static_cast<int>(std::ceil(width)),
            UsualCells.height() * RowHeight() + 2 * Parts::PadTop};
}

QSize TerminalView::minimumSizeHint() const {
    return {0, 0}; // a host may make the control as small as it likes
}

// -- Events of the widget

bool TerminalView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // A key that goes to the line must not act as a shortcut of the program around it.
        if (auto* key = static_cast<QKeyEvent*>(event); TakesKey(*key)) key->accept();
        return true;
    case QEvent::ScreenChangeInternal:
        UseFont();
        break;
    default:
        break;
    }
    return QAbstractScrollArea::event(event);
}

void TerminalView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        UseFont();
        break;
    default:
        break;
    }
}

void TerminalView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    PlaceSearchBar();
    LayOut();
}

void TerminalView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    if (!qFuzzyCompare(mParts->devicePixels, devicePixelRatioF())) UseFont();
    ShowFrame();
    RestartBlink();
}

void TerminalView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    mParts->frameTimer.stop();
    RestartBlink();
}

void TerminalView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    RestartBlink();
}

void TerminalView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    mParts->preedit.clear();
    RestartBlink();
}

bool TerminalView::focusNextPrevChild(bool /*bNext*/) {
    return false; // Tab is a character of the line
}

void TerminalView::timerEvent(QTimerEvent* event) {
    Parts& p = *mParts;
    if (event->timerId() == p.frameTimer.timerId()) {
        p.frameTimer.stop();
        ShowFrame();
    } else if (event->timerId() == p.blinkTimer.timerId()) {
        Blink();
    } else if (event->timerId() == p.bellTimer.timerId()) {
        p.bellTimer.stop();
        viewport()->update();
    } else if (event->timerId() == p.dragTimer.timerId()) {
        DragTo(p.dragAt);
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

// -- Frames

void TerminalView::GridChanged() {
    Parts& p = *mParts;
    if (p.frameTimer.isActive() || !isVisible()) return;
    // When bytes come faster than they can be painted, receiving them gets most of the time.
    const qint64 apart = std::clamp(p.frameCostNs * FrameShare / NsPerMs, FrameMs, LongestFrameMs);
    const qint64 since = p.sinceFrame.isValid() ? p.sinceFrame.elapsed() : apart;
    p.frameTimer.start(static_cast<int>(std::max<qint64>(apart - since, 0)), Qt::PreciseTimer,
                       this);
}

void TerminalView::ShowFrame() {
    Parts& p = *mParts;
    p.sinceFrame.start();
    ++p.frames;
    if (p.shown != p.grid.Appearance()) UseFont();
    const terminal::Damage damage = p.changes.TakeDamage();
    const bool renumbered = p.scroll.Update(damage);
    const bool marked = !p.selection.Empty() && !p.dragging;
    if (marked && !p.selection.Outlives(p.text, damage, renumbered)) ClearSelection();
    ShowScroll();
    if (renumbered) viewport()->update();
    for (const std::uint16_t row : damage.rows)
        UpdateLine(p.text.ScreenBegin() + row - 1);
    UpdateCursorCell();
    if (p.changes.TakeBell()) Ring();
    p.readers.Tell(*this, p.text, p.scroll.ContentEnd());
    p.frameCostNs = p.sinceFrame.nsecsElapsed(); // painting adds its part
}

ReaderScreen TerminalView::ScreenForReaders() const {
    return ReaderScreenOf(mParts->text, mParts->scroll.ContentEnd());
}

std::uint64_t TerminalView::Frames() const {
    return mParts->frames;
}

/// Shows the bell: the text lights up, and a window in the background asks for attention.
void TerminalView::Ring() {
    if (!isActiveWindow()) QApplication::alert(this);
    if (mParts->bellTimer.isActive()) return;
    mParts->bellTimer.start(BellMs, this);
    viewport()->update();
}

void TerminalView::PlaceSearchBar() {
    SearchBar& bar = *mParts->search;
    const int height = bar.isHidden() ? 0 : bar.sizeHint().height();
    if (viewportMargins().bottom() != height) setViewportMargins(0, 0, 0, height);
    const QRect inner = viewport()->geometry();
    bar.setGeometry(inner.left(), inner.bottom() + 1, inner.width(), height);
}

} // namespace qncomm
