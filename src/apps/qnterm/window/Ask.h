#pragma once

#include <QList>
#include <QString>

#include <functional>

class QWidget;

namespace qnterm {

// Questions to the user. Each shows its dialog and returns at once; what follows an answer is
// called when it comes, and never for a dialog that was left.

/// Asks for a line of text; sInitial is selected.
void AskText(QWidget* parent, const QString& sTitle, const QString& sLabel, const QString& sInitial,
             const std::function<void(const QString&)>& answered);

/// Asks before something that cannot be undone; sButton says what is done then.
void AskBefore(QWidget* parent, const QString& sText, const QString& sDetail,
               const QString& sButton, const std::function<void()>& agreed);

/// What a person may choose, and what is done then.
struct Choice {
    QString button;
    std::function<void()> chosen;
};

/// Tells something and offers what can be done about it, or nothing.
void AskWhatNow(QWidget* parent, const QString& sTitle, const QString& sText,
                const QList<Choice>& choices);

/// Asks for files to open, one or several.
void AskOpenFile(QWidget* parent, const QString& sTitle, const QString& sFilter,
                 const std::function<void(const QString&)>& chosen);
void AskOpenFiles(QWidget* parent, const QString& sTitle, const QString& sFilter,
                  const std::function<void(const QStringList&)>& chosen);

/// Asks where to save; the dialog itself asks before a file is replaced.
void AskSaveFile(QWidget* parent, const QString& sTitle, const QString& sName,
                 const std::function<void(const QString&)>& chosen);

/// Asks for a folder to save in.
void AskFolder(QWidget* parent, const QString& sTitle,
               const std::function<void(const QString&)>& chosen);

} // namespace qnterm
