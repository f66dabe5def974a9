#include "testing/face/Pictures.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>

namespace qncomm::testing {
namespace {

/// The scale stands in the name, so that runs at two scales keep both.
QString FileFor(const QString& name) {
    const QString folder =
        qEnvironmentVariable("QN_ARTEFACTS", QDir::current().filePath(u"build/artefacts"_qs));
    QDir().mkpath(folder);
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR");
    return QDir(folder).filePath(name + (scale.isEmpty() ? scale : u"@"_qs + scale) + u".png"_qs);
}

} // namespace

void SavePicture(const QImage& picture, const QString& name) {
    EXPECT_FALSE(picture.isNull());
    EXPECT_TRUE(picture.save(FileFor(name)));
}

void SavePicture(QWidget& widget, const QString& name) {
    SavePicture(widget.grab().toImage(), name);
}

QPalette DarkPalette() {
    QPalette palette(QColor(0x31, 0x36, 0x3b), QColor(0x2a, 0x2e, 0x32));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1e, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x7f, 0xb5));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0x45, 0x4c, 0x54));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x7a, 0x80, 0x86));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x7a, 0x80, 0x86));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x7a, 0x80, 0x86));
    return palette;
}

DarkDesktop::DarkDesktop() : mFormer(QApplication::palette()) {
    QApplication::setPalette(DarkPalette());
    QCoreApplication::processEvents(); // the widgets hear of it from the event loop
}

DarkDesktop::~DarkDesktop() {
    QApplication::setPalette(mFormer);
    QCoreApplication::processEvents();
}

} // namespace qncomm::testing
