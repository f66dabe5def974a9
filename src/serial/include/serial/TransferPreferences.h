#pragma once

namespace qncomm {

/// How a host wants its transfers done.
struct TransferPreferences {
    /// Keep what was received when a transfer fails, as the file's name and ".part", and go on from
    /// there next time; offer the other side the same when sending.
    bool resume = false;
    /// Give a received file the permission bits and the time that the other side tells.
    bool preserve = false;
};

} // namespace qncomm
