#pragma once

#include "TerminalInput.h"
#include "TerminalView.h"
#include "terminal/Terminal.h"

#include <QTest>

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// Writes down what the user does in a view.
class RecordingInput final : public TerminalInput {
  public:
    bool KeyDown(const KeyStroke& stroke) override {
        keys.push_back(stroke);
        return !swallow;
    }
    void FunctionKey(std::int32_t lKey) override { functionKeys.push_back(lKey); }
    bool Type(std::string_view sBytes) override {
        typed += sBytes;
        return true;
    }
    void MenuAsked() override { ++menus; }
    void Copy(std::string_view sText) override { copied = sText; }
    void Paste() override { ++pastes; }
    void Break() override { ++breaks; }

    bool swallow = false;
    std::vector<KeyStroke> keys;
    std::vector<std::int32_t> functionKeys;
    std::string typed;
    std::string copied;
    int menus = 0;
    int pastes = 0;
    int breaks = 0;
};

/// A view on a grid of its own, shown and with the keys.
class ViewRig {
  public:
    explicit ViewRig(Terminal::Options options = {}, QSize size = {640, 320});
    ViewRig(const ViewRig&) = delete;
    ViewRig& operator=(const ViewRig&) = delete;

    /// Text from the line; returns when it is painted.
    void Receive(std::string_view text);
    /// Numbered lines from first on, below what is there.
    void ReceiveLines(int first, int count);
    void Press(int key, Qt::KeyboardModifiers held = Qt::NoModifier);
    /// The middle of a cell, counted from the first one in view.
    QPoint CellAt(int row, int column) const;
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers held = Qt::NoModifier);
    /// The text of a line in view as the grid has it.
    std::string LineInView(int row) const;
    /// The colour in the middle of a cell's lower edge, where few letters reach.
    QColor ColourAt(int row, int column);
    QImage Picture() { return view.grab().toImage(); }

    Terminal grid;
    RecordingInput input;
    TerminalView view;
};

} // namespace qncomm::testing
