#pragma once

#include <QMessageBox>
#include <QString>

namespace qncomm {

// Texts of others (of a printer, a file, the system) where a window shows them. A place that shows
// plain text takes ShownText; one that guesses whether a text is markup, as tips do, takes
// TextOfATip; boxes are made by NewBox.

/// For plain text: controls but line ends, and the marks that end or turn a line around, stand
/// there as what they are: "\x1B", "\u202E".
QString ShownText(const QString& sText);

/// The same for a tip or another place that guesses: never taken for markup.
QString TextOfATip(const QString& sText);

/// A box whose text is shown as ShownText says and is never markup. The parent owns it, null for
/// nobody.
QMessageBox* NewBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText,
                    QMessageBox::StandardButtons buttons, QWidget* parent);

} // namespace qncomm
