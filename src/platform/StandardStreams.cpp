#include "platform/StandardStreams.h"

#include <csignal>

#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace qncomm {

void PrepareStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", O_RDWR);
    for (const int number : {SIGPIPE, SIGXFSZ})
        static_cast<void>(::signal(number, SIG_IGN));
}

} // namespace qncomm
