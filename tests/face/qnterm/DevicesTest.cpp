// The printer's storage in the window: lists, and what is done with files, fonts and images.

#include "PartsFixture.h"
#include "testing/printer/TestPictures.h"

#include "DeviceBrowser.h"
#include "FileView.h"
#include "PreviewPane.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <QDropEvent>

#include <algorithm>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;

class DevicesTest : public PartsFixture {
  protected:
    DevicesTest() {
        mBrowser.resize(460, 700);
        mBrowser.show();
        mBrowser.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&mBrowser));
        mBrowser.Refresh();
        Settle();
    }

    FileView& Files() { return *mBrowser.findChild<FileView*>(); }
    PreviewPane& Preview() { return *mBrowser.findChild<PreviewPane*>(); }

    static std::vector<std::string> Column(const QAbstractItemView& view, int column) {
        std::vector<std::string> texts;
        for (int row = 0; row < view.model()->rowCount(); ++row)
            texts.push_back(view.model()->index(row, column).data().toString().toStdString());
        return texts;
    }

    QTableView& DeviceTable() {
        for (auto* table : mBrowser.findChildren<QTableView*>())
            if (qobject_cast<FileView*>(table) == nullptr) return *table;
        throw std::string("no table of devices");
    }

    void SelectDevice(const QString& name) {
        QAbstractItemModel& model = *DeviceTable().model();
        const auto found =
            model.match(model.index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
        ASSERT_FALSE(found.isEmpty()) << name.toStdString();
        DeviceTable().setCurrentIndex(found.front());
        Settle();
    }

    void SelectFile(const QString& name) {
        QAbstractItemModel& model = *Files().model();
        const auto found =
            model.match(model.index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
        ASSERT_FALSE(found.isEmpty()) << name.toStdString();
        Files().selectRow(found.front().row());
        Settle();
    }

    void Drop(const std::string& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Files().viewport(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Files().viewport(), &drop);
        Settle();
    }

    void Delete(const QString& name) {
        SelectFile(name);
        QTest::keyClick(&Files(), Qt::Key_Delete);
        Agree();
    }

    SentFiles mSent{mSettings};
    DeviceBrowser mBrowser{mOperations, mSent};
};

TEST_F(DevicesTest, ThePrintersDevicesAreListedWithTheirRoom) {
    EXPECT_THAT(Column(DeviceTable(), 0),
                ElementsAre("c:", "tmp:", "card1:", "rom:", "Fonts", "Images"));
    EXPECT_THAT(Column(DeviceTable(), 1).front(), "3");
    EXPECT_THAT(Column(DeviceTable(), 3).front(), HasSubstr("8"));
    EXPECT_THAT(Column(Files(), 0), ElementsAre("LAYOUT.LBL", "PRICES.DAT", "STARTUP.PRG"));
}

TEST_F(DevicesTest, EachListIsReadOnceHoweverOftenItIsRefreshed) {
    auto commands = TakeCommands(); // of the first reading
    EXPECT_EQ(std::ranges::count(commands, "FILES\"c:\""), 1);
    EXPECT_EQ(std::ranges::count(commands, "FILES\"tmp:\""), 1);
    mBrowser.Refresh();
    commands = TakeCommands();
    EXPECT_EQ(std::ranges::count(commands, "FILES\"c:\""), 1);
    EXPECT_EQ(std::ranges::count(commands, "FILES\"tmp:\""), 1);
    EXPECT_EQ(std::ranges::count(commands, "FONTS"), 1);
    EXPECT_EQ(std::ranges::count(commands, "IMAGES"), 1);
}

TEST_F(DevicesTest, FilesAreSortedByTheirSizeAndNotByItsText) {
    mFolder.Write("BIG.DAT", std::string(1200, 'x'));
    Drop(mFolder.File("BIG.DAT"));
    Files().sortByColumn(1, Qt::DescendingOrder);
    EXPECT_EQ(Column(Files(), 0).front(), "BIG.DAT");
}

TEST_F(DevicesTest, FontsAreShownWithoutSizesAndImagesWith) {
    SelectDevice("Fonts");
    EXPECT_TRUE(Files().isColumnHidden(1));
    EXPECT_TRUE(Preview().isVisible());
    SelectDevice("Images");
    EXPECT_FALSE(Files().isColumnHidden(1));
    EXPECT_FALSE(Preview().isVisible()) << "there is none to be seen";
}

TEST_F(DevicesTest, ADroppedFileIsSentToTheShownDevice) {
    const std::string path = mFolder.Write("HELLO.TXT", "PRINT 1\r\n");
    SelectDevice("tmp:");
    Drop(path);
    EXPECT_THAT(mFailures, IsEmpty());
    EXPECT_THAT(Column(Files(), 0), ElementsAre("HELLO.TXT"));
    EXPECT_THAT(FilesOn("tmp:"), ElementsAre("HELLO.TXT"));
}

TEST_F(DevicesTest, AFileIsDeletedOnlyWhenTheUserAgrees) {
    SelectFile("PRICES.DAT");
    QTest::keyClick(&Files(), Qt::Key_Delete);
    auto* box = OpenDialog<QMessageBox>();
    ASSERT_NE(box, nullptr);
    QTest::keyClick(box, Qt::Key_Escape);
    Settle();
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
    QTest::keyClick(&Files(), Qt::Key_Delete);
    Agree();
    EXPECT_THAT(FilesOn("c:"), Not(Contains("PRICES.DAT")));
    EXPECT_THAT(Column(Files(), 0), Not(Contains("PRICES.DAT")));
}

TEST_F(DevicesTest, AListOfAFormerPrinterDeletesNothingOnAnotherUntilItIsReadAnew) {
    ChangePort();
    TakeSent();
    Delete("PRICES.DAT");
    EXPECT_THAT(mFailures, ElementsAre(HasSubstr("Delete c:PRICES.DAT: This was read from another "
                                                 "printer, or before the connection changed. "
                                                 "Nothing was done")));
    EXPECT_THAT(TakeSent(), Not(HasSubstr("KILL")));
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
    mFailures.clear();
    mBrowser.Refresh();
    Delete("PRICES.DAT");
    EXPECT_THAT(mFailures, IsEmpty());
    EXPECT_THAT(FilesOn("c:"), Not(Contains("PRICES.DAT")));
    ChangePort("1");
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT")) << "the printer that was shown first";
}

TEST_F(DevicesTest, WhatIsAskedBeforeThePortChangesIsNotDoneBehindIt) {
    SelectFile("PRICES.DAT");
    QTest::keyClick(&Files(), Qt::Key_Delete);
    ChangePort();
    Agree();
    EXPECT_EQ(mFailures.size(), 1U);
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
}

TEST_F(DevicesTest, AFileIsNotSentToADeviceOfAFormerPrinter) {
    const std::string path = mFolder.Write("HELLO.TXT", "PRINT 1\r\n");
    ChangePort();
    Drop(path);
    EXPECT_EQ(mFailures.size(), 1U);
    EXPECT_THAT(FilesOn("c:"), Not(Contains("HELLO.TXT")));
    Drop(path); // the list has been read anew
    EXPECT_THAT(FilesOn("c:"), Contains("HELLO.TXT"));
}

TEST_F(DevicesTest, AFileIsRenamedInPlaceAndToAnotherDevice) {
    SelectFile("PRICES.DAT");
    QTest::keyClick(&Files(), Qt::Key_F2);
    auto* dialog = OpenDialog<QInputDialog>();
    ASSERT_NE(dialog, nullptr);
    dialog->setTextValue("tmp:P.DAT");
    dialog->accept();
    Settle();
    EXPECT_THAT(FilesOn("c:"), Not(Contains("PRICES.DAT")));
    EXPECT_THAT(FilesOn("tmp:"), ElementsAre("P.DAT"));
}

TEST_F(DevicesTest, AFileIsSavedOnThisMachineByteForByte) {
    const std::string content = "a\r\nb\r\n";
    Drop(mFolder.Write("BACK.TXT", content));
    const DeviceListing c{.name = "c:",
                          .kind = DeviceKind::Files,
                          .files = {},
                          .used = {},
                          .free = {},
                          .generation = Control().Generation()};
    mBrowser.Actions().Save(c, {"BACK.TXT"});
    auto* dialog = OpenDialog<QFileDialog>();
    ASSERT_NE(dialog, nullptr);
    emit dialog->fileSelected(QString::fromStdString(mFolder.File("got.txt")));
    dialog->close();
    Settle();
    EXPECT_EQ(mFolder.Read("got.txt"), content);
}

TEST_F(DevicesTest, AnImageThatWasSentFromHereIsShown) {
    const std::string path = mFolder.Write("LOGO.PCX", qncomm::testing::TestPcx(48, 20));
    SelectDevice("Images");
    Drop(path);
    EXPECT_THAT(mFailures, IsEmpty());
    SelectFile("LOGO.PCX");
    EXPECT_EQ(Preview().Picture().size(), QSize(48, 20));
    EXPECT_THAT(Preview().Text().toStdString(), HasSubstr("48 × 20 dots"));
}

TEST_F(DevicesTest, OfAnImageThatHasChangedSinceItIsSaidSo) {
    const std::string path = mFolder.Write("LOGO.PCX", qncomm::testing::TestPcx(48, 20));
    SelectDevice("Images");
    Drop(path);
    mFolder.Write("LOGO.PCX", qncomm::testing::TestPcx(64, 64));
    SelectFile("LOGO.PCX");
    EXPECT_TRUE(Preview().Picture().isNull());
    EXPECT_THAT(Preview().Text().toStdString(), HasSubstr("changed"));
}

TEST_F(DevicesTest, OfAFontThatWasThereBeforeItIsSaidSo) {
    SelectDevice("Fonts");
    SelectFile("SW030RSN.1");
    EXPECT_TRUE(Preview().Picture().isNull());
    EXPECT_THAT(Preview().Text().toStdString(), HasSubstr("not sent from here"));
}

} // namespace
} // namespace qncomm::testing
