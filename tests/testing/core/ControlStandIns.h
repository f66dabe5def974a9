#pragma once

#include "common/RuntimeErrors.h"
#include "control/QNComm.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qncomm::testing {

using Strings = std::vector<std::string>;

/// A terminal that keeps what it is given.
class FakeTerminal : public ViewportTerminal {
  public:
    std::int32_t BackColor() const override { return mBack; }
    void SetBackColor(std::int32_t lColor) override { mBack = lColor; }
    std::int32_t ForeColor() const override { return mFore; }
    void SetForeColor(std::int32_t lColor) override { mFore = lColor; }
    TerminalFont Font() const override { return mFont; }
    void SetFont(const TerminalFont& font) override { mFont = font; }
    std::int16_t Rows() const override { return mRows; }
    void SetRows(std::int16_t iRows) override {
        mRows = iRows;
        mLog.push_back("Rows " + std::to_string(iRows));
        if (mOnRows) mOnRows();
    }
    std::int16_t Columns() const override { return mColumns; }
    void SetColumns(std::int16_t iColumns) override {
        mColumns = iColumns;
        mLog.push_back("Columns " + std::to_string(iColumns));
    }
    std::int16_t CursorRow() const override { return mRow; }
    void SetCursorRow(std::int16_t iRow) override { mRow = iRow; }
    std::int16_t CursorColumn() const override { return mColumn; }
    std::string ScreenText() const override { return mText; }
    void ClearScreen() override {
        mText.clear();
        mRow = mColumn = 1;
    }
    void CaptureTo(const std::string& sPath) override {
        if (mCaptureFails) RaiseRuntimeError(RtPathNotFound, "Terminal");
        mCapture = sPath;
    }
    std::int16_t DisplayState() const override { return mState; }
    void SetDisplayState(std::int16_t iState) override { mState = iState; }
    void SetFocus() override { ++mFocused; }
    void Move(const Rectangle& place) override {
        mPlace = place;
        mLog.emplace_back("Move");
    }

    std::int32_t mBack = 0x00FFFFFF;
    std::int32_t mFore = 1;
    TerminalFont mFont{"Monospace", 10.0F};
    std::int16_t mRows = 0;
    std::int16_t mColumns = 0;
    std::int16_t mRow = 1;
    std::int16_t mColumn = 1;
    std::string mText;
    std::string mCapture;
    bool mCaptureFails = false;
    std::int16_t mState = DisplayActive;
    int mFocused = 0;
    Rectangle mPlace;
    Strings mLog;
    std::function<void()> mOnRows; ///< called when the number of rows was set
};

class FakeFormControl : public ContainerControl {
  public:
    explicit FakeFormControl(std::string type) : mType(std::move(type)) {}
    std::string TypeName() const override { return mType; }
    void SetTop(std::int32_t lTop) override { mTop = lTop; }

    std::string mType;
    std::int32_t mTop = 7;
};

/// A container whose form is 2000 units high.
class FakeHost : public ControlHost {
  public:
    bool UserMode() const override { return mUserMode; }
    void PropertyChanged(std::string_view sName) override { mChanged.emplace_back(sName); }
    void SetAlign(std::int16_t iAlign) override { mAlign = iAlign; }
    void SetVisible(bool bVisible) override { mVisible = bVisible; }
    std::int32_t Height() const override { return mHeight; }
    void SetHeight(std::int32_t lHeight) override {
        mHeight = lHeight;
        if (mOnHeight) mOnHeight();
    }
    std::int32_t ParentScaleHeight() const override { return 2000; }
    std::vector<std::shared_ptr<ContainerControl>> ParentControls() override {
        return {mControls.begin(), mControls.end()};
    }

    bool mUserMode = false;
    Strings mChanged;
    std::int16_t mAlign = DockNone;
    bool mVisible = true;
    std::int32_t mHeight = 1000;
    std::function<void()> mOnHeight; ///< called when the height was set
    std::vector<std::shared_ptr<FakeFormControl>> mControls;
};

/// A window of 800 by 1000 units that paints at once, or when the test says so.
class FakeWindow : public ControlWindow {
  public:
    std::int32_t ScaleWidth() const override { return 800; }
    std::int32_t ScaleHeight() const override { return mScaleHeight; }
    std::int32_t TitleHeight() const override { return 20; }
    std::int32_t ToolbarHeight() const override { return 30; }
    std::int32_t RowHeight() const override { return 12; }
    void Repaint() override {
        ++mRepaints;
        if (mPaintsAtOnce) mControl->UserControl_Paint();
    }
    void ShowPopUpMenu(const PopUpMenu& menu) override { mMenus.push_back(menu); }
    void SetHelpFile(std::string_view sPath) override { mHelpFile = sPath; }

    QNComm* mControl = nullptr;
    std::int32_t mScaleHeight = 1000;
    int mRepaints = 0;
    bool mPaintsAtOnce = true;
    std::vector<PopUpMenu> mMenus;
    std::string mHelpFile;
};

} // namespace qncomm::testing
