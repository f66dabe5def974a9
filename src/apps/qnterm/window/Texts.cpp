#include "Texts.h"

#include <QLocale>

namespace qnterm {

QString SizeText(std::int64_t lBytes) {
    constexpr std::int64_t plainBelow = 1024;
    if (lBytes < plainBelow) return QStringLiteral("%1 bytes").arg(lBytes);
    return QLocale().formattedDataSize(lBytes, 1, QLocale::DataSizeTraditionalFormat);
}

} // namespace qnterm
