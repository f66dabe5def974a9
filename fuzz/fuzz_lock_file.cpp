// Any file where other programs lock a port by a file: it names a living process or nobody.

#include "Choices.h"
#include "serial/PortHolder.h"
#include "testing/core/ScratchFolder.h"

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using qncomm::fuzz::Promise;
    static const qncomm::testing::ScratchFolder folder;
    qncomm::fuzz::Choices choices(data, size);
    folder.Write("LCK..null", choices.Rest());
    const auto owner = qncomm::FindLockFileOwner("/dev/null", folder.Path());
    Promise(owner.process >= 0 && owner.process != ::getpid());
    Promise(size <= 256 || owner.process == 0);
    Promise(!owner.Text().empty());
    return 0;
}
