#pragma once

#include "DeviceList.h"
#include "SentFiles.h"

#include <QPixmap>
#include <QWidget>

#include <string>

class QLabel;

namespace qnterm {

/// Shows a font or an image of the printer from the file of this machine that it was sent from, or
/// says that it was not sent from here.
class PreviewPane final : public QWidget {
    Q_OBJECT

  public:
    explicit PreviewPane(const SentFiles& sent, QWidget* parent = nullptr);

    void ShowEntry(DeviceKind kind, const std::string& sName);
    void ShowNothing();

    /// What is shown now; null when there is none.
    const QPixmap& Picture() const { return mPicture; }
    QString Text() const;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void Fit();

    const SentFiles& mSent;
    QPixmap mPicture;
    QLabel* mImage;
    QLabel* mText;
};

/// A sample of a TrueType font file; null when the file is not one.
QImage FontSample(const QString& sPath, qreal dPixelSize);

} // namespace qnterm
