#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace qnctl {

/// What was known of a file when it was sent.
struct SentFile {
    std::uintmax_t size = 0;    ///< bytes here
    std::int64_t modified = 0;  ///< here, in ns since 1970 (UTC)
    std::string sum;            ///< of its bytes
    std::int32_t onPrinter = 0; ///< bytes, as the printer listed it then
};

/// What was sent from one folder to one device of one printer, kept in a file of the user's from
/// run to run. A file that is damaged or missing is an empty ledger: then all is sent anew.
class SentLedger {
  public:
    /// Reads the ledger of a folder (sFolder) and a device behind an address; kept in sUnder.
    SentLedger(const std::string& sUnder, const std::string& sAddress, const std::string& sDevice,
               const std::string& sFolder);

    /// What is known of a file by its name; null when it was never sent.
    const SentFile* Find(const std::string& sName) const;
    void Note(const std::string& sName, SentFile file) { mFiles[sName] = std::move(file); }
    /// Writes the ledger. Raises what HostFiles::Save raises.
    void Save() const;

  private:
    std::string mPath;
    std::string mOf; ///< whose it is, as it stands in the file
    std::map<std::string, SentFile> mFiles;
};

/// The sum by which two contents are told apart, as text.
std::string SumOf(const std::string& sBytes);

} // namespace qnctl
