#pragma once
// The editor registers the host's particle system compiler with the asset system.

#include "core/particles/particlesystemresource.h"
