#include "qt/Icons.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

// A static library's resources are known only once they are asked for by name; the macro does not
// work inside a namespace.
static void RegisterPictures() {
    Q_INIT_RESOURCE(icons);
}

namespace qncomm {
namespace {

/// The colour that the pictures are drawn with stands in them by this word.
constexpr const char* ColourWord = "currentColor";

QByteArray PictureNamed(const QString& name) {
    RegisterPictures();
    QFile file(QStringLiteral(":/qncomm/%1.svg").arg(name.toLower()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Draws a picture of lines at any size.
class LineIconEngine : public QIconEngine {
  public:
    LineIconEngine(QByteArray picture, const QColor& ordinary, const QColor& disabled)
        : mPicture(std::move(picture)), mOrdinary(ordinary), mDisabled(disabled) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QColor& colour = mode == QIcon::Disabled ? mDisabled : mOrdinary;
        QByteArray picture = mPicture;
        picture.replace(ColourWord, colour.name().toLatin1());
        QSvgRenderer renderer(picture);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
    }

    QIconEngine* clone() const override { return new LineIconEngine(*this); }

  private:
    QByteArray mPicture;
    QColor mOrdinary;
    QColor mDisabled;
};

} // namespace

QIcon LineIcon(const QString& sName, const QPalette& palette, QPalette::ColorRole role) {
    QByteArray picture = PictureNamed(sName);
    if (picture.isEmpty()) return {};
    return QIcon(new LineIconEngine(std::move(picture), palette.color(QPalette::Active, role),
                                    palette.color(QPalette::Disabled, role)));
}

QIcon ProductIcon() {
    RegisterPictures();
    return QIcon(QStringLiteral(":/qncomm/qncomm.svg"));
}

} // namespace qncomm
