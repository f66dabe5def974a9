// What the system asks of the desktop: boxes, questions, the clipboard, the pointer.

#include "common/Pointer.h"
#include "qt/BusyCursor.h"
#include "qt/QtServices.h"
#include "qt/ShownText.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QTest>
#include <QTextDocument>

#include <memory>

namespace qncomm {
namespace {

using testing::OnModal;
using testing::Spoken;

class Services : public ::testing::Test {
  protected:
    QWidget mHost;
    QtServices mServices{&mHost};
};

void Press(Qt::Key key, Qt::KeyboardModifiers held = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, held);
}

using MessageBoxes = Services;

TEST_F(MessageBoxes, ShowTextIconAndTitle) {
    OnModal([](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.windowTitle(), u"Labels"_qs);
        EXPECT_EQ(box.text(), u"File '\u00E4' not found.\nTry <another>."_qs);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        testing::SavePicture(window, u"message-box"_qs);
        Press(Qt::Key_Return);
    });
    const MsgBoxResult result =
        mServices.desktop.ShowMsgBox({.text = "File '\xC3\xA4' not found.\r\nTry <another>.",
                                      .icon = MsgBoxIcon::Exclamation,
                                      .title = "Labels"});
    EXPECT_EQ(result, MsgBoxResult::Ok);
}

TEST_F(MessageBoxes, TakeBytesOfTheLineAndTheSystemsNameForATitle) {
    OnModal([](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text(), u"It\u00B4s gone"_qs);
        EXPECT_EQ(box.windowTitle().toStdString(), ProductName);
        Press(Qt::Key_Escape);
    });
    EXPECT_EQ(mServices.desktop.ShowMsgBox({.text = "\r\nIt\xB4s gone", .title = {}}),
              MsgBoxResult::Ok);
}

TEST_F(MessageBoxes, AnswerByKeyByEscapeAndByTheCloseBox) {
    const MsgBox question{.text = "Overwrite existing file?",
                          .buttons = MsgBoxButtons::YesNo,
                          .icon = MsgBoxIcon::Question,
                          .title = {}};
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); });
    EXPECT_EQ(mServices.desktop.ShowMsgBox(question), MsgBoxResult::Yes);
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(mServices.desktop.ShowMsgBox(question), MsgBoxResult::No);
    OnModal([](QWidget& window) { window.close(); });
    EXPECT_EQ(mServices.desktop.ShowMsgBox(question), MsgBoxResult::No);

    const MsgBox offer{.text = "Go on?", .buttons = MsgBoxButtons::OkCancel, .title = {}};
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(mServices.desktop.ShowMsgBox(offer), MsgBoxResult::Cancel);
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); });
    EXPECT_EQ(mServices.desktop.ShowMsgBox(offer), MsgBoxResult::Ok);
}

TEST_F(MessageBoxes, WhoseWindowGoesAreAnsweredAsIfClosed) {
    auto host = std::make_unique<QWidget>();
    QtDesktop desktop(host.get());
    OnModal([&](QWidget&) { host.reset(); });
    EXPECT_EQ(desktop.ShowMsgBox({.text = "Sure?", .buttons = MsgBoxButtons::YesNo, .title = {}}),
              MsgBoxResult::No);
}

/// What the log got, by category.
QString& Logged() {
    static QString lines;
    return lines;
}

TEST_F(MessageBoxes, TheLogHasACategoryOfItsOwn) {
    QLoggingCategory::setFilterRules(u"qncomm.debug=true"_qs);
    const auto former = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext& context, const QString& line) {
            Logged() += QLatin1String(context.category) + u": "_qs + line;
        });
    mServices.desktop.Log("refused: 'x\xB4'");
    qInstallMessageHandler(former);
    QLoggingCategory::setFilterRules({});
    EXPECT_EQ(Logged(), u"qncomm: refused: 'x\u00B4'"_qs);
}

using InputQuestions = Services;

TEST_F(InputQuestions, OfferTheFormerAnswerAndReturnBytesOfTheLine) {
    OnModal([](QWidget& window) {
        auto& dialog = dynamic_cast<QInputDialog&>(window);
        EXPECT_EQ(dialog.windowTitle(), u"Input new value..."_qs);
        EXPECT_EQ(dialog.labelText(), u"Gr\u00F6\u00DFe?"_qs);
        auto& edit = *window.findChild<QLineEdit*>();
        EXPECT_EQ(edit.selectedText(), u"12 \u20AC"_qs);
        EXPECT_EQ(edit.placeholderText(), QString());
        testing::SavePicture(window, u"input-box"_qs);
        QTest::sendKeyEvent(QTest::Click, &edit, Qt::Key_unknown, u"\u00FC5"_qs, Qt::NoModifier);
        Press(Qt::Key_Return);
    });
    EXPECT_EQ(mServices.inputs.ShowInputBox({.prompt = "Gr\xF6\xDF"
                                                       "e?",
                                             .title = "Input new value...",
                                             .answer = "12 \x80"}),
              "\xFC"
              "5");
}

TEST_F(InputQuestions, ShowAPromptAsItIsWritten) {
    OnModal([](QWidget& window) {
        auto& label = *window.findChild<QLabel*>();
        EXPECT_EQ(label.textFormat(), Qt::PlainText);
        EXPECT_EQ(Spoken(label).name, "Size & <CR>?");
        testing::SavePicture(window, u"input-box-marks"_qs);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    mServices.inputs.ShowInputBox({.prompt = "Size & <CR>?", .title = "t", .answer = ""});
}

TEST_F(InputQuestions, CancelledAnswerNothing) {
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(mServices.inputs.ShowInputBox({.prompt = "?", .title = "t", .answer = "kept"}), "");
}

using Clipboards = Services;

TEST_F(Clipboards, LoneLineFeedsBecomeCrLfAndOthersStay) {
    QGuiApplication::clipboard()->setText(u"a\nb\r\nc\n\n\u20AC\u4E2D\rd"_qs);
    EXPECT_EQ(mServices.clipboard.Text(), "a\r\nb\r\nc\r\n\r\n\x80?\rd");
    QGuiApplication::clipboard()->clear();
    EXPECT_EQ(mServices.clipboard.Text(), "");
}

TEST_F(Clipboards, TheScreensTextIsPutThereAndTheSelectionLeftAlone) {
    QGuiApplication::clipboard()->setText(u"marked"_qs, QClipboard::Selection);
    mServices.clipboard.SetText("\x80 5\r\nOk");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"\u20AC 5\r\nOk"_qs);
    EXPECT_EQ(QGuiApplication::clipboard()->text(QClipboard::Selection), u"marked"_qs);
}

using BusyPointers = Services;

bool ShowsBusy() {
    const QCursor* cursor = QGuiApplication::overrideCursor();
    return cursor != nullptr && cursor->shape() == Qt::WaitCursor;
}

TEST_F(BusyPointers, AreShownAsTheWaitCursorAndTakenBack) {
    EXPECT_FALSE(ShowsBusy());
    {
        const BusyPointer busy;
        EXPECT_TRUE(ShowsBusy());
        const BusyPointer nested;
        EXPECT_TRUE(ShowsBusy());
    }
    EXPECT_FALSE(ShowsBusy());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(BusyPointers, LetABoxHaveItsOwnCursorAndStayBusy) {
    const BusyPointer busy;
    OnModal([](QWidget& window) {
        EXPECT_FALSE(ShowsBusy());
        EXPECT_EQ(Pointer::Screen().Shape(), PointerHourglass);
        QTest::keyClick(&window, Qt::Key_Return);
    });
    mServices.desktop.ShowMsgBox({.text = "No printer.", .title = {}});
    EXPECT_TRUE(ShowsBusy());
}

// -- Texts of others

TEST(ShownTexts, ShowControlsAndMarksThatTurnATextAround) {
    EXPECT_EQ(ShownText(u"a\u202Egnp.\u2066\x1B[2J\x7F\u009B\nb"_qs).toStdString(),
              "a\\u202Egnp.\\u2066\\x1B[2J\\x7F\\x9B\nb");
    EXPECT_EQ(ShownText(u"\u00E4 <b>"_qs), u"\u00E4 <b>"_qs);
}

TEST(ShownTexts, AreNoMarkupInATip) {
    EXPECT_EQ(TextOfATip(u"LABEL,WIDTH"_qs), u"LABEL,WIDTH"_qs);
    EXPECT_EQ(TextOfATip(u"a < b"_qs), u"a < b"_qs);
    const QString tip = TextOfATip(u"<img src='file:///etc/passwd'><b>x\u202E</b>"_qs);
    EXPECT_TRUE(Qt::mightBeRichText(tip));
    QTextDocument shown;
    shown.setHtml(tip);
    EXPECT_EQ(shown.toPlainText().toStdString(), "<img src='file:///etc/passwd'><b>x\\u202E</b>");
}

TEST(ShownTexts, AreNoMarkupInABoxEither) {
    const std::unique_ptr<QMessageBox> box(
        NewBox(QMessageBox::Warning, u"t\u202E"_qs, u"<b>x</b>\x1B"_qs, QMessageBox::Ok, nullptr));
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    EXPECT_EQ(box->text().toStdString(), "<b>x</b>\\x1B");
    EXPECT_EQ(box->windowTitle().toStdString(), "t\\u202E");
}

TEST_F(BusyPointers, OfTwoControlsAreOne) {
    const QtServices other(&mHost);
    {
        const BusyPointer busy;
        EXPECT_TRUE(ShowsBusy());
        const BusyCursor::Pause pause;
        EXPECT_FALSE(ShowsBusy());
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

} // namespace
} // namespace qncomm
