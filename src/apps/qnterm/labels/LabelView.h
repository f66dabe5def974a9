#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>

class QFileSystemWatcher;
class QLabel;
class QListWidget;

namespace qnterm {

/// The labels that the virtual printer has printed: the latest one or the one that is selected, and
/// the row of those before it. Follows the folder that the printer puts its pictures in.
class LabelView final : public QWidget {
    Q_OBJECT

  public:
    explicit LabelView(QWidget* parent = nullptr);

    /// Shows the pictures in a folder from now on; none for an empty path, of a printer with paper.
    void SetFolder(const QString& sFolder);

    int Count() const { return static_cast<int>(mNames.size()); }
    /// The picture that is shown large; null when there is none.
    const QPixmap& Shown() const { return mShown; }

  signals:
    /// Another label has been printed.
    void Printed();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void Reread();
    void AddThumbnail(const QString& path);
    void ShowRow(int row);
    void Fit();

    QString mFolder;
    QString mHint = tr("What a virtual printer prints is shown here."); ///< without a label
    QStringList mNames;
    QPixmap mShown;
    QFileSystemWatcher* mWatcher;
    QTimer mSettle; ///< a picture is read when nothing has changed for a moment
    QLabel* mPicture;
    QLabel* mNote;
    QListWidget* mHistory;
};

} // namespace qnterm
