#include "ListLooks.h"

#include <QHeaderView>
#include <QTableView>

namespace qnterm {

void LookLikeAList(QTableView& view, int iStretched) {
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setShowGrid(false);
    view.setTabKeyNavigation(false);
    view.setWordWrap(false);
    view.verticalHeader()->hide();
    view.verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    QHeaderView& columns = *view.horizontalHeader();
    columns.setHighlightSections(false);
    columns.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    columns.setSectionResizeMode(QHeaderView::ResizeToContents);
    columns.setSectionResizeMode(iStretched, QHeaderView::Stretch);
}

} // namespace qnterm
