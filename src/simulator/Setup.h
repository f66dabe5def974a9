#pragma once

// The printer's setup: an ordered tree of items, each a comma-separated path with a value.

#include "Errors.h"
#include "Model.h"
#include "simulator/Options.h"

#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// What a serial channel is set to.
struct Uart {
    int baud = 9600;
    char parity = 'n';
    int dataBits = 8;
    int stopBits = 2;
    bool obeysXon = false; ///< the host's Xon/Xoff stop and start the printer's output
    bool sendsXon = false; ///< the printer stops the host when its buffer fills
    bool rtsCts = false;

    /// Bits that one character takes on the line, the start bit included.
    int BitsPerCharacter() const { return 1 + dataBits + (parity == 'n' ? 0 : 1) + stopBits; }
};

class SetupTree {
  public:
    /// The model's tree with its factory values; the wired channel gets what the options say.
    SetupTree(const Model& model, const Options& options);

    /// Changes one item given as "PATH,VALUE" (the path without regard to case; it may leave out
    /// "SER-COM,").
    Error Change(std::string_view pathAndValue);

    /// Changes every line of a setup file; lines that are empty or begin with "#" are skipped.
    /// Either all of them are changed or, after an error, none.
    Error Load(std::string_view fileText);

    /// The whole tree, one line per item, each ended by CR LF. Items that cannot be changed begin
    /// with
    /// "#".
    std::string Write() const;

    /// A channel's items, number 1 to 3.
    Uart Channel(int number) const;

    /// The value of a path (upper case), as a whole number; 0 when there is no such item.
    int Number(std::string_view path) const;

  private:
    struct Item {
        std::string path;
        std::string value;
        std::string
            allowed; ///< "A|B|C", "0-9999" for a range, or empty for an item that is only shown
    };
    void Add(std::string path, std::string value, std::string allowed);
    void AddUnknownSections();
    void AddChannels(const Model& model, const Options& options);
    void AddChannel(int number, const Options& options);
    Item* Find(std::string_view path);
    const std::string& Value(std::string_view path) const;
    static bool Allows(const Item& item, std::string_view value);

    std::vector<Item> mItems;
};

} // namespace qnsim
