#pragma once

#include <QString>

class QWidget;

namespace qncomm {

/// Gives part and every field in it a key for use with Alt: labels with a buddy, buttons, boxes and
/// tabs. A caption with "&" keeps its key; the others get a digit or letter of theirs that is not
/// taken yet, in the order in which the widgets were made; one whose letters are all taken stays
/// without. taken: the keys of other parts that are shown together with this one.
/// Returns all that are taken now.
QString GiveMnemonics(QWidget& part, const QString& taken = {});

/// A caption as it is shown on the widget: with the key that GiveMnemonics chose, if any. index:
/// which tab of a strip.
QString CaptionWithKey(const QWidget& widget, const QString& caption, int index = 0);

} // namespace qncomm
