#pragma once
// A colour as the colour picker passes it between its parts: both the RGB and the HSV
// form, so that a hue survives a trip through grey (where RGB alone forgets it).
// Hue runs 0..360, everything else 0..255.

struct FatColor_t
{
	int r = 0;
	int g = 0;
	int b = 0;
	int h = 0;
	int s = 0;
	int v = 0;
	int a = 255;

	// Fills h, s, v from r, g, b. A grey keeps the hue it had; black keeps the saturation too.
	void UpdateHSVFromRGB();
	// Fills r, g, b from h, s, v.
	void UpdateRGBFromHSV();

	static FatColor_t FromRGB( int nR, int nG, int nB, int nA = 255 );
	static FatColor_t FromHSV( int nH, int nS, int nV, int nA = 255 );

	bool operator==( const FatColor_t &other ) const
	{
		return r == other.r && g == other.g && b == other.b && h == other.h && s == other.s && v == other.v && a == other.a;
	}
	bool operator!=( const FatColor_t &other ) const { return !( *this == other ); }
};

// HSV (hue 0..360, saturation and value 0..255) to RGB channels 0..255.
void HSVToRGB( int nHue, int nSaturation, int nValue, int *pR, int *pG, int *pB );
