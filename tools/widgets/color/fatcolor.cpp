#include "tools/widgets/color/fatcolor.h"

#include <algorithm>

namespace
{
int Clamp( int n, int nMin, int nMax ) { return std::min( std::max( n, nMin ), nMax ); }
} // namespace

void HSVToRGB( int nHue, int nSaturation, int nValue, int *pR, int *pG, int *pB )
{
	nSaturation = Clamp( nSaturation, 0, 255 );
	nValue = Clamp( nValue, 0, 255 );
	if ( nSaturation == 0 )
	{
		*pR = *pG = *pB = nValue;
		return;
	}
	nHue = Clamp( nHue, 0, 360 );
	float h = ( nHue == 360 ? 0 : nHue ) / 60.0f;
	int i = int( h );
	float f = h - float( i );
	float s = float( nSaturation ) / 255.0f;
	float v = float( nValue ) / 255.0f;
	int nV = int( v * 255.0f );
	int p = int( ( 1.0f - s ) * v * 255.0f );
	int q = int( ( 1.0f - f * s ) * v * 255.0f );
	int t = int( ( 1.0f - ( 1.0f - f ) * s ) * v * 255.0f );
	switch ( i )
	{
	case 0: *pR = nV, *pG = t, *pB = p; break;
	case 1: *pR = q, *pG = nV, *pB = p; break;
	case 2: *pR = p, *pG = nV, *pB = t; break;
	case 3: *pR = p, *pG = q, *pB = nV; break;
	case 4: *pR = t, *pG = p, *pB = nV; break;
	default: *pR = nV, *pG = p, *pB = q; break;
	}
}

void FatColor_t::UpdateHSVFromRGB()
{
	r = Clamp( r, 0, 255 );
	g = Clamp( g, 0, 255 );
	b = Clamp( b, 0, 255 );
	int nMax = std::max( { r, g, b } );
	int nMin = std::min( { r, g, b } );
	int nDelta = nMax - nMin;
	v = nMax;
	if ( nMax == 0 )
		return;
	s = ( nDelta * 255 + nMax / 2 ) / nMax;
	if ( nDelta == 0 )
		return;
	float flHue;
	if ( nMax == r )
		flHue = float( g - b ) / float( nDelta );
	else if ( nMax == g )
		flHue = 2.0f + float( b - r ) / float( nDelta );
	else
		flHue = 4.0f + float( r - g ) / float( nDelta );
	flHue *= 60.0f;
	if ( flHue < 0.0f )
		flHue += 360.0f;
	h = Clamp( int( flHue + 0.5f ), 0, 360 );
	if ( h == 360 )
		h = 0;
}

void FatColor_t::UpdateRGBFromHSV()
{
	h = Clamp( h, 0, 360 );
	s = Clamp( s, 0, 255 );
	v = Clamp( v, 0, 255 );
	HSVToRGB( h, s, v, &r, &g, &b );
}

FatColor_t FatColor_t::FromRGB( int nR, int nG, int nB, int nA )
{
	FatColor_t color;
	color.r = nR;
	color.g = nG;
	color.b = nB;
	color.a = Clamp( nA, 0, 255 );
	color.UpdateHSVFromRGB();
	return color;
}

FatColor_t FatColor_t::FromHSV( int nH, int nS, int nV, int nA )
{
	FatColor_t color;
	color.h = nH;
	color.s = nS;
	color.v = nV;
	color.a = Clamp( nA, 0, 255 );
	color.UpdateRGBFromHSV();
	return color;
}
