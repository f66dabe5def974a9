#include "SetupModel.h"

#include "common/Text.h"
#include "qt/Charset.h"

#include <QFont>

#include <algorithm>

namespace qnterm {

struct SetupModel::Node {
    QString name;
    QString value;
    QString key; ///< empty for a section
    Node* parent = nullptr;
    int row = 0;
    std::vector<std::unique_ptr<Node>> children;
};

SetupModel::SetupModel(QObject* parent)
    : QAbstractItemModel(parent), mRoot(std::make_unique<Node>()) {}

SetupModel::~SetupModel() = default;

/// The node that a key's path leads to; made where it is missing.
SetupModel::Node& SetupModel::Place(const std::string& key) {
    Node* node = mRoot.get();
    for (const std::string& part : qncomm::SplitKeepEmpty(key, ",")) {
        const QString name = qncomm::FromLine(part);
        const auto known = std::ranges::find_if(
            node->children, [&](const auto& child) { return child->name == name; });
        if (known != node->children.end()) {
            node = known->get();
            continue;
        }
        auto child = std::make_unique<Node>();
        child->name = name;
        child->parent = node;
        child->row = static_cast<int>(node->children.size());
        node->children.push_back(std::move(child));
        node = node->children.back().get();
    }
    return *node;
}

bool SetupModel::HasSameKeys(const qncomm::PrinterSetup& items) const {
    return items.Count() == mItems.size() && !mItems.empty()
           && std::equal(mItems.begin(), mItems.end(), items.begin(),
                         [](const Node* node, const auto& item) {
                             return node->key == qncomm::FromLine(item->Key);
                         });
}

void SetupModel::TakeValues(const qncomm::PrinterSetup& items) {
    auto node = mItems.begin();
    for (const auto& item : items) {
        const QString value = qncomm::FromLine(item->Value);
        Node& own = **node++;
        if (own.value == value) continue;
        own.value = value;
        const QModelIndex at = createIndex(own.row, ValueColumn, &own);
        emit dataChanged(at, at);
    }
}

void SetupModel::SetItems(const qncomm::PrinterSetup& items) {
    if (HasSameKeys(items)) {
        TakeValues(items);
        return;
    }
    beginResetModel();
    mRoot = std::make_unique<Node>();
    mItems.clear();
    for (const auto& item : items) {
        Node& node = Place(item->Key);
        node.key = qncomm::FromLine(item->Key);
        node.value = qncomm::FromLine(item->Value);
        mItems.push_back(&node);
    }
    endResetModel();
}

void SetupModel::Clear() {
    SetItems({});
}

QModelIndex SetupModel::ValueIndex(const QString& sKey) const {
    const auto found = std::ranges::find(mItems, sKey, &Node::key);
    return found == mItems.end() ? QModelIndex() : createIndex((*found)->row, ValueColumn, *found);
}

const SetupModel::Node& SetupModel::NodeOf(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<const Node*>(index.constInternalPointer()) : *mRoot;
}

QModelIndex SetupModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column,
                       NodeOf(parent).children.at(static_cast<std::size_t>(row)).get());
}

QModelIndex SetupModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) return {};
    Node* above = NodeOf(child).parent;
    return above == nullptr || above == mRoot.get() ? QModelIndex()
                                                    : createIndex(above->row, NameColumn, above);
}

int SetupModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > NameColumn) return 0;
    return static_cast<int>(NodeOf(parent).children.size());
}

int SetupModel::columnCount(const QModelIndex& /*parent*/) const {
    return ColumnCount;
}

QVariant SetupModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Node& node = NodeOf(index);
    if (role == KeyRole) return node.key;
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return index.column() == NameColumn ? node.name : node.value;
    if (role == Qt::ToolTipRole && !node.key.isEmpty()) return node.key;
    return {};
}

QVariant SetupModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return section == NameColumn ? tr("Item") : tr("Value");
}

Qt::ItemFlags SetupModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    const bool value = index.column() == ValueColumn && !NodeOf(index).key.isEmpty();
    return value ? flags | Qt::ItemIsEditable : flags;
}

bool SetupModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const Node& node = NodeOf(index);
    if (role != Qt::EditRole || index.column() != ValueColumn || node.key.isEmpty()) return false;
    const QString text = value.toString().trimmed();
    if (text == node.value) return false;
    emit ChangeWanted(node.key, text);
    return false; // it stands here when the printer has it
}

} // namespace qnterm
