#include "rendertestsupport.h"

#include <cstdlib>
#include <map>

COffscreenToolSceneWindow *RenderWindow( int nWidth, int nHeight )
{
	// Kept to the end, like the application: the context goes with the process.
	static auto *s_pWindows = new std::map<std::pair<int, int>, COffscreenToolSceneWindow *>;
	COffscreenToolSceneWindow *&pWindow = ( *s_pWindows )[ { nWidth, nHeight } ];
	if ( !pWindow )
	{
		auto pNew = std::make_unique<COffscreenToolSceneWindow>();
		CUtlString strError;
		if ( !pNew->Create( nWidth, nHeight, &strError ) )
		{
			ADD_FAILURE() << "no OpenGL 3.3 context for the pixel tests: " << strError.Get();
			return nullptr;
		}
		pNew->GetRenderer().SetClearColor( 0.0f, 0.0f, 0.0f );
		pWindow = pNew.release();
	}
	return pWindow;
}

int ColorDistance( QRgb pixel, int r, int g, int b )
{
	return std::max( { std::abs( qRed( pixel ) - r ), std::abs( qGreen( pixel ) - g ), std::abs( qBlue( pixel ) - b ) } );
}
