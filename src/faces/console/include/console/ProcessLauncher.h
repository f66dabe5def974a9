#pragma once

// The name under which hosts at a console know the launcher of every face.

#include "platform/ProcessLauncher.h"
