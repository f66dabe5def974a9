#include "qt/KeyCodes.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

namespace qncomm {
namespace {

KeyStroke Stroke(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return KeyStrokeOf(QKeyEvent(QEvent::KeyPress, key, modifiers));
}

TEST(KeyCodes, ArrowsInsertAndDeleteHaveTheSystemsCodes) {
    EXPECT_EQ(KeyCodeOf(Qt::Key_Left), 37);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Up), 38);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Right), 39);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Down), 40);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Insert), 45);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Delete), 46);
}

TEST(KeyCodes, LettersAndTheKeysBehindThemHaveTheCodesFrom65) {
    EXPECT_EQ(KeyCodeOf(Qt::Key_A), 65);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Z), 90);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Super_L), 91);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Super_R), 92);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Menu), 93);
    EXPECT_EQ(KeyCodeOf(Qt::Key_0, Qt::KeypadModifier), 96);
    EXPECT_EQ(KeyCodeOf(Qt::Key_0), 0);
}

TEST(KeyCodes, FunctionKeysBeyondF8AndOtherKeysHaveNone) {
    EXPECT_EQ(KeyCodeOf(Qt::Key_F1), 112);
    EXPECT_EQ(KeyCodeOf(Qt::Key_F8), 119);
    EXPECT_EQ(KeyCodeOf(Qt::Key_F9), 0);
    EXPECT_EQ(KeyCodeOf(Qt::Key_Return), 0);
    EXPECT_EQ(KeyCodeOf(Qt::Key_BracketLeft), 0);
}

TEST(KeyCodes, HeldKeysAddUp) {
    EXPECT_EQ(Stroke(Qt::Key_M, Qt::ShiftModifier).shift, 1);
    EXPECT_EQ(Stroke(Qt::Key_M, Qt::ControlModifier).shift, 2);
    EXPECT_EQ(Stroke(Qt::Key_M, Qt::AltModifier).shift, 4);
    EXPECT_EQ(Stroke(Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier), (KeyStroke{77, 3}));
    EXPECT_EQ(Stroke(Qt::Key_M, Qt::KeypadModifier | Qt::MetaModifier).shift, 0);
}

TEST(KeyCodes, CtrlShiftAndF1ToF8PressTheToolbarsFunctionKeys) {
    const Qt::KeyboardModifiers chord = Qt::ControlModifier | Qt::ShiftModifier;
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_F1, chord)), 1);
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_F8, chord)), 8);
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_F9, chord)), 0);
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_F1, Qt::ControlModifier)), 0);
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_F1, chord | Qt::AltModifier)), 0);
    EXPECT_EQ(FunctionKeyOf(Stroke(Qt::Key_A, chord)), 0);
}

} // namespace
} // namespace qncomm
