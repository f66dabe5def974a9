#pragma once

#include <QDialog>

class QTableWidget;

namespace qncomm {
struct Examined;
}

namespace qnterm {

/// Why no printer answers: what it comes to, the one command that cures it, and what was found.
/// Changes nothing.
class WhyDialog final : public QDialog {
    Q_OBJECT

  public:
    explicit WhyDialog(const qncomm::Examined& examined, QWidget* parent = nullptr);

  signals:
    /// The user wants it looked at once more; the dialog has closed.
    void AgainWanted();

  private:
    QWidget* Cure(const QString& command);
    QTableWidget* Findings(const qncomm::Examined& examined);
};

} // namespace qnterm
