#include "qt/Mnemonics.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QLabel>
#include <QTabBar>
#include <QVariant>

#include <functional>
#include <vector>

namespace qncomm {
namespace {

/// The keys a widget was given, one a caption; a blank is none.
constexpr const char* KeysProperty = "qncommKeys";
constexpr QChar NoKey = u' ';
constexpr QChar KeyMark = u'&';

/// One caption of a widget that may get a key.
struct KeyedCaption {
    QWidget* widget;
    int index;
    QString text;
    std::function<void(const QString&)> show;
};

void AddCaptions(QWidget& widget, std::vector<KeyedCaption>& captions) {
    if (auto* label = qobject_cast<QLabel*>(&widget); label != nullptr) {
        if (label->buddy() != nullptr)
            captions.push_back(
                {label, 0, label->text(), [label](const QString& s) { label->setText(s); }});
    } else if (auto* button = qobject_cast<QAbstractButton*>(&widget); button != nullptr) {
        captions.push_back(
            {button, 0, button->text(), [button](const QString& s) { button->setText(s); }});
    } else if (auto* strip = qobject_cast<QTabBar*>(&widget); strip != nullptr) {
        for (int i = 0; i < strip->count(); ++i)
            captions.push_back({strip, i, strip->tabText(i),
                                [strip, i](const QString& s) { strip->setTabText(i, s); }});
    }
}

std::vector<KeyedCaption> CaptionsIn(QWidget& part) {
    std::vector<KeyedCaption> captions;
    AddCaptions(part, captions);
    for (QWidget* child : part.findChildren<QWidget*>())
        AddCaptions(*child, captions);
    return captions;
}

QChar KeyIn(const QString& caption) {
    const qsizetype mark = caption.indexOf(KeyMark);
    return mark >= 0 && mark + 1 < caption.size() ? caption[mark + 1].toUpper() : NoKey;
}

/// A digit comes before letters: captions may differ in it alone.
QChar FreeKey(const QString& caption, const QString& taken) {
    for (const bool digits : {true, false})
        for (const QChar character : caption)
            if (character.unicode() < 0x80 && (digits ? character.isDigit() : character.isLetter())
                && !taken.contains(character.toUpper()))
                return character.toUpper();
    return NoKey;
}

void Remember(QWidget& widget, int index, QChar key) {
    QString keys = widget.property(KeysProperty).toString();
    if (keys.size() <= index) keys = keys.leftJustified(index + 1, NoKey);
    keys[index] = key;
    widget.setProperty(KeysProperty, keys);
}

} // namespace

QString GiveMnemonics(QWidget& part, const QString& taken) {
    QString keys = taken;
    const std::vector<KeyedCaption> captions = CaptionsIn(part);
    for (const KeyedCaption& caption : captions)
        if (const QChar key = KeyIn(caption.text); key != NoKey) keys += key;
    for (const KeyedCaption& caption : captions) {
        if (KeyIn(caption.text) != NoKey) continue;
        const QChar key = FreeKey(caption.text, keys);
        if (key == NoKey) continue;
        keys += key;
        Remember(*caption.widget, caption.index, key);
        caption.show(CaptionWithKey(*caption.widget, caption.text, caption.index));
    }
    return keys;
}

QString CaptionWithKey(const QWidget& widget, const QString& caption, int index) {
    const QString keys = widget.property(KeysProperty).toString();
    if (index >= keys.size() || keys[index] == NoKey || caption.contains(KeyMark)) return caption;
    const qsizetype place = caption.indexOf(keys[index], 0, Qt::CaseInsensitive);
    return place < 0 ? caption : QString(caption).insert(place, KeyMark);
}

} // namespace qncomm
