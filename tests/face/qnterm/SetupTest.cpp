// The printer's setup as a tree: searched, and changed in place on the printer.

#include "PartsFixture.h"

#include "EmptyHint.h"
#include "SetupBrowser.h"
#include "SetupModel.h"
#include "qt/Charset.h"

#include <QLineEdit>
#include <QTest>
#include <QTreeView>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SetupTest : public PartsFixture {
  protected:
    SetupTest() {
        mBrowser.resize(420, 640);
        mBrowser.show();
        mBrowser.Read();
        Settle();
    }

    QTreeView& Tree() { return *mBrowser.findChild<QTreeView*>(); }
    QLineEdit& Search() { return *mBrowser.findChild<QLineEdit*>(); }

    /// The value's place of an item in what the tree shows; invalid when it shows none.
    QModelIndex Shown(const QStringList& path) {
        QAbstractItemModel& model = *Tree().model();
        QModelIndex at;
        for (const QString& name : path) {
            const QModelIndexList found =
                model.match(model.index(0, 0, at), Qt::DisplayRole, name, 1, Qt::MatchExactly);
            if (found.isEmpty()) return {};
            at = found.front();
        }
        return at.siblingAtColumn(1);
    }

    SetupBrowser mBrowser{mOperations};
    const QStringList mBaudrate{"SER-COM", "UART1", "BAUDRATE"};
};

TEST_F(SetupTest, SectionsHoldItemsAndOnlyValuesAreChanged) {
    const QModelIndex baud = Shown(mBaudrate);
    ASSERT_TRUE(baud.isValid());
    EXPECT_EQ(baud.data().toString().toStdString(), "9600");
    EXPECT_TRUE(baud.flags() & Qt::ItemIsEditable);
    EXPECT_FALSE(baud.siblingAtColumn(0).flags() & Qt::ItemIsEditable);
    EXPECT_FALSE(Shown({"SER-COM"}).flags() & Qt::ItemIsEditable);
}

TEST(SetupModelTest, SectionsBeyondTheDeepestAreOneName) {
    const auto shown = [](const std::string& key) {
        PrinterSetup setup;
        setup.Add(std::make_shared<clsPrinterSetupItem>(clsPrinterSetupItem{key, "1"}), key);
        SetupModel model;
        model.SetItems(setup);
        QStringList names;
        for (QModelIndex at = model.index(0, 0); at.isValid(); at = model.index(0, 0, at))
            names.push_back(at.data().toString());
        EXPECT_EQ(model.ValueIndex(qncomm::FromLine(key)).data().toString().toStdString(), "1");
        return names;
    };
    const std::string deepest = "A,B,C,D,E,F,G,H,I,J,K,L,M,N,O,P";
    EXPECT_EQ(shown(deepest).size(), SetupModel::DeepestSection);
    const QStringList beyond = shown(deepest + ",Q" + std::string(1 << 20, ','));
    ASSERT_EQ(beyond.size(), SetupModel::DeepestSection);
    EXPECT_TRUE(beyond.back().startsWith("P,Q,"));
}

TEST(SetupModelTest, AKeyIsNoMarkupInItsTip) {
    PrinterSetup setup;
    setup.Add(std::make_shared<clsPrinterSetupItem>(clsPrinterSetupItem{"<img src=x>", "1"}), "k");
    SetupModel model;
    model.SetItems(setup);
    EXPECT_THAT(model.index(0, 0).data(Qt::ToolTipRole).toString().toStdString(),
                HasSubstr("&lt;img src=x&gt;"));
}

TEST(SetupModelTest, SectionsOfOneNameInDifferentPlacesAreDifferent) {
    PrinterSetup setup;
    for (const char* key : {"A,X,1", "B,X,1", "A,X,2", "A,1"})
        setup.Add(std::make_shared<clsPrinterSetupItem>(clsPrinterSetupItem{key, key}), key);
    SetupModel model;
    model.SetItems(setup);
    ASSERT_EQ(model.rowCount(), 2);
    const QModelIndex a = model.index(0, 0);
    EXPECT_EQ(model.rowCount(a), 2);
    EXPECT_EQ(model.rowCount(model.index(0, 0, a)), 2);
    EXPECT_EQ(model.ValueIndex("B,X,1").data().toString().toStdString(), "B,X,1");
}

TEST_F(SetupTest, ASearchLeavesWhatMatchesWithItsSections) {
    QTest::keyClicks(&Search(), "baudr");
    EXPECT_TRUE(Shown(mBaudrate).isValid());
    EXPECT_FALSE(Shown({"LABEL"}).isValid());
    Search().clear();
    EXPECT_TRUE(Shown({"LABEL"}).isValid());
}

TEST_F(SetupTest, AnEmptyTreeSaysWhy) {
    const EmptyHint& hint = *mBrowser.findChild<EmptyHint*>();
    EXPECT_FALSE(hint.isVisible());
    QTest::keyClicks(&Search(), "no such item");
    EXPECT_TRUE(hint.isVisible());
    EXPECT_THAT(hint.text().toStdString(), HasSubstr("has this text"));
    Search().clear();
    EXPECT_FALSE(hint.isVisible());
    mBrowser.Empty();
    EXPECT_TRUE(hint.isVisible());
    EXPECT_THAT(Tree().accessibleDescription().toStdString(), HasSubstr("Press F5"));
}

TEST_F(SetupTest, AValueIsChangedOnThePrinterAndReadBack) {
    const QModelIndex width = Shown({"LABEL", "WIDTH"});
    ASSERT_TRUE(width.isValid());
    TakeSent();
    Tree().setCurrentIndex(width.siblingAtColumn(0)); // where the arrow keys lead
    QTest::keyClick(Tree().viewport(), Qt::Key_F2);
    auto* editor = Tree().viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "640");
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();
    EXPECT_THAT(TakeCommands(), Contains(HasSubstr("LABEL,WIDTH,640")));
    EXPECT_EQ(Shown({"LABEL", "WIDTH"}).data().toString().toStdString(), "640");
    EXPECT_THAT(mFailures, testing::IsEmpty());
}

TEST_F(SetupTest, AValueThatThePrinterRefusesIsToldAndStaysAsItWas) {
    const QModelIndex width = Shown({"LABEL", "WIDTH"});
    const QString former = width.data().toString();
    Tree().model()->setData(width, "wide", Qt::EditRole);
    Settle();
    EXPECT_THAT(mFailures, ElementsAre(HasSubstr("LABEL,WIDTH")));
    EXPECT_EQ(Shown({"LABEL", "WIDTH"}).data().toString(), former);
}

TEST_F(SetupTest, TheSetupOfAFormerPrinterChangesNothingOnAnother) {
    ChangePort();
    TakeSent();
    Tree().model()->setData(Shown({"LABEL", "WIDTH"}), "640", Qt::EditRole);
    Settle();
    EXPECT_THAT(mFailures, ElementsAre(HasSubstr("another printer")));
    EXPECT_THAT(TakeSent(), ::testing::Not(HasSubstr("640")));
    mBrowser.Read();
    Tree().model()->setData(Shown({"LABEL", "WIDTH"}), "640", Qt::EditRole);
    Settle();
    EXPECT_EQ(mFailures.size(), 1U);
    EXPECT_EQ(Shown({"LABEL", "WIDTH"}).data().toString().toStdString(), "640");
}

TEST_F(SetupTest, TheSearchIsKeptWhenTheSetupIsReadAgain) {
    QTest::keyClicks(&Search(), "width");
    mBrowser.Read();
    Settle();
    EXPECT_FALSE(Shown(mBaudrate).isValid());
    EXPECT_TRUE(Shown({"LABEL", "WIDTH"}).isValid());
}

} // namespace
} // namespace qncomm::testing
