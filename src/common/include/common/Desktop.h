#pragma once

#include <string>
#include <string_view>

namespace qncomm {

enum class MsgBoxButtons { Ok, OkCancel, YesNo };
enum class MsgBoxIcon { None, Critical, Question, Exclamation, Information };

/// The button that closed a box, by the numbers that hosts know.
enum class MsgBoxResult { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// A message box: lines of sText are separated by CR LF; an empty title stands for the system's
/// name.
struct MsgBox {
    std::string text;
    MsgBoxButtons buttons = MsgBoxButtons::Ok;
    MsgBoxIcon icon = MsgBoxIcon::None;
    std::string title;
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
