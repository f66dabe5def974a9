#include "EmptyHint.h"

#include <QAbstractItemView>
#include <QEvent>

namespace qnterm {
namespace {

constexpr int Edge = 16; // pixels that stay free around the text

} // namespace

EmptyHint::EmptyHint(QAbstractItemView& view) : QLabel(view.viewport()), mView(view) {
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setMargin(Edge);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents); // menus and drops are the list's
    const QAbstractItemModel* model = view.model();
    for (const auto changed : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(model, changed, this, &EmptyHint::Show);
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyHint::Show);
    view.viewport()->installEventFilter(this);
    Show();
}

void EmptyHint::Say(const QString& sText) {
    setText(sText);
    Show();
}

void EmptyHint::Show() {
    const bool empty = mView.model()->rowCount() == 0 && !text().isEmpty();
    setVisible(empty);
    mView.setAccessibleDescription(empty ? text() : QString());
    setGeometry(mView.viewport()->rect());
}

bool EmptyHint::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) setGeometry(mView.viewport()->rect());
    return QLabel::eventFilter(watched, event);
}

} // namespace qnterm
