#pragma once

#include "automation/SurfaceClass.h"

namespace qncomm {

/// The printer's command layer: what a host may call of clsQuorin.
const SurfaceClass& LayerClass();
/// The link: what a host may call of clsDataLink.
const SurfaceClass& LinkClass();
/// The settings store.
const SurfaceClass& SettingsClass();

} // namespace qncomm
