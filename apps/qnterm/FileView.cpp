#include "FileView.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace qnterm {

QStringList LocalFilesOf(const QMimeData* data) {
    QStringList files;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile()) files += url.toLocalFile();
    return files;
}

FileView::FileView(QWidget* parent) : QTableView(parent) {
    setAcceptDrops(true);
    setSelectionBehavior(SelectRows);
    setShowGrid(false);
    setSortingEnabled(true);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void FileView::SetHint(const QString& sHint) {
    mHint = sHint;
    viewport()->update();
}

void FileView::dragEnterEvent(QDragEnterEvent* event) {
    if (LocalFilesOf(event->mimeData()).isEmpty()) return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileView::dragMoveEvent(QDragMoveEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileView::dropEvent(QDropEvent* event) {
    const QStringList files = LocalFilesOf(event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (!files.isEmpty()) emit FilesDropped(files);
}

void FileView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (mHint.isEmpty() || (model() != nullptr && model()->rowCount() > 0)) return;
    constexpr int margin = 16;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, mHint);
}

} // namespace qnterm
