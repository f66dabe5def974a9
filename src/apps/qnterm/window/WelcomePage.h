#pragma once

#include <QWidget>

namespace qnterm {

/// What stands in the middle of the window while no printer has been chosen.
class WelcomePage final : public QWidget {
    Q_OBJECT

  public:
    explicit WelcomePage(QWidget* parent = nullptr);

  signals:
    void ChooseWanted();
};

} // namespace qnterm
