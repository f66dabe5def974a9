#pragma once

#include "testing/core/ScratchFolder.h"
#include "testing/programs/PeerProcess.h"
#include "testing/transfer/MemoryFiles.h"

namespace qncomm::testing {

using namespace transfer;

using qncomm::testing::ScratchFolder;

// Files that every peer has to carry in both directions.
std::vector<MemoryFile> KeptFiles();

// Checks that the files stand in the folder, or in the sink in their order and nothing else.
void ExpectArrived(const ScratchFolder& folder, const std::vector<MemoryFile>& files);
void ExpectReceived(const MemorySink& sink, const std::vector<MemoryFile>& files);

// True when all programs are installed. When one is missing, says so in a line, and fails the test
// when CI is set.
bool PeersAreInstalled(const std::vector<std::string>& programs);

// Runs the engine against the program, which has as long as it likes for nothing. True when both
// are over before
// `limit` has passed.
bool RunAgainst(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
                Time limit);

} // namespace qncomm::testing
