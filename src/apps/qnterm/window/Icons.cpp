#include "Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QString>
#include <QSvgRenderer>

// A static library's resources are known only once they are asked for by name; the macro does not
// work inside a namespace.
static void RegisterPictures() {
    Q_INIT_RESOURCE(qnterm);
}

namespace qnterm {
namespace {

/// Draws the picture anew for each size and palette.
class ThemedEngine final : public QIconEngine {
  public:
    explicit ThemedEngine(const QString& path) {
        RegisterPictures();
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) mSource = file.readAll();
    }

    QIconEngine* clone() const override { return new ThemedEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const QColor color = QGuiApplication::palette().color(group, role);
        QByteArray source = mSource;
        source.replace("currentColor", color.name().toLatin1());
        QSvgRenderer(source).render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect({}, size), mode, state);
        return picture;
    }

  private:
    QByteArray mSource;
};

} // namespace

QIcon ThemedIcon(const char* sName) {
    return QIcon(new ThemedEngine(QStringLiteral(":/qnterm/%1.svg").arg(QLatin1String(sName))));
}

} // namespace qnterm
