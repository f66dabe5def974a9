#include "testing/face/Accessible.h"

#include "ElidedLabel.h"

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

/// Cells and headers have their text for a name, and may have none.
bool IsEntry(QAccessible::Role role) {
    static const std::set<QAccessible::Role> entries{
        QAccessible::Cell,         QAccessible::ListItem,  QAccessible::TreeItem,
        QAccessible::ColumnHeader, QAccessible::RowHeader,
    };
    return entries.contains(role);
}

void AddStops(const QAccessibleInterface& place, FocusStops& stops) {
    if (place.state().invisible || IsEntry(place.role())) return;
    if (place.state().focusable) {
        ++stops.count;
        auto* widget = qobject_cast<QWidget*>(place.object());
        const std::string name =
            widget != nullptr ? Spoken(*widget).name : place.text(QAccessible::Name).toStdString();
        if (name.empty() || place.role() == QAccessible::NoRole
            || place.role() == QAccessible::Client)
            stops.nameless.emplace_back(widget != nullptr ? widget->metaObject()->className()
                                                          : "no widget");
    }
    for (int child = 0; child < place.childCount(); ++child)
        if (const QAccessibleInterface* each = place.child(child)) AddStops(*each, stops);
}

/// Whether a text that is not made to be cut has less room than it needs.
bool IsCut(const QWidget& widget) {
    if (dynamic_cast<const ElidedLabel*>(&widget) != nullptr
        || widget.sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
        return false;
    if (widget.hasHeightForWidth()) return widget.heightForWidth(widget.width()) > widget.height();
    const QSize needed = widget.minimumSizeHint().boundedTo(widget.sizeHint());
    return needed.width() > widget.width() || needed.height() > widget.height();
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

FocusStops StopsOf(QWidget& window) {
    FocusStops stops;
    const QAccessibleInterface* top = QAccessible::queryAccessibleInterface(&window);
    if (top != nullptr) AddStops(*top, stops);
    return stops;
}

std::vector<std::string> CutCaptions(QWidget& window) {
    std::vector<std::string> cut;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<QLabel*>(widget);
        const auto* button = qobject_cast<QAbstractButton*>(widget);
        const QString text = label != nullptr    ? label->text()
                             : button != nullptr ? button->text()
                                                 : QString();
        if (!widget->visibleRegion().isEmpty() && HasLetters(text) && IsCut(*widget))
            cut.push_back(text.toStdString());
    }
    return cut;
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
