#include "zoldoc_lib/zolfunctionpresets.h"

#include "core/kv3/keyvalues3.h"
#include "zoldoc_lib/zolfunctionnode.h"

namespace
{
KeyValues3 *WriteTable( KeyValues3 *pParent, const char *pKey )
{
	KeyValues3 *pTable = pParent->FindOrCreateMember( pKey );
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	return pTable;
}

void WriteVector( KeyValues3 *pTable, const char *pKey, float x, float y, float z )
{
	KeyValues3 *pArray = pTable->SetMemberEmptyArray( pKey );
	for ( float flValue : { x, y, z } )
		pArray->ArrayAddToTail()->SetFloat( flValue );
}

CZolDoc::FunctionInitialiser_t RandomFloat( int nAttribute, float flMin, float flMax, bool bSignFlip = false )
{
	return [ = ]( CZolFunctionNode *pNode ) {
		KeyValues3 *pTable = pNode->GetWriteKV3();
		pTable->SetMemberInt( "m_nOutputField", nAttribute );
		KeyValues3 *pInput = WriteTable( pTable, "m_InputValue" );
		pInput->SetMemberString( "m_nType", "PF_TYPE_RANDOM_UNIFORM" );
		pInput->SetMemberFloat( "m_flRandomMin", flMin );
		pInput->SetMemberFloat( "m_flRandomMax", flMax );
		if ( bSignFlip )
			pInput->SetMemberBool( "m_bHasRandomSignFlip", true );
	};
}

CZolDoc::FunctionInitialiser_t RandomVector()
{
	return []( CZolFunctionNode *pNode ) {
		KeyValues3 *pTable = pNode->GetWriteKV3();
		pTable->SetMemberInt( "m_nOutputField", 0 );
		KeyValues3 *pInput = WriteTable( pTable, "m_InputValue" );
		pInput->SetMemberString( "m_nType", "PVEC_TYPE_RANDOM_UNIFORM" );
		WriteVector( pInput, "m_vRandomMin", 0, 0, 0 );
		WriteVector( pInput, "m_vRandomMax", 0, 0, 0 );
	};
}

CZolDoc::FunctionInitialiser_t OffsetVector( int nAttribute, float flMax )
{
	return [ = ]( CZolFunctionNode *pNode ) {
		KeyValues3 *pTable = pNode->GetWriteKV3();
		pTable->SetMemberInt( "m_nOutputField", nAttribute );
		KeyValues3 *pInput = WriteTable( pTable, "m_InputValue" );
		pInput->SetMemberString( "m_nType", "PVEC_TYPE_RANDOM_UNIFORM_OFFSET" );
		WriteVector( pInput, "m_vRandomMin", 0, 0, 0 );
		WriteVector( pInput, "m_vRandomMax", flMax, flMax, flMax );
		pInput->SetMemberInt( "m_nVectorAttribute", 0 );
	};
}

enum RemapSource_t
{
	REMAP_PARTICLE_FLOAT,
	REMAP_CONTROL_POINT_COMPONENT,
	REMAP_CONTROL_POINT_SPEED,
};

CZolDoc::FunctionInitialiser_t Remap( RemapSource_t eSource )
{
	return [ = ]( CZolFunctionNode *pNode ) {
		KeyValues3 *pTable = pNode->GetWriteKV3();
		pTable->SetMemberInt( "m_nOutputField", 3 );
		KeyValues3 *pInput = WriteTable( pTable, "m_InputValue" );
		switch ( eSource )
		{
		case REMAP_PARTICLE_FLOAT:
			pInput->SetMemberString( "m_nType", "PF_TYPE_PARTICLE_FLOAT" );
			pInput->SetMemberInt( "m_nScalarAttribute", 8 );
			break;
		case REMAP_CONTROL_POINT_COMPONENT:
			pInput->SetMemberString( "m_nType", "PF_TYPE_CONTROL_POINT_COMPONENT" );
			pInput->SetMemberInt( "m_nControlPoint", 0 );
			pInput->SetMemberInt( "m_nVectorComponent", 0 );
			break;
		case REMAP_CONTROL_POINT_SPEED:
			pInput->SetMemberString( "m_nType", "PF_TYPE_CONTROL_POINT_SPEED" );
			pInput->SetMemberInt( "m_nControlPoint", 0 );
			break;
		}
		pInput->SetMemberString( "m_nMapType", "PF_MAP_TYPE_REMAP" );
		pInput->SetMemberFloat( "m_flInput0", 0.0f );
		pInput->SetMemberFloat( "m_flInput1", 1.0f );
		pInput->SetMemberFloat( "m_flOutput0", 0.0f );
		pInput->SetMemberFloat( "m_flOutput1", 1.0f );
		pTable->SetMemberString( "m_nSetMethod", "PARTICLE_SET_REPLACE_VALUE" );
	};
}

CZolDoc::FunctionInitialiser_t TransformInput()
{
	return []( CZolFunctionNode *pNode ) {
		KeyValues3 *pInput = WriteTable( pNode->GetWriteKV3(), "m_TransformInput" );
		pInput->SetMemberInt( "m_nControlPoint", 0 );
		pInput->SetMemberString( "m_nType", "PT_TYPE_CONTROL_POINT" );
	};
}

CUtlVector<ZolFunctionPreset_t> MakePresets()
{
	constexpr ParticleFunctionType_t INIT = PARTICLE_FUNCTION_INITIALIZER;
	CUtlVector<ZolFunctionPreset_t> presets;
	auto fnAdd = [ &presets ]( const char *pName, const char *pDescription, const char *pClass, CZolDoc::FunctionInitialiser_t fn ) {
		presets.AddToTail( ZolFunctionPreset_t{ pName, pDescription, INIT, pClass, static_cast<CZolDoc::FunctionInitialiser_t &&>( fn ) } );
	};
	fnAdd( "Lifetime Random (Init Float)", "Create an InitFloat that mimics the old 'lifetime random' operator", "C_INIT_InitFloat", RandomFloat( 1, 0, 1 ) );
	fnAdd( "Random Radius(Init Float)", "Create an InitFloat that mimics the old 'random radius' operator", "C_INIT_InitFloat", RandomFloat( 3, 1, 1 ) );
	fnAdd( "Random Scalar(Init Float)", "Create an InitFloat that mimics the old 'random scalar' operator", "C_INIT_InitFloat", RandomFloat( 3, 0, 0 ) );
	fnAdd( "Random Alpha Window Threshold(Init Float)", "Create an InitFloat that mimics the old 'Random Alpha Window Threshold' operator", "C_INIT_InitFloat",
		RandomFloat( 7, 0, 0 ) );
	fnAdd( "Random Alpha(Init Float)", "Create an InitFloat that mimics the old 'Random Alpha' operator", "C_INIT_InitFloat", RandomFloat( 7, 1, 1 ) );
	fnAdd( "Random Trail Length(Init Float)", "Create an InitFloat that mimics the old 'Random Trail Length' operator", "C_INIT_InitFloat",
		RandomFloat( 10, 0.1f, 0.1f ) );
	fnAdd( "Random Yaw(Init Float)", "Create an InitFloat that mimics the old 'Random Yaw' operator", "C_INIT_InitFloat", RandomFloat( 12, 0, 360, true ) );
	fnAdd( "Random Rotation Speed(Init Float)", "Create an InitFloat that mimics the old 'Random Rotation Speed' operator", "C_INIT_InitFloat",
		RandomFloat( 5, 0, 360, true ) );
	fnAdd( "Random Rotation(Init Float)", "Create an InitFloat that mimics the old 'Random Rotation' operator", "C_INIT_InitFloat", RandomFloat( 4, 0, 360, true ) );
	fnAdd( "Random Vector(Init Vec)", "Create an InitVec that mimics the old 'Random Vector' operator", "C_INIT_InitVec", RandomVector() );
	fnAdd( "Add Vector to Vector(Init Vec)", "Create an InitVec that mimics the old 'Add Vector to Vector' operator", "C_INIT_InitVec", OffsetVector( 0, 0 ) );
	fnAdd( "Offset Vector(Init Vec)", "Create an InitVec that mimics the old 'Offset Vector' operator", "C_INIT_InitVec", OffsetVector( 0, 1 ) );
	fnAdd( "Remap Scalar (Init Float)", "Create an Float that mimics the old 'Remap Scalar' operator", "C_INIT_InitFloat", Remap( REMAP_PARTICLE_FLOAT ) );
	fnAdd( "Remap CP To Scalar (Init Float)", "Create an Float that mimics the old 'Remap CP To Scalar' operator", "C_INIT_InitFloat",
		Remap( REMAP_CONTROL_POINT_COMPONENT ) );
	fnAdd( "Remap Speed To Scalar (Init Float)", "Create an Float that mimics the old 'Remap Speed To Scalar' operator", "C_INIT_InitFloat",
		Remap( REMAP_CONTROL_POINT_SPEED ) );
	fnAdd( "Remap CP To Vector (Transform->Vec)", "Create an TransformToVector that mimics the old 'Remap CP To Vector' operator", "C_INIT_RemapTransformToVector",
		TransformInput() );
	fnAdd( "Direction to CP To Vector (DirectionToTransformToVector)",
		"Create a DirectionToTransformToVector that mimics the old 'Direction to CP To Vector' operator", "C_INIT_RemapInitialDirectionToTransformToVector",
		TransformInput() );
	fnAdd( "Transform CP to Rotation(TransformDirectionToRotation)",
		"Create a TransformDirectionToRotation that mimics the old 'Transform CP To Rotation' operator", "C_INIT_RemapInitialTransformDirectionToRotation",
		TransformInput() );
	fnAdd( "Remap CP Orientation to Rotation(Remap Transform Orientation to Rotations)",
		"Create a RemapTransformOrientationToRotations that mimics the old 'Remap CP Orientation To Rotations' operator",
		"C_INIT_RemapTransformOrientationToRotations", TransformInput() );
	return presets;
}
} // namespace

const CUtlVector<ZolFunctionPreset_t> &GetParticleFunctionPresets()
{
	static const CUtlVector<ZolFunctionPreset_t> s_Presets = MakePresets();
	return s_Presets;
}
