#pragma once

#include <QLabel>

class QAbstractItemView;

namespace qnterm {

/// The text in the middle of a list while the list is empty. Belongs to the list, which has its
/// model.
class EmptyHint final : public QLabel {
    Q_OBJECT

  public:
    explicit EmptyHint(QAbstractItemView& view);

    /// Says this from now on; nothing for an empty text.
    void Say(const QString& sText);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Show();

    QAbstractItemView& mView;
};

} // namespace qnterm
