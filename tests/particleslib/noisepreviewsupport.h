#pragma once
// The editor's noise preview of an input given as KV3, for tests that compare it with the
// simulation (whose headers can't share a translation unit with the editor's inputs).

#include <cstdint>
#include <vector>

class KeyValues3;

// The preview at time 0, nWidth wide; pUnit receives the world distance between two pixels
// before the noise scale. False, with the reason printed, when the input doesn't load.
bool BuildNoisePreviewOfKV3( const KeyValues3 &input, int nWidth, std::vector<uint8_t> *pGrey, float *pUnit );
int NoisePreviewHeight();
