#include "qt/Charset.h"

#include <QStringDecoder>

#include <algorithm>

namespace qncomm {
namespace {

QByteArrayView ViewOf(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

} // namespace

QString FromLine(std::string_view sBytes) {
    QString text(static_cast<qsizetype>(sBytes.size()), Qt::Uninitialized);
    std::ranges::transform(sBytes, text.begin(),
                           [](char byte) { return QChar(CharacterOf(byte)); });
    return text;
}

std::string ToLine(const QString& sText) {
    const QStringView text(sText);
    return LineBytesOf({text.utf16(), static_cast<std::size_t>(text.size())});
}

QString FromHost(std::string_view sText) {
    return QString::fromUtf8(ViewOf(sText));
}

std::string ToHost(const QString& sText) {
    return sText.toStdString();
}

QString FromEither(std::string_view sText) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(ViewOf(sText));
    return decoder.hasError() ? FromLine(sText) : text;
}

} // namespace qncomm
