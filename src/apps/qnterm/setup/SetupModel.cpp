#include "SetupModel.h"

#include "qt/Charset.h"
#include "qt/ShownText.h"

#include <QFont>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

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

/// Makes the tree of paths; each section is known by its path, so that a path is found without
/// looking at its neighbours.
class SetupModel::Planter {
  public:
    explicit Planter(Node& root) : mRoot(root) {}

    /// The node that a key's path leads to; made where it is missing.
    Node& Place(const std::string& key) {
        Node* node = &mRoot;
        std::size_t from = 0;
        for (int level = 1; from <= key.size(); ++level) {
            const std::size_t comma = level < DeepestSection ? key.find(',', from) : key.npos;
            const std::size_t end = std::min(comma, key.size());
            Node*& known = mKnown[key.substr(0, end)];
            if (known == nullptr) known = &Add(*node, key.substr(from, end - from));
            node = known;
            from = end + 1;
        }
        return *node;
    }

  private:
    static Node& Add(Node& parent, const std::string& name) {
        auto child = std::make_unique<Node>();
        child->name = qncomm::FromLine(name);
        child->parent = &parent;
        child->row = static_cast<int>(parent.children.size());
        return *parent.children.emplace_back(std::move(child));
    }

    Node& mRoot;
    std::unordered_map<std::string, Node*> mKnown;
};

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
    Planter planter(*mRoot);
    for (const auto& item : items) {
        Node& node = planter.Place(item->Key);
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
    if (role == Qt::ToolTipRole && !node.key.isEmpty()) return qncomm::TextOfATip(node.key);
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
