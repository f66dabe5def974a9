#pragma once

#include <string>
#include <string_view>

namespace qncomm {

/// The buttons that a message box has.
enum class MsgBoxButtons {
    Ok,       ///< one button, for something to be read
    OkCancel, ///< go on or leave it
    YesNo,    ///< a question
};

/// The picture in a message box.
enum class MsgBoxIcon {
    None,        ///< no picture
    Critical,    ///< something failed
    Question,    ///< something is asked
    Exclamation, ///< something needs attention
    Information, ///< something is told
};

/// The button that closed a box, by the numbers that hosts know.
enum class MsgBoxResult {
    Ok = 1,     ///< of Ok and OkCancel
    Cancel = 2, ///< of OkCancel; also when the box was closed without a button
    Yes = 6,    ///< of YesNo
    No = 7,     ///< of YesNo; also when the box was closed without a button
};

/// A message box: lines of sText are separated by CR LF; an empty title stands for the system's
/// name.
struct MsgBox {
    std::string text;                          ///< UTF-8, or bytes of the line where it quotes them
    MsgBoxButtons buttons = MsgBoxButtons::Ok; ///< what it can be answered with
    MsgBoxIcon icon = MsgBoxIcon::None;        ///< its picture
    std::string title;                         ///< of its window
};

/// What the system asks of the place it runs in. A face or a host implements it.
class Desktop {
  public:
    virtual ~Desktop() = default;

    /// Shows a box, waits for the answer and returns it: Ok for a box with that button alone.
    virtual MsgBoxResult ShowMsgBox(const MsgBox& box) = 0;

    /// A diagnostic line for developers: why something was refused silently. It is not shown to the
    /// user.
    virtual void Log(std::string_view sLine) = 0;
};

/// The title that a box without one of its own gets.
extern const std::string_view ProductName;

} // namespace qncomm
