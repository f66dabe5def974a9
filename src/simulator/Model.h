#pragma once

// The ten printer models: what each has of storage, channels, language and dots.

#include <cstdint>
#include <span>
#include <string_view>

namespace qnsim {

struct DeviceSpec {
    std::string_view name; ///< lower case, with its colon
    std::uint64_t size;    ///< bytes it can hold
    bool readOnly;
    bool isVolatile; ///< emptied by a restart
};

struct Model {
    std::string_view code;
    std::string_view version; ///< what VERSION$(0) says
    bool programmable;        ///< numbered lines and RUN
    bool listsFiles;          ///< FILES, FONTS and IMAGES answer with a listing
    bool trueType;            ///< scalable fonts can be installed
    int listingColumns;       ///< files side by side in one row: 1 or 2
    int uarts;                ///< serial channels
    int dotsPerMm;
    std::uint64_t memory; ///< working memory for program and variables, bytes
    std::string_view workDevice;
    std::span<const DeviceSpec> devices;
};

/// The model of that code (exact case), or null.
const Model* FindModel(std::string_view code);

/// All models, in the order of their codes.
std::span<const Model> AllModels();

} // namespace qnsim
