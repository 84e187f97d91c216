#include "tools/zol/editor/inputs/vecinputeditlogic.h"

#include <cstddef>

#include "core/particles/particleinputtypes.h"

namespace
{
const InputTypeMenuRow_t s_VecDisabled = { PVEC_TYPE_INVALID, "Disabled", "disabled.png" };
const InputTypeMenuRow_t s_VecTypes[] = {
	{ PVEC_TYPE_LITERAL, "Literal Vector", "vec_literal.png" },
	{ PVEC_TYPE_LITERAL_COLOR, "Literal Color", "vec_literal_color.png" },
	{ PVEC_TYPE_NAMED_VALUE, "Named Value", "vec_named_value.png" },
	{ PVEC_TYPE_PARTICLE_VECTOR, "Per-Particle Vector", "vec_particle_vector.png" },
	{ PVEC_TYPE_PARTICLE_INITIAL_VECTOR, "Per-Particle Initial Vector", "vec_particle_vector.png" },
	{ PVEC_TYPE_PARTICLE_VELOCITY, "Per-Particle Velocity", "vec_particle_velocity.png" },
	{ PVEC_TYPE_CP_VALUE, "Control Point Value", "vec_cp_value.png" },
	{ PVEC_TYPE_CP_RELATIVE_POSITION, "CP-Relative Position", "vec_cp_relative_pos.png" },
	{ PVEC_TYPE_CP_RELATIVE_DIR, "CP-Relative Direction", "vec_cp_relative_dir.png" },
	{ PVEC_TYPE_CP_RELATIVE_RANDOM_DIR, "CP-Relative Random Direction", "vec_cp_relative_dir.png" },
	{ PVEC_TYPE_FLOAT_COMPONENTS, "3 Float Inputs", "vec_float_components.png" },
	{ PVEC_TYPE_FLOAT_INTERP_CLAMPED, "Float Interp (Clamped)", "vec_interp_clamp.png" },
	{ PVEC_TYPE_FLOAT_INTERP_OPEN, "Float Interp (Open)", "vec_interp_open.png" },
	{ PVEC_TYPE_FLOAT_INTERP_GRADIENT, "Color Gradient", "vec_gradient.png" },
	{ PVEC_TYPE_RANDOM_UNIFORM, "Random Uniform", "float_random_uniform.png" },
	{ PVEC_TYPE_RANDOM_UNIFORM_OFFSET, "Random Uniform Offset", "vec_random_uniform_offset.png" },
	{ PVEC_TYPE_CP_DELTA, "Delta Between Control Points", "vec_cp_relative_pos.png" },
	{ PVEC_TYPE_CLOSEST_CAMERA_POSITION, "Closest Camera Position", "cam_closest_distance.png" },
};
const InputTypeMenuRow_t s_TransformTypes[] = {
	{ PT_TYPE_INVALID, "Disabled", "disabled.png" },
	{ PT_TYPE_NAMED_VALUE, "Named Value", "vec_named_value.png" },
	{ PT_TYPE_CONTROL_POINT, "Control Point Value", "vec_cp_value.png" },
	{ PT_TYPE_CONTROL_POINT_RANGE, "Control Point Range", "vec_cp_relative_dir.png" },
};
const InputTypeMenuRow_t s_ModelTypes[] = {
	{ PM_TYPE_INVALID, "Disabled", "disabled.png" },
	{ PM_TYPE_NAMED_VALUE_MODEL, "Named Value (Model)", "vec_named_value.png" },
	{ PM_TYPE_NAMED_VALUE_EHANDLE, "Named Value (Entity)", "vec_named_value.png" },
	{ PM_TYPE_CONTROL_POINT, "Control Point Value", "vec_cp_value.png" },
};

bool IsPerParticleVecType( int nType )
{
	return nType == PVEC_TYPE_PARTICLE_VECTOR || nType == PVEC_TYPE_PARTICLE_INITIAL_VECTOR || nType == PVEC_TYPE_PARTICLE_VELOCITY;
}

template <std::size_t N> const InputTypeMenuRow_t *FindRow( const InputTypeMenuRow_t ( &rows )[ N ], int nType )
{
	for ( const InputTypeMenuRow_t &row : rows )
	{
		if ( row.m_nValue == nType )
			return &row;
	}
	return nullptr;
}

// Disabled is type 0 of the transform and model menus: only an optional field offers it.
template <std::size_t N> std::vector<InputTypeMenuRow_t> MenuWithOptionalFirst( const InputTypeMenuRow_t ( &rows )[ N ], bool bOptional )
{
	std::vector<InputTypeMenuRow_t> menu;
	for ( std::size_t i = bOptional ? 0 : 1; i < N; ++i )
		menu.push_back( rows[ i ] );
	return menu;
}
} // namespace

std::vector<InputTypeMenuRow_t> GetVecInputTypeMenu( bool bPerParticle, bool bOptional )
{
	std::vector<InputTypeMenuRow_t> menu;
	if ( bOptional )
		menu.push_back( s_VecDisabled );
	for ( const InputTypeMenuRow_t &row : s_VecTypes )
	{
		if ( bPerParticle || !IsPerParticleVecType( row.m_nValue ) )
			menu.push_back( row );
	}
	return menu;
}

std::vector<InputTypeMenuRow_t> GetTransformInputTypeMenu( bool bOptional )
{
	return MenuWithOptionalFirst( s_TransformTypes, bOptional );
}

std::vector<InputTypeMenuRow_t> GetModelInputTypeMenu( bool bOptional )
{
	return MenuWithOptionalFirst( s_ModelTypes, bOptional );
}

const InputTypeMenuRow_t *FindVecInputType( int nType )
{
	return nType == PVEC_TYPE_INVALID ? &s_VecDisabled : FindRow( s_VecTypes, nType );
}

const InputTypeMenuRow_t *FindTransformInputType( int nType )
{
	return FindRow( s_TransformTypes, nType );
}

const InputTypeMenuRow_t *FindModelInputType( int nType )
{
	return FindRow( s_ModelTypes, nType );
}

int GetVecInputEditorHeight( int nType, const int nComponentHeights[ 3 ], int nInterpHeight )
{
	switch ( nType )
	{
	case PVEC_TYPE_PARTICLE_VECTOR:
	case PVEC_TYPE_PARTICLE_INITIAL_VECTOR:
	case PVEC_TYPE_RANDOM_UNIFORM: return 66;
	case PVEC_TYPE_PARTICLE_VELOCITY:
	case PVEC_TYPE_CP_VALUE:
	case PVEC_TYPE_CP_RELATIVE_POSITION:
	case PVEC_TYPE_CP_RELATIVE_DIR:
	case PVEC_TYPE_CP_DELTA:
	case PVEC_TYPE_CLOSEST_CAMERA_POSITION: return 44;
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET: return 110;
	case PVEC_TYPE_FLOAT_COMPONENTS: return nComponentHeights[ 0 ] + nComponentHeights[ 1 ] + nComponentHeights[ 2 ] + VEC_INPUT_ROW_HEIGHT;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN: return nInterpHeight + 2 * VEC_INPUT_INTERP_ROW_HEIGHT;
	// The Input row and the gradient's editor, which needs room for its strip and footer.
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: return nInterpHeight + 2 * VEC_INPUT_INTERP_ROW_HEIGHT + 73;
	default: return VEC_INPUT_ROW_HEIGHT;
	}
}
