#include "transfer/ZModemReceiver.h"
#include "ZModemWriter.h"
#include "testing/transfer/MemoryFiles.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;
using namespace std::chrono_literals;

// The sender repeats its end sooner than the receiver counts the line as quiet.
TEST(ZModemReceiver, AHeaderBehindAPauseEndsASubpacketWhoseEndWasDamaged) {
    ZModemReceiver receiver;
    MemorySink sink;
    ZModemWriter writer;
    Time now = 1s;
    const auto say = [&](const std::string& bytes) {
        receiver.Receive(bytes, now);
        std::string said(ServedOutput(receiver, nullptr, &sink, now));
        receiver.Sent(said.size(), now);
        return said;
    };
    receiver.Start(now);
    say({});
    std::string file;
    writer.Binary(file, ZModemHeader::WithFlags(zm::File, zm::ConvertBinary));
    writer.Subpacket(file,
                     std::string("a.bin\0"
                                 "100",
                                 9),
                     zm::EndWait);
    say(file);
    now += 50ms;
    std::string data;
    writer.Binary(data, ZModemHeader::At(zm::Data, 0));
    say(data + std::string(100, 'x'));
    std::string end;
    writer.Hex(end, ZModemHeader::At(zm::Eof, 100));
    now += 150ms;
    EXPECT_NE(say(end).find("B0900000000"), std::string::npos) << "it asks for what is missing";
}

} // namespace qncomm::testing
