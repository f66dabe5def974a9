// The control on forms: in a form editor, in a form that is loaded, in a form whose code is
// generated.

#include "platform/FileSettings.h"
#include "qt/QNCommWidget.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/PtyPair.h"
#include "ui_DesignedForm.h"

#include <gmock/gmock.h>

#include <QBuffer>
#include <QFile>
#include <QFormBuilder>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QTest>
#include <QUiLoader>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <array>
#include <filesystem>
#include <memory>

#include <unistd.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// Every property that a form keeps, with a value that is not its default.
struct Kept {
    const char* name;
    QVariant value;
};

const std::array<Kept, 11>& KeptProperties() {
    static const std::array<Kept, 11> all{{
        {"BackColor", 0x00102030},
        {"ForeColor", static_cast<int>(0x80000008)},
        {"Enabled", false},
        {"BackStyle", 0},
        {"BorderStyle", 1},
        {"Columns", 100},
        {"Rows", 40},
        {"Caption", QStringLiteral("Line 2 \u2013 gl\u00fce & labels")},
        {"ToolbarVisible", false},
        {"ToolbarAlign", 2},
        {"Font", QFont(QStringLiteral("DejaVu Sans Mono"), 13)},
    }};
    return all;
}

std::string TextOf(const QVariant& value) {
    if (value.canConvert<QFont>() && value.metaType().id() == QMetaType::QFont)
        return value.value<QFont>().toString().toStdString();
    return value.toString().toStdString();
}

void ExpectKept(const QWidget* control) {
    for (const Kept& kept : KeptProperties())
        EXPECT_EQ(TextOf(control->property(kept.name)), TextOf(kept.value)) << kept.name;
}

/// A form with the control alone, as a form editor begins it.
const char EmptyForm[] = R"(<ui version="4.0"><class>Form</class>
 <widget class="QWidget" name="Form">
  <layout class="QVBoxLayout"><item><widget class="qncomm::QNCommWidget" name="printer"/></item></layout>
 </widget>
 <customwidgets><customwidget>
  <class>qncomm::QNCommWidget</class><extends>QWidget</extends><header>qt/QNCommWidget.h</header>
 </customwidget></customwidgets>
</ui>)";

/// A person whose port 1 is a pseudo-terminal that nobody has opened yet.
class OnAForm : public ::testing::Test {
  protected:
    OnAForm() {
        qputenv("XDG_CONFIG_HOME", mFolder.Path().c_str());
        FileSettings settings(FileSettings::DefaultPath());
        settings.WriteValues({{"Ports", "COM1", mPty.path}, {"Settings", "Commport", "1"}});
    }
    ~OnAForm() override {
        mForm.reset();
        Plugin().initialize(nullptr);
    }

    QDesignerCustomWidgetInterface& Plugin() {
        auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(mLoader.instance());
        if (plugin == nullptr) throw std::runtime_error(mLoader.errorString().toStdString());
        return *plugin;
    }

    static QString PluginFolder() { return QFileInfo(QStringLiteral(QN_DESIGNER_PLUGIN)).path(); }

    /// The control of a form in a form editor.
    QWidget* Design(const QByteArray& form) {
        Plugin().initialize(&mEditor);
        mBuilder.addPluginPath(PluginFolder());
        return Control([&](QBuffer& text) { return mBuilder.load(&text); }, form);
    }

    /// The control of a form that a running program loads.
    QWidget* Load(const QByteArray& form) {
        Plugin().initialize(nullptr);
        QUiLoader loader;
        loader.addPluginPath(PluginFolder());
        return Control([&](QBuffer& text) { return loader.load(&text); }, form);
    }

    template <class Loading>
    QWidget* Control(Loading load, QByteArray form) {
        QBuffer text(&form);
        text.open(QIODevice::ReadOnly);
        mForm.reset(load(text));
        if (!mForm) throw std::runtime_error("no form");
        auto* control = mForm->findChild<QWidget*>(QStringLiteral("printer"));
        if (control == nullptr) throw std::runtime_error("no control on the form");
        return control;
    }

    /// The form as the editor saves it.
    QByteArray Saved() {
        QBuffer text;
        text.open(QIODevice::WriteOnly);
        mBuilder.save(&text, mForm.get());
        return text.data();
    }

    void Show() {
        mForm->resize(640, 400);
        mForm->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(mForm.get()));
        QCoreApplication::processEvents();
    }

    bool PortIsOpen() const {
        for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code gone; // the one that the iteration itself has
            if (fs::read_symlink(entry.path(), gone) == mPty.path) return true;
        }
        return false;
    }

    ScratchFolder mFolder;
    PtyPair mPty = OpenPty();
    QPluginLoader mLoader{QStringLiteral(QN_DESIGNER_PLUGIN)};
    QDesignerFormEditorInterface mEditor;
    QFormBuilder mBuilder;
    std::unique_ptr<QWidget> mForm;
};

TEST_F(OnAForm, TheWidgetBoxOffersTheControl) {
    EXPECT_EQ(Plugin().name(), QLatin1String(QNCommWidget::staticMetaObject.className()));
    EXPECT_FALSE(Plugin().icon().availableSizes().isEmpty());
    EXPECT_FALSE(Plugin().isContainer());
    EXPECT_TRUE(fs::exists(fs::path(QN_FACE_HEADERS) / Plugin().includeFile().toStdString()));
    EXPECT_THAT(Plugin().domXml().toStdString(), HasSubstr(Plugin().name().toStdString()));
}

TEST_F(OnAForm, APropertyEditorOffersAllThatAFormKeeps) {
    const QMetaObject* control = Design(EmptyForm)->metaObject();
    for (const Kept& kept : KeptProperties()) {
        const QMetaProperty property = control->property(control->indexOfProperty(kept.name));
        EXPECT_TRUE(property.isDesignable() && property.isStored() && property.isResettable())
            << kept.name;
    }
}

TEST_F(OnAForm, AControlThatIsBeingDesignedTouchesNoPort) {
    Design(EmptyForm);
    Show();
    EXPECT_FALSE(PortIsOpen());
}

TEST_F(OnAForm, AControlOnALoadedFormHasThePort) {
    Load(EmptyForm);
    Show();
    EXPECT_TRUE(PortIsOpen());
    mForm.reset();
    EXPECT_FALSE(PortIsOpen());
}

TEST_F(OnAForm, WhatWasSetInTheEditorIsThereWhenTheFormIsLoaded) {
    QWidget* designed = Design(EmptyForm);
    for (const Kept& kept : KeptProperties()) {
        EXPECT_NE(TextOf(designed->property(kept.name)), TextOf(kept.value)) << kept.name;
        EXPECT_TRUE(designed->setProperty(kept.name, kept.value)) << kept.name;
    }
    const QByteArray form = Saved();
    ExpectKept(Design(form));
    ExpectKept(Load(form));
}

TEST_F(OnAForm, TheEditorShowsTheSizeThatTheProgramWillHave) {
    const QSizePolicy all(QSizePolicy::Expanding, QSizePolicy::Expanding);
    const QWidget* designed = Design(EmptyForm);
    EXPECT_EQ(designed->property("Align").toInt(), DockBottom);
    EXPECT_EQ(designed->sizePolicy(), all);
    EXPECT_EQ(Load(EmptyForm)->sizePolicy(), all);
    QWidget* own = Design(EmptyForm);
    const QSizePolicy low(QSizePolicy::Expanding, QSizePolicy::Fixed);
    own->setSizePolicy(low);
    own->setProperty("Align", DockTop); // which counts on a form without a layout
    EXPECT_EQ(Load(Saved())->sizePolicy(), low);
}

TEST_F(OnAForm, GeneratedCodeMakesTheSameControlAsLoading) {
    QFile file(QStringLiteral(QN_DESIGNED_FORM));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ExpectKept(Load(file.readAll()));
    QWidget window;
    Ui::DesignedForm form;
    form.setupUi(&window);
    ExpectKept(form.printer);
}

} // namespace
} // namespace qncomm::testing
