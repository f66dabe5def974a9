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
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(sText.size()));
    for (const QChar character : sText)
        if (!character.isLowSurrogate()) bytes += LineByteOf(character.unicode()).value_or('?');
    return bytes;
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
