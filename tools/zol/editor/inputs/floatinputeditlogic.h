#pragma once
// What the float input editor shows and what its edits do, without widgets: the type menus
// of the editor's variants, the pages of a type and map type, the row's height, and the
// rules of a type switch, a map switch and a range. The editor asks these, and tests check
// them headless. A switch keeps every other field of the input: they all stand side by side
// and only those of the current type mean anything, so switching back finds them again.

#include <cstdint>
#include <string>
#include <vector>

class CParticleFloatInput;

// The editor's variants differ in what the input's source may be.
enum FloatInputEditorKind_t
{
	FLOAT_INPUT_EDITOR_COLLECTION = 0,   // the system as a whole: no per-particle sources
	FLOAT_INPUT_EDITOR_PER_PARTICLE = 1, // every source
	FLOAT_INPUT_EDITOR_REMAP = 2,        // the function feeds the value: only the map stage
};

// The pages, each a set of widgets shown together.
enum FloatInputPage_t : uint32_t
{
	FLOAT_PAGE_MULTI_SELECT = 1u << 0,
	FLOAT_PAGE_TYPE_BUTTON = 1u << 1,
	FLOAT_PAGE_LITERAL = 1u << 2,
	FLOAT_PAGE_NAMED_VALUE = 1u << 3,
	FLOAT_PAGE_TYPE_LABEL = 1u << 4,
	FLOAT_PAGE_RANDOM = 1u << 5,
	FLOAT_PAGE_RANDOM_BIAS = 1u << 6,
	FLOAT_PAGE_CONTROL_POINT = 1u << 7,      // "CP#" and its number
	FLOAT_PAGE_CP_CHANGE_TIME = 1u << 8,     // "Last Changed Time CP#" and the number
	FLOAT_PAGE_COMPONENT = 1u << 9,
	FLOAT_PAGE_ATTRIBUTE = 1u << 10,
	FLOAT_PAGE_SNAPSHOT = 1u << 11,
	FLOAT_PAGE_CAMERA_FALLBACK = 1u << 12,
	FLOAT_PAGE_CAMERA_BBOX = 1u << 13,       // "Use BBox Center, not CP"
	FLOAT_PAGE_REVERSE = 1u << 14,
	FLOAT_PAGE_DETAIL_LEVEL = 1u << 15,
	FLOAT_PAGE_NOISE = 1u << 16,
	FLOAT_PAGE_NOISE_ATTRIBUTE = 1u << 17,   // "Noise Input Vector:" and the attribute combo
	FLOAT_PAGE_MAP_BUTTON = 1u << 18,
	FLOAT_PAGE_MULTIPLY = 1u << 19,
	FLOAT_PAGE_INPUT_RANGE = 1u << 20,
	FLOAT_PAGE_OUTPUT_RANGE = 1u << 21,
	FLOAT_PAGE_MAP_BIAS = 1u << 22,
	FLOAT_PAGE_CURVE = 1u << 23,
	FLOAT_PAGE_NOTCHED = 1u << 24,
	FLOAT_PAGE_ROUND = 1u << 25,
};

// Row heights, in pixels.
constexpr int FLOAT_INPUT_ROW_HEIGHT = 22;
constexpr int FLOAT_INPUT_MAP_ROW_HEIGHT = 20;
constexpr int FLOAT_INPUT_BIAS_HEIGHT = 40;
constexpr int FLOAT_INPUT_CURVE_HEIGHT = 140;
constexpr int FLOAT_INPUT_NOISE_IMAGE_HEIGHT = 48;
constexpr int FLOAT_INPUT_NOISE_TIMER_MS = 33;

// The attributes that the combos offer: float attributes and vector attributes.
constexpr uint64_t FLOAT_INPUT_FLOAT_ATTRIBUTES = 0xF1C60C9D7FBAull;
constexpr uint64_t FLOAT_INPUT_VECTOR_ATTRIBUTES = 0x10E0140628045ull;

// The types a variant's menu offers, in menu order.
std::vector<int> GetFloatInputTypeMenu( int nKind, bool bRenderer );
// Whether the type's page ends without a map stage (literal, randoms, detail level).
bool IsFloatInputTypeWithoutMap( int nType );

// The pages that show an input.
uint32_t GetFloatInputPages( const CParticleFloatInput &input, int nKind, int nInstances );
// The row's height: 22 for several instances; else by type, plus what the map stage adds.
int GetFloatInputEditorHeight( const CParticleFloatInput &input, int nKind, int nInstances );
// What a map type adds below the type's rows.
int GetFloatInputMapAddition( int nMapType );

// A type switch; false when it is the type already.
bool SetFloatInputType( CParticleFloatInput *pInput, int nType );
// A map switch; false when unchanged. Switching to the curve gives a curve of fewer than two
// keys the range 0..1 at least and the keys (0,0) and (1,1); a curve with two keys or more
// is left as it is.
bool SetFloatInputMapType( CParticleFloatInput *pInput, int nMapType );
// A curve's domain widened to hold at least 0..1 on both axes.
void WidenFloatInputCurveDomain( CParticleFloatInput *pInput );
// The range fields: for a remap the input and output ranges, and with a curve map the
// curve's domain too. False when nothing changed.
bool SetFloatInputRange( CParticleFloatInput *pInput, float flInput0, float flInput1, float flOutput0, float flOutput1 );
// The four numbers the range fields show: the curve's domain for a curve map, else the
// remap's ranges.
void GetFloatInputRange( const CParticleFloatInput &input, float *pInput0, float *pInput1, float *pOutput0, float *pOutput1 );

// An attribute the combos offer: its number and its name ("Initial Radius" for an initial form).
struct FloatInputAttributeChoice_t
{
	int m_nAttribute;
	std::string m_Name;
};
std::vector<FloatInputAttributeChoice_t> GetFloatInputAttributeChoices( uint64_t nMask, bool bInitial );
// The mask and initial form of the attribute combo of a type (18..21, and noise).
uint64_t GetFloatInputAttributeMask( int nType );
bool IsFloatInputInitialAttributeType( int nType );

// A control point number from text: below 1 (and anything that isn't a number) is 0, 63
// and above is 63.
int ParseControlPointNumber( const char *pText );
