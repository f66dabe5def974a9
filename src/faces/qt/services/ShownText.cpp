#include "qt/ShownText.h"

#include "common/SafeText.h"
#include "qt/Charset.h"

#include <QTextDocument>

namespace qncomm {

QString ShownText(const QString& sText) {
    QStringList lines = sText.split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = FromHost(WithoutControls(ToHost(line)));
    return lines.join(QLatin1Char('\n'));
}

QString TextOfATip(const QString& sText) {
    QString text = ShownText(sText);
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

QMessageBox* NewBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText,
                    QMessageBox::StandardButtons buttons, QWidget* parent) {
    auto* box = new QMessageBox(icon, ShownText(sTitle), {}, buttons, parent);
    box->setTextFormat(Qt::PlainText);
    box->setText(ShownText(sText));
    return box;
}

} // namespace qncomm
