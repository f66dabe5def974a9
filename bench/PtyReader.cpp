#include "PtyReader.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace {

/// What the thread makes of the bytes.
class Conversation {
  public:
    /// Takes bytes and returns what to answer.
    std::string Take(std::string_view bytes) {
        std::string answer;
        while (!bytes.empty()) {
            if (mPayload > 0) {
                const std::size_t taken = std::min<std::uint64_t>(mPayload, bytes.size());
                mPayload -= taken;
                bytes.remove_prefix(taken);
                if (mPayload == 0) answer += "Ok\r\n";
                continue;
            }
            const char c = bytes.front();
            bytes.remove_prefix(1);
            if (c == '\r')
                answer += Answer(std::exchange(mLine, {}));
            else if (c != '\n')
                mLine += c;
        }
        return answer;
    }

  private:
    std::string Answer(const std::string& line) {
        if (line.find(" LOAD ") != std::string::npos) {
            mPayload = std::stoull(line.substr(line.find(',') + 1));
            return line + "\r\n" + (mPayload == 0 ? "Ok\r\n" : "");
        }
        std::string body;
        if (line.starts_with("PRINT SYSVAR")) body = "-1\r\n2\r\n";
        if (line.starts_with("PRINT VERSION")) body = "v8.10\r\nR7G\r\n";
        if (line == "IMAGES") body = "1 BYTES FREE  2 BYTES USED\r\n";
        return line + "\r\n" + body + "Ok\r\n";
    }

    std::string mLine;
    std::uint64_t mPayload = 0;
};

} // namespace

PtyReader::PtyReader() : mMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (mMaster < 0 || ::grantpt(mMaster) != 0 || ::unlockpt(mMaster) != 0
        || ::pipe2(mStop, O_CLOEXEC) != 0)
        throw std::runtime_error("no pseudo-terminal");
    mHolder = ::open(Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    ::tcgetattr(mHolder, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(mHolder, TCSANOW, &raw);
    mThread = std::thread([this] { Serve(); });
}

PtyReader::~PtyReader() {
    ::close(mStop[1]);
    mThread.join();
    ::close(mStop[0]);
    ::close(mHolder);
    ::close(mMaster);
}

std::string PtyReader::Path() const {
    char name[64];
    if (::ptsname_r(mMaster, name, sizeof name) != 0) throw std::runtime_error("no name");
    return name;
}

void PtyReader::Serve() const {
    Conversation conversation;
    std::array<char, 16384> buffer{};
    for (;;) {
        pollfd ready[] = {{mMaster, POLLIN, 0}, {mStop[0], POLLIN, 0}};
        if (::poll(ready, 2, -1) < 0 || ready[1].revents != 0) return;
        const ssize_t count = ::read(mMaster, buffer.data(), buffer.size());
        if (count <= 0) return;
        const std::string answer =
            conversation.Take({buffer.data(), static_cast<std::size_t>(count)});
        for (std::size_t sent = 0; sent < answer.size();) {
            const ssize_t done = ::write(mMaster, answer.data() + sent, answer.size() - sent);
            if (done <= 0) return;
            sent += static_cast<std::size_t>(done);
        }
    }
}
