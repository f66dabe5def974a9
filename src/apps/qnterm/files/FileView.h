#pragma once

#include <QStringList>
#include <QTableView>

namespace qnterm {

/// A table that takes files of this machine dropped on it.
class FileView final : public QTableView {
    Q_OBJECT

  public:
    explicit FileView(QWidget* parent = nullptr);

  signals:
    void FilesDropped(const QStringList& paths);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

/// The local files among what is dragged.
QStringList LocalFilesOf(const QMimeData* data);

} // namespace qnterm
