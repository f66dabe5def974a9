// A program module in the window: opened, uploaded, and its errors led back to its lines.

#include "PartsFixture.h"

#include "CodeView.h"
#include "ModuleBrowser.h"

#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class ModuleTest : public PartsFixture {
  protected:
    ModuleTest() {
        mBrowser.resize(460, 620);
        mBrowser.show();
    }

    void Open(const std::string& text) {
        mBrowser.OpenFile(QString::fromStdString(mFolder.Write("DEMO.PRG", text)));
    }
    CodeView& Code() { return *mBrowser.findChild<CodeView*>(); }
    QTableView& Errors() { return *mBrowser.findChild<QTableView*>(); }
    std::string Said() {
        std::string text;
        for (const QLabel* label : mBrowser.findChildren<QLabel*>())
            if (label->isVisible()) text += label->text().toStdString();
        return text;
    }

    ModuleBrowser mBrowser{mOperations};
};

TEST_F(ModuleTest, AGoodModuleIsSavedOnThePrinterUnderItsFilesName) {
    Open("PRINT \"one\"\r\nPRINT \"two\"\r\n");
    mBrowser.Upload();
    EXPECT_THAT(Said(), HasSubstr("No errors"));
    EXPECT_FALSE(Errors().isVisible());
    EXPECT_THAT(FilesOn("tmp:"), Contains("DEMO.PRG"));
}

TEST_F(ModuleTest, AnErrorLeadsToItsLine) {
    Open("PRINT \"one\"\r\nPRONT 2\r\nPRINT \"three\"\r\nGOTO\r\n");
    mBrowser.Upload();
    ASSERT_TRUE(Errors().isVisible());
    ASSERT_EQ(Errors().model()->rowCount(), 2);
    EXPECT_EQ(Errors().model()->index(0, 0).data().toInt(), 2);
    EXPECT_EQ(Errors().model()->index(0, 2).data().toString(), "PRONT 2");
    EXPECT_EQ(Code().textCursor().blockNumber(), 1);
    EXPECT_EQ(Code().MarkedLine(), 2);
    Errors().setFocus();
    QTest::keyClick(&Errors(), Qt::Key_Down);
    EXPECT_EQ(Code().textCursor().blockNumber(), 3);
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("DEMO.PRG")));
}

TEST_F(ModuleTest, TheTextAsItStandsIsWhatIsUploaded) {
    Open("PRONT 1\r\n");
    Code().setPlainText("PRINT 1");
    mBrowser.Upload();
    EXPECT_THAT(Said(), HasSubstr("No errors"));
}

TEST_F(ModuleTest, CharactersOfThePrinterSurviveOpeningAndSaving) {
    const std::string text = "PRINT \"Gr\xF6\xDF"
                             "e \x80\"\r\n";
    Open(text);
    EXPECT_THAT(Code().toPlainText().toStdString(), HasSubstr("Größe €"));
    Code().setFocus();
    QTest::keyClick(&Code(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(mFolder.Read("DEMO.PRG"), text);
}

TEST_F(ModuleTest, AnEmptyModuleIsNotSent) {
    TakeSent();
    mBrowser.Upload();
    EXPECT_THAT(Said(), HasSubstr("no text"));
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(ModuleTest, AFileThatIsNotThereIsSaidSo) {
    mBrowser.OpenFile(QString::fromStdString(mFolder.File("none.prg")));
    EXPECT_THAT(Said(), HasSubstr("none.prg"));
}

} // namespace
} // namespace qncomm::testing
