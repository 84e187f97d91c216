#pragma once
// What the vector, transform and model input editors offer and how tall their rows are,
// without widgets: the type menus (with "Disabled" first only where the field is
// optional), and the heights of a vector input's pages.

#include <vector>

class CParticleVecInput;

// One row of a type menu: the value, its text and its icon under "game:tools/images/zol/".
struct InputTypeMenuRow_t
{
	int m_nValue;
	const char *m_pText;
	const char *m_pIcon;
};

// "Disabled" (value -1) first when the field is optional; the per-particle types only in
// the per-particle variant.
std::vector<InputTypeMenuRow_t> GetVecInputTypeMenu( bool bPerParticle, bool bOptional );
// "Disabled" (type 0) only when the field is optional.
std::vector<InputTypeMenuRow_t> GetTransformInputTypeMenu( bool bOptional );
std::vector<InputTypeMenuRow_t> GetModelInputTypeMenu( bool bOptional );
// The menu's row of a type, or null when the type has none (a stored type the variant
// doesn't offer still has its text and icon).
const InputTypeMenuRow_t *FindVecInputType( int nType );
const InputTypeMenuRow_t *FindTransformInputType( int nType );
const InputTypeMenuRow_t *FindModelInputType( int nType );

// Heights of the vector editor's row.
constexpr int VEC_INPUT_ROW_HEIGHT = 22;
// The Input and Output rows of the interpolations.
constexpr int VEC_INPUT_INTERP_ROW_HEIGHT = 35;
// The gradient's editor under the gradient type's Input row.
constexpr int VEC_INPUT_GRADIENT_HEIGHT = 108;

// The row's height for a type, given the heights of the rows of the float inputs it holds
// (the three components, or the interpolation's input).
int GetVecInputEditorHeight( int nType, const int nComponentHeights[ 3 ], int nInterpHeight );
