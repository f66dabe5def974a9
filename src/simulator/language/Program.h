#pragma once

// The program in working memory: numbered lines as they were typed.

#include "Errors.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace qnsim {

class Program {
  public:
    using Lines = std::map<int, std::string>;

    /// Puts a line in its place; an empty text takes the line away.
    void Store(int number, std::string_view text);
    void Clear();

    const Lines& All() const { return mLines; }
    /// The number after the last line's, in tens.
    int NextNumber() const;
    /// What the program takes of working memory.
    std::uint64_t Bytes() const { return mBytes; }
    /// The lines from one number to another as a listing, each ended by CR LF.
    std::string Listing(int from, int to) const;

    /// The lines of a listing, numbered where they are not, or what is wrong with one of them.
    struct Reading {
        Lines lines;
        Error error = Error::None;
    };
    static Reading ReadListing(std::string_view text);

  private:
    static std::uint64_t BytesOf(std::string_view text) { return text.size() + 4; }
    Lines mLines;
    std::uint64_t mBytes = 0;
};

} // namespace qnsim
