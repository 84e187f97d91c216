#pragma once
// The identifier is shared with the host's particle runtime, which lives in core.

#include "core/particles/particleparamid.h"
