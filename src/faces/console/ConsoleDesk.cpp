#include "console/ConsoleDesk.h"

#include "platform/SystemFiles.h"

#include <utility>

namespace qncomm {

ConsoleDesk::ConsoleDesk(Reactor& reactor, std::ostream& err, Options options)
    : mReactor(reactor),
      mInput(reactor, options.input),
      mStatus(err, options.style, options.width),
      mTexts(err, mStatus, mInput),
      mFiles(err, mStatus, mInput),
      mDesktop(err, mStatus, mInput, options.answer, std::move(options.log)),
      mInputs(mTexts),
      mFileDialogs(mFiles, mDesktop),
      mForms(mFiles, mStatus),
      mHost(mFiles) {}

ControlServices ConsoleDesk::Services() {
    return {mReactor,     mDesktop,  mInputs, mClipboard,
            mFileDialogs, mLauncher, mForms,  SystemFiles()};
}

} // namespace qncomm
