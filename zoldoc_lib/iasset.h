#pragma once
// The host's record of one asset; the document only reads its path.

#include "core/host/iasset.h"
