#include "tools/toolscene/toolsceneimage.h"

#include <png.h>

#include <cstdio>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "core/host/iresourcesystem.h"
#include "core/host/resourceload.h"

static constexpr int MAX_IMAGE_SIDE = 8192;

bool ReadToolSceneImage( const uint8_t *pData, size_t nSize, const char *pName, ToolSceneImage_t *pImage, CUtlString *pError )
{
	png_image image;
	memset( &image, 0, sizeof( image ) );
	image.version = PNG_IMAGE_VERSION;
	if ( !png_image_begin_read_from_memory( &image, pData, nSize ) )
	{
		pError->Format( "%s: not a PNG image (%s)", pName, image.message );
		return false;
	}
	if ( image.width == 0 || image.height == 0 || image.width > MAX_IMAGE_SIDE || image.height > MAX_IMAGE_SIDE )
	{
		pError->Format( "%s: %ux%u pixels; an image must have 1 to %d pixels on each side", pName, image.width, image.height, MAX_IMAGE_SIDE );
		png_image_free( &image );
		return false;
	}
	image.format = PNG_FORMAT_RGBA;
	pImage->m_nWidth = int( image.width );
	pImage->m_nHeight = int( image.height );
	pImage->m_RGBA.resize( PNG_IMAGE_SIZE( image ) );
	if ( !png_image_finish_read( &image, nullptr, pImage->m_RGBA.data(), 0, nullptr ) )
	{
		pError->Format( "%s: the PNG image is damaged (%s)", pName, image.message );
		pImage->m_RGBA.clear();
		pImage->m_nWidth = pImage->m_nHeight = 0;
		return false;
	}
	return true;
}

bool WriteToolSceneImagePNG( const char *pPath, int nWidth, int nHeight, const uint8_t *pRGBA, CUtlString *pError )
{
	png_image image;
	memset( &image, 0, sizeof( image ) );
	image.version = PNG_IMAGE_VERSION;
	image.width = png_uint_32( nWidth );
	image.height = png_uint_32( nHeight );
	image.format = PNG_FORMAT_RGBA;
	if ( !png_image_write_to_file( &image, pPath, 0, pRGBA, 0, nullptr ) )
	{
		pError->Format( "%s: can't write the image (%s)", pPath, image.message );
		return false;
	}
	return true;
}

namespace
{
struct DecodedImage_t
{
	std::weak_ptr<const CResourceData> m_pSource;
	ToolSceneImagePtr_t m_pImage;
	CUtlString m_Error;
};

bool IsSameData( const std::weak_ptr<const CResourceData> &a, const std::shared_ptr<const CResourceData> &b )
{
	return !a.owner_before( b ) && !b.owner_before( a );
}
} // namespace

ToolSceneImagePtr_t FindToolSceneImage( const char *pResourceName, CUtlString *pError )
{
	CUtlString error;
	if ( !pError )
		pError = &error;
	CResourceBinding *pBinding = FindLoadedResource( pResourceName, "image", pError );
	if ( !pBinding )
		return nullptr;
	std::shared_ptr<const CResourceData> pData = pBinding->GetData();
	auto pBytes = std::dynamic_pointer_cast<const CBinaryResourceData>( pData );
	if ( !pBytes )
	{
		pError->Format( "%s is not an image", pResourceName );
		return nullptr;
	}
	static std::mutex s_Mutex;
	static std::unordered_map<const CResourceBinding *, DecodedImage_t> s_Decoded;
	std::lock_guard lock( s_Mutex );
	DecodedImage_t &decoded = s_Decoded[ pBinding ];
	if ( !IsSameData( decoded.m_pSource, pData ) )
	{
		decoded.m_pSource = pData;
		decoded.m_Error.Clear();
		auto pImage = std::make_shared<ToolSceneImage_t>();
		const std::vector<uint8_t> &bytes = pBytes->GetBytes();
		if ( ReadToolSceneImage( bytes.data(), bytes.size(), pBinding->GetName(), pImage.get(), &decoded.m_Error ) )
			decoded.m_pImage = std::move( pImage );
		else
			decoded.m_pImage = nullptr;
	}
	if ( !decoded.m_pImage )
		*pError = decoded.m_Error;
	return decoded.m_pImage;
}
