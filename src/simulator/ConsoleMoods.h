#pragma once

#include "Die.h"

#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

/// What goes on in the printer besides what it was told.
class ConsoleMoods {
  public:
    explicit ConsoleMoods(const Moods& moods) : mMoods(moods), mNoise(moods.noise) {}

    /// How long that command line takes before it is carried out.
    Micros TimeFor(std::string_view command) const;
    /// How long after it arose a statement's error is said.
    Micros LateErrors() const;
    /// When noise comes after a reply; mostly never.
    std::optional<Micros> NoiseAfter(Micros reply);
    /// Its bytes.
    std::string Noise();

  private:
    Moods mMoods;
    Die mNoise;
};

} // namespace qnsim
