#pragma once

#include "MemoryFiles.h"
#include "PeerProcess.h"

#include <filesystem>

namespace qncomm::transfer::testing {

// A directory that is gone with the object.
class ScratchFolder {
  public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    [[nodiscard]] const std::filesystem::path& Path() const { return mPath; }
    void Put(const MemoryFile& file) const;
    // The content, or empty when there is no such file.
    [[nodiscard]] std::optional<std::string> Get(const std::string& sName) const;

  private:
    std::filesystem::path mPath;
};

// Files that every peer has to carry in both directions.
std::vector<MemoryFile> KeptFiles();

// Checks that the files stand in the folder, or in the sink in their order and nothing else.
void ExpectArrived(const ScratchFolder& folder, const std::vector<MemoryFile>& files);
void ExpectReceived(const MemorySink& sink, const std::vector<MemoryFile>& files);

// True when all programs are installed. When one is missing, says so in a line, and fails the test
// when CI is set.
bool PeersAreInstalled(const std::vector<std::string>& programs);

// Runs the engine against the program on the machine's clock. True when both are over before
// `limit` has passed.
bool RunAgainst(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
                Time limit);

} // namespace qncomm::transfer::testing
