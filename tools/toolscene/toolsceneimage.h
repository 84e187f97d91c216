#pragma once
// Particle textures. A "*.timg" file is a PNG image (8 bits per channel; grey, grey with
// alpha, RGB, RGBA or palette), read with libpng into RGBA bytes, rows top to bottom.
// Textures reach the renderer through the resource system by name.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/text/utlstring.h"

struct ToolSceneImage_t
{
	int m_nWidth = 0;
	int m_nHeight = 0;
	std::vector<uint8_t> m_RGBA;
};

using ToolSceneImagePtr_t = std::shared_ptr<const ToolSceneImage_t>;

// Decodes image bytes; false with the reason (prefixed by pName) when they aren't a PNG
// image that can be read, or are larger than 8192 pixels on a side.
bool ReadToolSceneImage( const uint8_t *pData, size_t nSize, const char *pName, ToolSceneImage_t *pImage, CUtlString *pError );
// Encodes RGBA bytes as PNG; the tests and the texture generator write with it.
bool WriteToolSceneImagePNG( const char *pPath, int nWidth, int nHeight, const uint8_t *pRGBA, CUtlString *pError );

// The image of a resource name ("materials/particle/flame.timg"), decoded once per version
// of the resource's data. A resource not yet loaded is loaded through its asset. Null, with
// the reason in pError, when there is no such image or it doesn't decode.
ToolSceneImagePtr_t FindToolSceneImage( const char *pResourceName, CUtlString *pError );
