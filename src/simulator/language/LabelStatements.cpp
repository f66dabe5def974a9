// The statements that draw on the label and print it.
#include "Text.h"
#include "language/Interpreter.h"

namespace qnsim {
namespace {

constexpr int FarthestDot = 32767;
constexpr int MostCopies = 9999;
constexpr double MostDots = 4096.0 * 4096.0;

} // namespace

void Interpreter::ClearLabel(const Statement& /*statement*/) {
    mMachine.label.Clear();
}

void Interpreter::Position(const Statement& statement) {
    const int x = mEvaluator.Whole(statement.args[0], -FarthestDot, FarthestDot);
    const int y = mEvaluator.Whole(statement.args[1], -FarthestDot, FarthestDot);
    if (mEvaluator.Failure() == Error::None) mMachine.label.MoveTo(x, y);
}

void Interpreter::Anchor(const Statement& statement) {
    const int anchor = mEvaluator.Whole(statement.args[0], 1, 9);
    if (mEvaluator.Failure() == Error::None) mMachine.label.SetAnchor(anchor);
}

void Interpreter::Direction(const Statement& statement) {
    const int direction = mEvaluator.Whole(statement.args[0], 1, 4);
    if (mEvaluator.Failure() == Error::None) mMachine.label.SetDirection(direction);
}

void Interpreter::NormalImage(const Statement& /*statement*/) {
    mMachine.label.SetInverse(false);
}

void Interpreter::InverseImage(const Statement& /*statement*/) {
    mMachine.label.SetInverse(true);
}

void Interpreter::Font(const Statement& statement) {
    FontChoice font;
    font.name = mEvaluator.Text(statement.args[0]);
    font.points = mEvaluator.Whole(statement.args[1], 1, 400, 12);
    font.slant = mEvaluator.Whole(statement.args[2], 0, 60, 0);
    font.width = mEvaluator.Whole(statement.args[3], 1, 400, 100);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.label.SetFont(font));
}

void Interpreter::LabelText(const Statement& statement) {
    mSliceEnds = true;
    const Expr& item = statement.args[0];
    const std::string text =
        item.IsText() ? mEvaluator.Text(item) : NumberText(mEvaluator.Number(item));
    if (text.size() > LongestLine) Fail(Error::StringTooLong);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.label.PrintText(text));
}

void Interpreter::LabelImage(const Statement& statement) {
    mSliceEnds = true;
    const std::string name = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.label.PrintImage(name));
}

void Interpreter::LabelLine(const Statement& statement) {
    mSliceEnds = true;
    const int length = mEvaluator.Whole(statement.args[0], 1, FarthestDot);
    const int thickness = mEvaluator.Whole(statement.args[1], 1, FarthestDot, 1);
    if (static_cast<double>(length) * thickness > MostDots) Fail(Error::IllegalArgument);
    if (mEvaluator.Failure() == Error::None) mMachine.label.DrawLine(length, thickness);
}

void Interpreter::LabelBox(const Statement& statement) {
    mSliceEnds = true;
    constexpr int largestSide = 4096;
    const int height = mEvaluator.Whole(statement.args[0], 1, largestSide);
    const int width = mEvaluator.Whole(statement.args[1], 1, largestSide);
    const int thickness = mEvaluator.Whole(statement.args[2], 1, largestSide, 1);
    if (mEvaluator.Failure() == Error::None) mMachine.label.DrawBox(height, width, thickness);
}

void Interpreter::PrintFeed(const Statement& statement) {
    mSliceEnds = true;
    mEvaluator.Whole(statement.args[0], 1, MostCopies, 1);
    if (mEvaluator.Failure() != Error::None) return;
    const Bitmap label = mMachine.label.Feed();
    if (mMachine.labels && !mMachine.labels->Add(label, mMachine.model.dotsPerMm))
        Fail(Error::LabelLost);
}

} // namespace qnsim
