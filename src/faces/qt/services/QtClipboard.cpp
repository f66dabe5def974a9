#include "qt/QtClipboard.h"

#include "common/Text.h"
#include "qt/Charset.h"

#include <QClipboard>
#include <QGuiApplication>

namespace qncomm {

std::string QtClipboard::Text() {
    const std::string text = ToLine(QGuiApplication::clipboard()->text(QClipboard::Clipboard));
    return ReplaceAll(ReplaceAll(text, CrLf, "\n"), "\n", CrLf);
}

void QtClipboard::SetText(std::string_view sText) {
    QGuiApplication::clipboard()->setText(FromLine(sText), QClipboard::Clipboard);
}

} // namespace qncomm
