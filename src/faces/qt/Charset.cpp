#include "qt/Charset.h"

#include "common/Windows1252.h"

#include <QStringDecoder>

#include <algorithm>

namespace qncomm {
namespace {

char LineByteOf(char16_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100))
        return static_cast<char>(character);
    const auto found = std::ranges::find(Windows1252Upper, character);
    return found == Windows1252Upper.end()
               ? '?'
               : static_cast<char>(0x80 + (found - Windows1252Upper.begin()));
}

QByteArrayView ViewOf(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

} // namespace

char16_t CharacterOf(char cByte) {
    const auto byte = static_cast<unsigned char>(cByte);
    return byte >= 0x80 && byte < 0xA0 ? Windows1252Upper[byte - 0x80] : char16_t{byte};
}

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
        if (!character.isLowSurrogate()) bytes += LineByteOf(character.unicode());
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
