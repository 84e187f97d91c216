#include "particleslib/particleinputclasses.h"

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/logging/logonce.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particlemodelinput.h"
#include "particleslib/particleslogging.h"
#include "particleslib/particletransforminput.h"
#include "particleslib/particlevariableref.h"
#include "particleslib/particlevecinput.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
template <typename... Classes> void RegisterAll( CSchemaSystemTypeScope *pScope )
{
	( RegisterKV3TransferClass<Classes>( pScope ), ... );
}

void RegisterOnce()
{
	RegisterAll<CParticleInput, CParticleFloatInput, CPerParticleFloatInput, CParticleCollectionFloatInput, CParticleRemapFloatInput,
				CParticleCollectionRendererFloatInput, CParticleVecInput, CPerParticleVecInput, CParticleCollectionVecInput,
				CParticleCollectionRendererVecInput, CParticleTransformInput, CParticleModelInput, CParticleVariableRef>( ParticleTypeScope() );
}

template <typename C> bool InputsEquivalent( const KeyValues3 *pValue, const KeyValues3 *pDefault )
{
	KeyValues3 null;
	const KeyValues3 &value = pValue ? *pValue : null;
	const KeyValues3 &defaultValue = pDefault ? *pDefault : null;
	if ( value.IsEqual( defaultValue ) )
		return true;
	C loadedValue, loadedDefault;
	CUtlString error;
	if ( !LoadKV3ObjectInPlace( &loadedValue, &value, &error ) || !LoadKV3ObjectInPlace( &loadedDefault, &defaultValue, &error ) )
	{
		// Property panels ask again on every refresh; one message per distinct fault is enough.
		LoggingSystem_LogOnceByKey( ParticlesLogChannel(), LS_WARNING, error.Get(), "LoadKV3ObjectInPlace error: %s\n", error.Get() );
		return false;
	}
	return C::IsEquivalent( loadedValue, loadedDefault );
}

// The input's saved form, members at their default left out; false when it doesn't load.
template <typename C> bool SaveLoadedInput( const KeyValues3 *pValue, KeyValues3 *pOut )
{
	C input;
	CUtlString error;
	if ( !LoadKV3ObjectInPlace( &input, pValue, &error ) )
		return false;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	return SaveKV3Object( input, pOut, &error, &context );
}

template <typename C> bool DisplayInput( const KeyValues3 *pInput, const char *pszDomain, CBufferString *pOut, CUtlString *pError )
{
	C input;
	CUtlString error;
	bool bLoaded = LoadKV3ObjectInPlace( &input, pInput, &error );
	BuildDisplayString( input, pOut, pszDomain ? pszDomain : "" );
	if ( !bLoaded && pError )
		pError->Set( error.Get() );
	return bLoaded;
}
} // namespace

void RegisterParticleInputClasses()
{
	static const bool s_bRegistered = ( RegisterOnce(), true );
	(void)s_bRegistered;
}

bool CParticleFloatInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault ) { return InputsEquivalent<CParticleFloatInput>( pValue, pDefault ); }
bool CParticleVecInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault ) { return InputsEquivalent<CParticleVecInput>( pValue, pDefault ); }
bool CParticleTransformInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault )
{
	return InputsEquivalent<CParticleTransformInput>( pValue, pDefault );
}
bool CParticleModelInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault ) { return InputsEquivalent<CParticleModelInput>( pValue, pDefault ); }

bool SaveParticleInputCanonically( const char *pszClassName, const KeyValues3 *pValue, KeyValues3 *pOut )
{
	RegisterParticleInputClasses();
	KeyValues3 null;
	pValue = pValue ? pValue : &null;
	const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pszClassName );
	auto fnIsA = [ pClass ]( const char *pszBase ) { return pClass && pClass->IsA( ParticleTypeScope()->FindDeclaredClass( pszBase ) ); };
	if ( fnIsA( "CParticleRemapFloatInput" ) )
		return SaveLoadedInput<CParticleRemapFloatInput>( pValue, pOut );
	if ( fnIsA( "CParticleFloatInput" ) )
		return SaveLoadedInput<CParticleFloatInput>( pValue, pOut );
	if ( fnIsA( "CParticleVecInput" ) )
		return SaveLoadedInput<CParticleVecInput>( pValue, pOut );
	if ( fnIsA( "CParticleTransformInput" ) )
		return SaveLoadedInput<CParticleTransformInput>( pValue, pOut );
	if ( fnIsA( "CParticleModelInput" ) )
		return SaveLoadedInput<CParticleModelInput>( pValue, pOut );
	return false;
}

bool RegisterParticleInputDefaultTests( CToolAttrHost *pHost )
{
	if ( !pHost )
		return false;
	struct NamedTest_t
	{
		const char *m_pszName;
		bool ( *m_pfnTest )( const KeyValues3 *, const KeyValues3 * );
	};
	static const NamedTest_t s_Tests[] = {
		{ "CParticleFloatInputDefaultTestFunc", &CParticleFloatInputDefaultTestFunc },
		{ "CParticleVecInputDefaultTestFunc", &CParticleVecInputDefaultTestFunc },
		{ "CParticleTransformInputDefaultTestFunc", &CParticleTransformInputDefaultTestFunc },
		{ "CParticleModelInputDefaultTestFunc", &CParticleModelInputDefaultTestFunc },
	};
	bool bAllPresent = true;
	for ( const NamedTest_t &test : s_Tests )
	{
		pHost->RegisterDefaultTest( test.m_pszName, test.m_pfnTest );
		bAllPresent = bAllPresent && static_cast<bool>( pHost->FindDefaultTest( test.m_pszName ) );
	}
	return bAllPresent;
}

bool GetParticleInputDisplayString( const char *pszClassName, const KeyValues3 *pInput, const char *pszDomain, CBufferString *pOut, CUtlString *pError )
{
	RegisterParticleInputClasses();
	pOut->Set( "" );
	const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pszClassName );
	const CSchemaClassInfo *pFloatBase = ParticleTypeScope()->FindDeclaredClass( "CParticleFloatInput" );
	const CSchemaClassInfo *pVecBase = ParticleTypeScope()->FindDeclaredClass( "CParticleVecInput" );
	if ( pClass && pClass->IsA( pFloatBase ) )
	{
		// The remap class has no source of its own: its table's missing type reads as none.
		if ( std::strcmp( pClass->GetName(), "CParticleRemapFloatInput" ) == 0 )
			return DisplayInput<CParticleRemapFloatInput>( pInput, pszDomain, pOut, pError );
		return DisplayInput<CParticleFloatInput>( pInput, pszDomain, pOut, pError );
	}
	if ( pClass && pClass->IsA( pVecBase ) )
		return DisplayInput<CParticleVecInput>( pInput, pszDomain, pOut, pError );
	if ( pError )
		pError->Format( "'%s' is not a displayable particle input class", pszClassName ? pszClassName : "" );
	return false;
}
