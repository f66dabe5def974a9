#include "PreviewPane.h"

#include "PcxImage.h"
#include "Texts.h"

#include "platform/FileOpening.h"

#include <QFileInfo>
#include <QGlyphRun>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QRawFont>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace qnterm {
namespace {

constexpr int PictureHeight = 120;
constexpr std::uint64_t LargestPreview = 16U << 20U;
constexpr int Margin = 6;
constexpr qreal SampleSize = 26;

/// The file's bytes; none when it cannot be shown.
QByteArray BytesOf(const QString& path) {
    std::string bytes;
    static_cast<void>(qncomm::ReadWholeFile(path.toStdString(), {.limit = LargestPreview}, bytes));
    return QByteArray::fromStdString(bytes);
}

QImage ImageOf(const QString& path) {
    return DecodePcx(BytesOf(path));
}

QString NoteFor(const SentFile& sent, bool shown) {
    if (sent.path.isEmpty())
        return PreviewPane::tr(
            "The printer lists names only, and this one was not sent from here.");
    const QString name = QFileInfo(sent.path).fileName();
    if (!sent.unchanged)
        return PreviewPane::tr("Sent from %1, which has changed or gone since.").arg(name);
    if (!shown) return PreviewPane::tr("Sent from %1, which cannot be shown.").arg(name);
    return PreviewPane::tr("As in %1, from which it was sent.").arg(name);
}

} // namespace

QImage FontSample(const QString& sPath, qreal dPixelSize) {
    const QRawFont font(BytesOf(sPath), dPixelSize);
    if (!font.isValid()) return {};
    const QVector<quint32> glyphs =
        font.glyphIndexesForString(QStringLiteral("The quick brown fox 0123"));
    const QVector<QPointF> advances = font.advancesForGlyphIndexes(glyphs);
    QVector<QPointF> places;
    QPointF at(0, font.ascent());
    for (const QPointF& advance : advances) {
        places.append(at);
        at += advance;
    }
    QGlyphRun run;
    run.setRawFont(font);
    run.setGlyphIndexes(glyphs);
    run.setPositions(places);
    QImage image(static_cast<int>(std::ceil(std::max(1.0, at.x()))),
                 static_cast<int>(std::ceil(font.ascent() + font.descent())), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    painter.drawGlyphRun({}, run);
    return image;
}

PreviewPane::PreviewPane(const SentFiles& sent, QWidget* parent)
    : QWidget(parent), mSent(sent), mImage(new QLabel(this)), mText(new QLabel(this)) {
    mImage->setAlignment(Qt::AlignCenter);
    mImage->setMinimumSize(1, PictureHeight);
    mImage->setFrameShape(QFrame::StyledPanel);
    mImage->setAccessibleName(tr("Preview"));
    mText->setWordWrap(true);
    mText->setTextFormat(Qt::PlainText);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mImage);
    layout->addWidget(mText);
    ShowNothing();
}

void PreviewPane::ShowEntry(DeviceKind kind, const std::string& sName) {
    const SentFile sent = mSent.Find(kind, sName);
    QImage picture;
    if (!sent.path.isEmpty() && sent.unchanged)
        picture =
            kind == DeviceKind::Fonts ? FontSample(sent.path, SampleSize) : ImageOf(sent.path);
    mPicture = QPixmap::fromImage(picture);
    const bool shown = !mPicture.isNull();
    QString text = NoteFor(sent, shown);
    if (shown && kind == DeviceKind::Images)
        text = tr("%1 × %2 dots. ").arg(picture.width()).arg(picture.height()) + text;
    mText->setText(text);
    mImage->setVisible(shown);
    Fit();
}

void PreviewPane::ShowNothing() {
    mPicture = {};
    mImage->clear();
    mImage->hide();
    mText->setText(tr("Select one to see it."));
}

QString PreviewPane::Text() const {
    return mText->text();
}

void PreviewPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Fit();
}

/// Scales the picture down to what there is; never up, so that its dots stay dots.
void PreviewPane::Fit() {
    if (mPicture.isNull()) return;
    const QSize room(std::max(1, width() - 2 * Margin), PictureHeight - Margin);
    const qreal ratio = devicePixelRatioF();
    QPixmap shown = mPicture;
    if (shown.width() > room.width() * ratio || shown.height() > room.height() * ratio)
        shown = shown.scaled(room * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    shown.setDevicePixelRatio(ratio);
    mImage->setPixmap(shown);
}

} // namespace qnterm
