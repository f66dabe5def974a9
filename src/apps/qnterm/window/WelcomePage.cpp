#include "WelcomePage.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace qnterm {

WelcomePage::WelcomePage(QWidget* parent) : QWidget(parent) {
    auto* title = new QLabel(tr("No printer has been chosen yet"));
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    title->setFont(large);
    title->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(
        tr("Choose a port of this machine, one on the network, or the virtual printer, which needs "
           "nothing connected."));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);
    auto* button = new QPushButton(tr("&Choose a printer…"));
    button->setDefault(true);
    connect(button, &QPushButton::clicked, this, &WelcomePage::ChooseWanted);
    setFocusProxy(button);
    auto* layout = new QVBoxLayout(this);
    constexpr int gap = 12;
    layout->setSpacing(gap);
    layout->addStretch();
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(button, 0, Qt::AlignCenter);
    layout->addStretch();
}

} // namespace qnterm
