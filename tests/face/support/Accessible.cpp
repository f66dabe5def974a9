#include "support/Accessible.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeySequence>
#include <QLabel>
#include <QTabBar>
#include <QTest>

#include <algorithm>
#include <set>

namespace qncomm::testing {
namespace {

/// More stops than any window here has.
constexpr int EndlessRound = 100;

QStringList CaptionsOf(QWidget& widget) {
    if (auto* label = qobject_cast<QLabel*>(&widget); label != nullptr && label->buddy() != nullptr)
        return {label->text()};
    if (auto* button = qobject_cast<QAbstractButton*>(&widget); button != nullptr)
        return {button->text()};
    QStringList captions;
    if (auto* strip = qobject_cast<QTabBar*>(&widget); strip != nullptr)
        for (int tab = 0; tab < strip->count(); ++tab)
            captions << strip->tabText(tab);
    return captions;
}

bool HasLetters(const QString& caption) {
    return std::ranges::any_of(caption, [](QChar c) { return c.isLetterOrNumber(); });
}

} // namespace

SpokenField Spoken(QWidget& widget) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&widget);
    if (spoken == nullptr) return {"", QAccessible::NoRole};
    QString name = spoken->text(QAccessible::Name);
    // The name of a list is its entry; readers take what it is for from its caption.
    if (spoken->role() == QAccessible::ComboBox) {
        const auto captions = spoken->relations(QAccessible::Label);
        name = captions.isEmpty() ? QString() : captions.first().first->text(QAccessible::Name);
        if (name.endsWith(u':')) name.chop(1);
    }
    return {name.toStdString(), spoken->role()};
}

std::string FocusName() {
    QWidget* focus = QApplication::focusWidget();
    return focus != nullptr ? Spoken(*focus).name : std::string();
}

std::vector<std::string> CaptionsWithoutKey(QWidget& window) {
    std::vector<std::string> without;
    std::set<QString> keys;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible()) continue;
        for (const QString& caption : CaptionsOf(*widget)) {
            const QString key = QKeySequence::mnemonic(caption).toString();
            if (HasLetters(caption) && (key.isEmpty() || !keys.insert(key).second))
                without.push_back(caption.toStdString());
        }
    }
    return without;
}

std::vector<std::string> TabRound(QWidget& window) {
    std::vector<std::string> names;
    const QWidget* start = QApplication::focusWidget();
    for (int stops = 0; stops < EndlessRound; ++stops) {
        names.push_back(FocusName());
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &window, Qt::Key_Tab);
        if (QApplication::focusWidget() == start) break;
    }
    return names;
}

} // namespace qncomm::testing
