#pragma once

class QTableView;

namespace qnterm {

/// Makes a table look like a list of rows: no lines, one height, columns as wide as what they hold
/// and the stretched one taking the rest; the Tab key leaves it. The view has its model.
void LookLikeAList(QTableView& view, int iStretched);

} // namespace qnterm
