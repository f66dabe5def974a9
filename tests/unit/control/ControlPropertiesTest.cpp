#include "testing/core/ControlFixture.h"

#include "common/Numbers.h"
#include "common/Text.h"

#include <fstream>
#include <map>
#include <set>

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::IsEmpty;

/// A value of the property's type that is neither its default nor what a control has at first.
Variant OtherValue(const ControlProperty& property) {
    switch (property.type) {
    case PropertyType::Boolean:
        return !AsBoolean(property.byDefault);
    case PropertyType::Integer:
    case PropertyType::Long:
        return AsLong(property.byDefault) + 2;
    case PropertyType::Text:
        return Variant("Labels");
    case PropertyType::Font:
        break;
    }
    return FontRecord({"Serif", 9.0F});
}

class ControlProperties : public ControlFixture {};

TEST_F(ControlProperties, DefaultsAreOfTheirTypesAndNamesAreUnique) {
    std::set<std::string_view> names;
    for (const ControlProperty& property : QNComm::Properties()) {
        EXPECT_TRUE(names.insert(property.name).second) << property.name;
        EXPECT_EQ(property.Converted(property.byDefault), property.byDefault) << property.name;
    }
    EXPECT_EQ(names.size(), QNComm::Properties().size());
}

TEST_F(ControlProperties, ABagThatSaysNothingYieldsTheDefaults) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    for (const ControlProperty& property : QNComm::Properties()) {
        if (property.use == PropertyUse::NotRead) continue;
        EXPECT_EQ(mControl->Property(property.name), property.byDefault) << property.name;
    }
}

TEST_F(ControlProperties, EachIsSetByItsNameInAnyCaseToldToTheContainerAndStored) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    for (const ControlProperty& property : QNComm::Properties()) {
        const Variant value = OtherValue(property);
        mHost.mChanged.clear();
        mControl->SetProperty(UpperCase(property.name), value);
        EXPECT_EQ(mControl->Property(property.name), value) << property.name;
        EXPECT_THAT(mHost.mChanged, testing::ElementsAre(property.name));
        MemoryPropertyBag bag;
        mControl->UserControl_WriteProperties(bag);
        EXPECT_EQ(bag.mValues[std::string(property.name)], value) << property.name;
    }
}

TEST_F(ControlProperties, AValueOfAWrongTypeIsRefusedAndChangesNothing) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    for (const ControlProperty& property : QNComm::Properties()) {
        const Variant former = mControl->Property(property.name);
        EXPECT_RAISED(mControl->SetProperty(property.name, Variant(Variant::List())),
                      RtTypeMismatch);
        EXPECT_EQ(mControl->Property(property.name), former) << property.name;
    }
    EXPECT_RAISED(mControl->SetProperty("ToolbarAlign", std::int32_t{70'000}), RtOverflow);
    EXPECT_RAISED(mControl->SetProperty("Colour", true), RtNoSuchMember);
    EXPECT_RAISED(mControl->Property(""), RtNoSuchMember);
    EXPECT_THAT(mHost.mChanged, IsEmpty());
}

TEST_F(ControlProperties, AControlThatRunsIgnoresTheSizeOfTheGrid) {
    Run();
    mTerminal.mLog.clear();
    mControl->SetProperty("Columns", std::int16_t{80});
    mControl->SetProperty("Rows", std::int16_t{24});
    EXPECT_THAT(mTerminal.mLog, IsEmpty());
    EXPECT_THAT(mHost.mChanged, IsEmpty());
    EXPECT_EQ(AsInteger(mControl->Property("Columns")), 300);
}

/// The defaults that a page's table of properties tells, by name. A row may hold several
/// properties, with their defaults in the same order.
std::map<std::string, std::string> DocumentedDefaults(const std::string& path) {
    std::map<std::string, std::string> defaults;
    std::ifstream page(path);
    for (std::string line; std::getline(page, line) && line != "| property | default | |";)
        continue;
    for (std::string line; std::getline(page, line) && line.starts_with("|");) {
        const auto cells = SplitKeepEmpty(line, "|");
        const auto names = SplitKeepEmpty(Trim(cells.at(1)), ", ");
        const auto values = SplitKeepEmpty(Trim(cells.at(2)), ", ");
        if (!names.front().starts_with('`')) continue; // the rule below the heads
        for (std::size_t i = 0; i < names.size(); ++i)
            defaults[names[i].substr(1, names[i].size() - 2)] =
                names.size() == 1 ? Trim(cells.at(2)) : values.at(i);
    }
    return defaults;
}

std::string AsDocumented(const ControlProperty& property) {
    if (property.type == PropertyType::Boolean) return LowerCase(AsString(property.byDefault));
    if (property.type == PropertyType::Text) return "`" + AsString(property.byDefault) + "`";
    if (property.type != PropertyType::Font) return AsString(property.byDefault);
    const TerminalFont font = AsFont(property.byDefault);
    return "`" + font.name + "`, " + FontSizeText(font.size) + " points";
}

TEST(ControlPropertiesPage, TellsEachPropertyWithItsDefaultAndNoOther) {
    std::map<std::string, std::string> expected;
    for (const ControlProperty& property : QNComm::Properties())
        expected[std::string(property.name)] = AsDocumented(property);
    EXPECT_EQ(DocumentedDefaults(QN_SOURCE_DIR "/docs/embedding.md"), expected);
}

} // namespace
} // namespace qncomm
