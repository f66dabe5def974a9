#include "WhyDialog.h"

#include "diagnosis/Diagnosis.h"
#include "qt/Charset.h"
#include "qt/Mnemonics.h"
#include "qt/ShownText.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace qnterm {
namespace {

constexpr QSize UsualSize{760, 520};

} // namespace

WhyDialog::WhyDialog(const qncomm::Examined& examined, QWidget* parent) : QDialog(parent) {
    const qncomm::Verdict verdict = qncomm::VerdictOf(examined);
    setWindowTitle(tr("Why does no printer answer?"));
    auto* text = new QLabel(qncomm::ShownText(qncomm::FromEither(verdict.text)));
    QFont large = text->font();
    large.setBold(true);
    text->setFont(large);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setAccessibleName(tr("Verdict"));
    QTableWidget* findings = Findings(examined);
    auto* found = new QLabel(tr("What was &found:"));
    found->setBuddy(findings);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    const auto* again = buttons->addButton(tr("&Look Again"), QDialogButtonBox::ActionRole);
    connect(again, &QPushButton::clicked, this, [this] {
        accept();
        emit AgainWanted();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(Cure(qncomm::FromEither(verdict.command)));
    layout->addWidget(found);
    layout->addWidget(findings, 1);
    layout->addWidget(buttons);
    qncomm::GiveMnemonics(*this);
    resize(UsualSize);
    buttons->button(QDialogButtonBox::Close)->setFocus();
}

QWidget* WhyDialog::Cure(const QString& command) {
    auto* row = new QWidget;
    auto* line = new QLineEdit(command);
    line->setReadOnly(true);
    line->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    line->setAccessibleName(tr("What cures it"));
    auto* label = new QLabel(tr("What c&ures it:"));
    label->setBuddy(line);
    auto* copy = new QPushButton(tr("C&opy"));
    copy->setAutoDefault(false);
    copy->setToolTip(tr("Put the command on the clipboard"));
    connect(copy, &QPushButton::clicked, this,
            [command] { QApplication::clipboard()->setText(command); });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(line, 1);
    layout->addWidget(copy);
    return row;
}

QTableWidget* WhyDialog::Findings(const qncomm::Examined& examined) {
    const qncomm::Checks checks = qncomm::ChecksOf(examined);
    auto* table = new QTableWidget(static_cast<int>(checks.size()), 3);
    table->setAccessibleName(tr("What was found"));
    table->setHorizontalHeaderLabels({tr("Looked at"), tr("Result"), tr("What was seen")});
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setShowGrid(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft);
    for (int row = 0; row < table->rowCount(); ++row) {
        const qncomm::Check& check = checks[static_cast<std::size_t>(row)];
        const QString texts[] = {QString::fromStdString(check.name),
                                 QString::fromLatin1(qncomm::NameOf(check.result)),
                                 qncomm::ShownText(qncomm::FromEither(check.text))};
        QFont font = table->font();
        font.setBold(check.result == qncomm::CheckResult::Fail);
        for (int column = 0; column < table->columnCount(); ++column) {
            auto* item = new QTableWidgetItem(texts[column]);
            item->setFont(font);
            item->setToolTip(qncomm::TextOfATip(texts[column]));
            table->setItem(row, column, item);
        }
    }
    return table;
}

} // namespace qnterm
