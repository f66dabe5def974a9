#pragma once

// What a program can reach of the printer it runs on.

#include "Die.h"
#include "Model.h"
#include "Setup.h"
#include "Storage.h"
#include "label/Label.h"
#include "label/PngWriter.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace qnsim {

/// The numbered variables of the printer itself. Most are only kept; two of them control the
/// console.
class SystemVariables {
  public:
    static constexpr int Count = 64;
    static constexpr int Verbosity = 18;
    static constexpr int ErrorForm = 19;

    static constexpr int EchoBit = 1;
    static constexpr int PromptBit = 2;
    static constexpr int ErrorBit = 8;

    SystemVariables() { Reset(); }
    void Reset() {
        mValues.fill(0);
        mValues[Verbosity] = -1;
        mValues[ErrorForm] = 1;
    }
    static bool Has(double number) { return number >= 0 && number < Count; }
    int Get(int number) const { return mValues[static_cast<std::size_t>(number)]; }
    void Set(int number, int value) { mValues[static_cast<std::size_t>(number)] = value; }

    bool Echoes() const { return (Get(Verbosity) & EchoBit) != 0; }
    bool Prompts() const { return (Get(Verbosity) & PromptBit) != 0; }
    bool ShowsErrors() const { return (Get(Verbosity) & ErrorBit) != 0; }
    bool NamesLines() const { return Get(ErrorForm) != 1; }

  private:
    std::array<int, Count> mValues{};
};

/// What the printer is fed with.
class PowerSupply {
  public:
    explicit PowerSupply(const Moods& moods)
        : mChance(moods.powerLost), mLastsFor(moods.powerLostAfter) {}

    /// Asked before each statement: the power fails here.
    bool Fails() { return (mLastsFor != 0 && mServed++ == mLastsFor) || mChance.Strikes(); }

  private:
    Die mChance;
    int mLastsFor;
    std::int64_t mServed = 0;
};

struct Machine {
    explicit Machine(const Options& options);

    /// Whether the line takes more of what a program says.
    bool HasRoom() const { return out.size() < programRoom; }

    const Model& model;
    std::string version;
    int wiredUart;
    SetupTree setup;
    Storage storage;
    SystemVariables system;
    Label label;
    std::optional<LabelFolder> labels; ///< where printed labels go as pictures
    PowerSupply power;
    Micros now = 0;              ///< the time that the caller gave last
    std::size_t lineRoom = 0;    ///< bytes that the wired channel takes without letting them queue
    std::size_t programRoom = 0; ///< bytes that a program may say before it waits
    bool immediate = true;
    bool setupChanged = false; ///< the line's settings take effect after the reply
    bool restartWanted = false;
    bool powerLost = false; ///< between two statements, so that nothing ends in order
    std::string out;        ///< bytes for the wired channel
};

} // namespace qnsim
