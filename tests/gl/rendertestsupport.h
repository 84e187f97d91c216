#pragma once
// Pictures of tool scenes for the OpenGL tests: an offscreen window that must exist (no
// context fails the test), definitions from text, and pixel checks.

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

#include <memory>
#include <string>

#include "tools/toolscene/widgets/offscreentoolscenewindow.h"

// The window of the binary, made on first use; a test that can't have it fails.
COffscreenToolSceneWindow *RenderWindow( int nWidth = 256, int nHeight = 256 );

// Channel distance of a pixel from a colour, the largest of the three.
int ColorDistance( QRgb pixel, int r, int g, int b );

#define EXPECT_PIXEL_NEAR( image, x, y, r, g, b, tolerance )                                                                \
	EXPECT_LE( ColorDistance( ( image ).pixel( int( x ), int( y ) ), r, g, b ), tolerance )                                   \
		<< "pixel (" << int( x ) << ", " << int( y ) << ") is " << QColor( ( image ).pixel( int( x ), int( y ) ) ).name().toStdString() \
		<< ", expected near rgb(" << ( r ) << ", " << ( g ) << ", " << ( b ) << ")"
