#include "SetupTree.h"

#include "SetupModel.h"

namespace qnterm {

bool SetupTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    return QTreeView::edit(index.siblingAtColumn(SetupModel::ValueColumn), trigger, event);
}

} // namespace qnterm
