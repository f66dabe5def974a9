#pragma once

#include "common/Desktop.h"
#include "console/LineReader.h"
#include "console/StatusLine.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace qncomm {

/// How questions are answered without asking.
enum class GivenAnswer {
    None, ///< none was given: the user is asked
    Yes,  ///< every question is answered with Yes
    No,   ///< every question is answered with No
};

/// The desktop of a program at a terminal: a box becomes lines on the error stream under its title;
/// a question is asked at the terminal, or answered as the options say, and without either the
/// answer is No.
class ConsoleDesktop final : public Desktop {
  public:
    /// Receives the lines of Log.
    using LogSink = std::function<void(std::string_view)>;

    /// All must outlive the object.
    ConsoleDesktop(std::ostream& err, StatusLine& status, LineReader& input, GivenAnswer answer,
                   LogSink log = {});

    MsgBoxResult ShowMsgBox(const MsgBox& box) override;
    void Log(std::string_view sLine) override;

    /// How many boxes have told something so far, and asked nothing: a program whose last word such
    /// a box was has not done what it is for.
    int Told() const { return mTold; }

  private:
    bool Agrees();

    std::ostream& mErr;
    StatusLine& mStatus;
    LineReader& mInput;
    GivenAnswer mAnswer;
    LogSink mLog;
    int mTold = 0;
};

} // namespace qncomm
