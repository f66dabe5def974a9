#include "LabelView.h"

#include "qt/ShownText.h"

#include <QDir>
#include <QFileSystemWatcher>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace qnterm {
namespace {

constexpr int SettleMs = 100;
constexpr QSize ThumbnailSize{96, 64};
constexpr int HistoryHeight = 104;
constexpr int LongestHistory = 200;
constexpr int Frame = 4;

} // namespace

LabelView::LabelView(QWidget* parent)
    : QWidget(parent),
      mWatcher(new QFileSystemWatcher(this)),
      mPicture(new QLabel),
      mNote(new QLabel),
      mHistory(new QListWidget) {
    mPicture->setAlignment(Qt::AlignCenter);
    mPicture->setMinimumSize(1, 1);
    mPicture->setFrameShape(QFrame::StyledPanel);
    mPicture->setAccessibleName(tr("Printed label"));
    mPicture->setWordWrap(true);
    mNote->setAlignment(Qt::AlignCenter);
    mHistory->setAccessibleName(tr("Labels printed before"));
    mHistory->setViewMode(QListView::IconMode);
    mHistory->setFlow(QListView::LeftToRight);
    mHistory->setWrapping(false);
    mHistory->setMovement(QListView::Static);
    mHistory->setIconSize(ThumbnailSize);
    mHistory->setFixedHeight(HistoryHeight);
    mHistory->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(mPicture, 1);
    layout->addWidget(mNote);
    layout->addWidget(mHistory);
    mSettle.setSingleShot(true);
    mSettle.setInterval(SettleMs);
    connect(&mSettle, &QTimer::timeout, this, &LabelView::Reread);
    connect(mWatcher, &QFileSystemWatcher::directoryChanged, this, [this] { mSettle.start(); });
    connect(mHistory, &QListWidget::currentRowChanged, this, &LabelView::ShowRow);
    setFocusProxy(mHistory);
    ShowRow(-1);
}

void LabelView::SetFolder(const QString& sFolder) {
    if (!mWatcher->directories().isEmpty()) mWatcher->removePaths(mWatcher->directories());
    mFolder = sFolder;
    mHint = sFolder.isEmpty() ? tr("The printer on this port prints on paper. What a virtual "
                                   "printer prints is shown here.")
                              : tr("Nothing has been printed yet. Try this in the terminal:\n\n"
                                   "PP 40,120:FT \"SW120BSN.1\":PT \"Hello\":PF");
    mNames.clear();
    mHistory->clear();
    ShowRow(-1);
    if (sFolder.isEmpty()) return;
    QDir().mkpath(sFolder);
    mWatcher->addPath(sFolder);
    Reread();
}

void LabelView::Reread() {
    const QStringList names =
        QDir(mFolder).entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    const bool wasLast = mHistory->currentRow() == mHistory->count() - 1;
    bool more = false;
    for (const QString& name : names) {
        if (mNames.contains(name)) continue;
        AddThumbnail(QDir(mFolder).filePath(name));
        mNames.append(name);
        more = true;
    }
    if (!more) return;
    while (mHistory->count() > LongestHistory) {
        delete mHistory->takeItem(0);
    }
    if (wasLast) mHistory->setCurrentRow(mHistory->count() - 1);
    emit Printed();
}

void LabelView::AddThumbnail(const QString& path) {
    const QPixmap picture(path);
    const QPixmap small = picture.scaled(ThumbnailSize * devicePixelRatioF(), Qt::KeepAspectRatio,
                                         Qt::SmoothTransformation);
    auto* item = new QListWidgetItem(QIcon(small), QString::number(mNames.size() + 1), mHistory);
    item->setData(Qt::UserRole, path);
    item->setToolTip(qncomm::TextOfATip(path));
}

void LabelView::ShowRow(int row) {
    const QListWidgetItem* item = mHistory->item(row);
    mHistory->setVisible(mHistory->count() > 1);
    mNote->setVisible(item != nullptr);
    if (item == nullptr) {
        mShown = {};
        mPicture->setPixmap({});
        mPicture->setText(mHint);
        return;
    }
    mShown = QPixmap(item->data(Qt::UserRole).toString());
    mNote->setText(
        tr("Label %1 · %2 × %3 dots").arg(item->text()).arg(mShown.width()).arg(mShown.height()));
    Fit();
}

void LabelView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Fit();
}

/// Scales the label to the room there is; up only by whole dots, so that bars stay sharp.
void LabelView::Fit() {
    if (mShown.isNull()) return;
    const qreal ratio = devicePixelRatioF();
    const QSize room = (mPicture->contentsRect().size() - QSize(2 * Frame, 2 * Frame)) * ratio;
    QPixmap shown = mShown;
    if (shown.width() > room.width() || shown.height() > room.height())
        shown =
            shown.scaled(room.expandedTo({1, 1}), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    shown.setDevicePixelRatio(ratio);
    mPicture->setPixmap(shown);
}

} // namespace qnterm
