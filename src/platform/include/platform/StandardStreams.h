#pragma once

namespace qncomm {

/// What a program does about its standard streams before anything else, in its first thread.
///
/// Streams that the caller has closed get a place, so that no port or file takes theirs and is read
/// as what a user types or written to as what is shown. A reader that has gone (SIGPIPE) and a file
/// that may not grow (SIGXFSZ) become a failed write, which is told, instead of the program's end
/// in the middle of its work; what it starts has these signals as they were.
void PrepareStandardStreams();

} // namespace qncomm
