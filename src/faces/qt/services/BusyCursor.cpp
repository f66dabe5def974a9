#include "qt/BusyCursor.h"

#include "common/Pointer.h"

#include <QApplication>

namespace qncomm {

BusyCursor& BusyCursor::OfApplication() {
    auto* cursor = qApp->findChild<BusyCursor*>(QString(), Qt::FindDirectChildrenOnly);
    return cursor != nullptr ? *cursor : *new BusyCursor(qApp);
}

BusyCursor::BusyCursor(QObject* application) : QObject(application) {
    mChanges = Pointer::Screen().Changed.Connect([this](std::int16_t) { Show(); });
    Show();
}

BusyCursor::~BusyCursor() = default;

void BusyCursor::Show() {
    const bool busy = Pointer::Screen().Shape() == PointerHourglass && mPauses == 0;
    if (busy == mShown) return;
    mShown = busy;
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

BusyCursor::Pause::Pause() {
    BusyCursor& cursor = OfApplication();
    ++cursor.mPauses;
    cursor.Show();
}

BusyCursor::Pause::~Pause() {
    BusyCursor& cursor = OfApplication();
    --cursor.mPauses;
    cursor.Show();
}

} // namespace qncomm
