#pragma once

#include <QByteArray>
#include <QImage>

namespace qnterm {

/// The picture in a PCX file of one bit per dot, which is what the printer takes; a null image for
/// any other. Black is ink. Reads within the bounds of the bytes whatever they say.
QImage DecodePcx(const QByteArray& bytes);

} // namespace qnterm
