#pragma once

#include <QTreeView>

namespace qnterm {

/// A tree whose items are edited by their value, whichever of their columns has the keys or the
/// mouse.
class SetupTree final : public QTreeView {
    Q_OBJECT

  public:
    using QTreeView::QTreeView;

  protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
};

} // namespace qnterm
