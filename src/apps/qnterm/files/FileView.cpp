#include "FileView.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
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
    setSortingEnabled(true);
    setTextElideMode(Qt::ElideMiddle);
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

} // namespace qnterm
