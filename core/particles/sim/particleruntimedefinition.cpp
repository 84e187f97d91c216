#include "core/particles/sim/particleruntimedefinition.h"

#include <algorithm>
#include <filesystem>
#include <strings.h>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/host/hostpaths.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logonce.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/particles/sim/particleattributestorage.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlekv3read.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/strtools.h"

using namespace ParticleKV3;

namespace
{
// Attributes every collection stores: what emission, movement, decay and drawing need.
constexpr uint64_t CORE_ATTRIBUTES = ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_POSITION ) | ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_LIFE_DURATION ) |
									  ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_PREVIOUS_POSITION ) | ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_RADIUS ) |
									  ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_ROLL ) | ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_COLOR ) |
									  ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_ALPHA ) | ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_CREATION_TIME ) |
									  ( uint64_t( 1 ) << PARTICLE_ATTRIBUTE_PARTICLE_ID );

constexpr int MAX_PARTICLES_LIMIT = 1 << 22;

std::atomic<uint32_t> s_nNextUsageID{ 1 };

// A function class that the schema declares but the runtime has no behaviour for: it
// compiles, reports what its inputs touch, and does nothing.
class CNoBehaviourFunction final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader & ) override {}
};

bool IsDeclaredFunctionClass( const char *pClassName )
{
	RegisterParticleFunctionClasses();
	return ParticleTypeScope()->FindDeclaredClass( pClassName ) != nullptr;
}

// The list a declared function class belongs in; PARTICLE_FUNCTION_ROOT for the family
// bases and for classes of no list.
ParticleFunctionType_t DeclaredFunctionList( const char *pClassName )
{
	RegisterParticleFunctionClasses();
	return CHostParticleSystemMgr::GetFunctionClassType( ParticleTypeScope()->FindDeclaredClass( pClassName ) );
}

void ReadNamedValueLocal( const KeyValues3 *pLocal, CHostNamedValueBindings *pBindings )
{
	const KeyValues3 *pName = Member( pLocal, "m_Name" );
	if ( !pName || !pName->IsString() || !*pName->GetString() )
		return;
	ParticleNamedValueEntry_t entry;
	entry.m_ID = ParticleParamID_t::Named( pName->GetString() );
	entry.m_Type = "PVAL_VEC3";
	const KeyValues3 *pType = Member( pLocal, "m_ValueType" );
	if ( pType && pType->IsString() && *pType->GetString() )
		entry.m_Type = pType->GetString();
	else if ( pType && pType->IsTable() && pType->GetMemberCount() > 0 && pType->GetMember( 0 )->IsString() )
		entry.m_Type = pType->GetMember( 0 )->GetString();
	const KeyValues3 *pValue = Member( Member( pLocal, "m_DefaultConfig" ), "m_ConfigValue" );
	if ( pValue && pValue->IsArray() && pValue->GetArrayElementCount() >= 3 )
	{
		entry.m_vDefault = ReadVector( pValue, Vector() );
		entry.m_flDefault = entry.m_vDefault.x;
	}
	else if ( pValue && pValue->IsTable() )
	{
		// A transform: origin and angles.
		entry.m_vDefault = ReadVector( Member( pValue, "m_vPosition" ), ReadVector( Member( pValue, "m_vOrigin" ), Vector() ) );
		entry.m_vDefaultAngles = ReadVector( Member( pValue, "m_angOrientation" ), Vector() );
	}
	else if ( pValue && pValue->IsString() && V_strnicmp_fast( entry.m_Type.Get(), "PVAL_RESOURCE", 13 ) == 0 )
	{
		entry.m_DefaultResource = pValue->GetString();
	}
	else if ( pValue )
	{
		entry.m_flDefault = ReadFloat( pValue, 0.0f );
		entry.m_vDefault = Vector( entry.m_flDefault, entry.m_flDefault, entry.m_flDefault );
	}
	pBindings->Declare( entry );
}

bool CompileFunctionList( const KeyValues3 *pRoot, int nList, CParticleRuntimeDefinition *pDef, ParticleInputCompileContext_t *pContext, CUtlString *pError )
{
	const char *pKey = GetParticleFunctionListKey( nList );
	const KeyValues3 *pArray = Member( pRoot, pKey );
	if ( !pArray || pArray->IsNull() )
		return true;
	if ( !pArray->IsArray() )
	{
		pError->Format( "%s is a '%s', not an array", pKey, pArray->GetTypeAsString() );
		return false;
	}
	for ( int i = 0; i < pArray->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pElement = pArray->GetArrayElement( i );
		if ( !pElement->IsTable() )
		{
			pError->Format( "%s[%d] is a '%s', not a table", pKey, i, pElement->GetTypeAsString() );
			return false;
		}
		const KeyValues3 *pClass = Member( pElement, "_class" );
		if ( !pClass || !pClass->IsString() || !*pClass->GetString() )
		{
			pError->Format( "%s[%d] has no _class", pKey, i );
			return false;
		}
		if ( ReadBool( Member( pElement, "m_bDisableOperator" ), false ) )
			continue;
		const char *pClassName = pClass->GetString();
		// A function runs with what its own list provides (forces, for one): in another
		// list it has no place. Its list is the one of its name as registered, since a
		// name may be written in another case.
		const char *pRegisteredName = pClassName;
		FindParticleSimFunctionFactory( pClassName, &pRegisteredName );
		const ParticleFunctionType_t eBelongs = DeclaredFunctionList( pRegisteredName );
		if ( eBelongs != PARTICLE_FUNCTION_ROOT && eBelongs != nList )
		{
			pError->Format( "%s[%d]: '%s' belongs in %s, not in %s", pKey, i, pClassName, GetParticleFunctionListKey( eBelongs ), pKey );
			return false;
		}
		std::unique_ptr<CParticleSimFunction> pFunction;
		if ( ParticleSimFunctionFactory_t pfnCreate = FindParticleSimFunctionFactory( pClassName ) )
		{
			pFunction = pfnCreate();
		}
		else if ( IsDeclaredFunctionClass( pClassName ) )
		{
			pFunction = std::make_unique<CNoBehaviourFunction>();
			pFunction->m_bHasBehaviour = false;
			LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, pClassName, "Particle function '%s' has no behaviour in the preview yet; it is skipped.\n", pClassName );
		}
		else
		{
			pError->Format( "%s[%d]: unknown particle function class '%s'", pKey, i, pClassName );
			return false;
		}
		pFunction->m_ClassName = pClassName;
		pFunction->m_eType = ParticleFunctionType_t( nList );
		pFunction->m_nRuntimeIndex = int( pDef->m_Functions[ nList ].size() );
		CUtlString where;
		where.Format( "%s[%d] (%s)", pKey, i, pClassName );
		CParticleFunctionReader reader( pElement, pFunction.get(), pContext, where.Get() );
		pFunction->Read( reader );
		if ( reader.HasFailed() )
		{
			*pError = reader.GetError();
			return false;
		}
		pFunction->m_nReadAttributes |= reader.m_nReadMask;
		pFunction->m_nReadInitialAttributes |= reader.m_nReadInitialMask;
		pFunction->CollectOwnControlPointUsage( &pFunction->m_ControlPointUsage );
		for ( const HostControlPointUsage_t &usage : pFunction->m_ControlPointUsage )
			pDef->m_Usage.Add( nList, pFunction->m_nRuntimeIndex, usage );
		pDef->m_nAttributeMask |= pFunction->m_nWrittenAttributes | pFunction->m_nReadAttributes | pFunction->m_nReadInitialAttributes;
		pDef->m_nInitialAttributeMask |= pFunction->m_nReadInitialAttributes;
		pDef->m_Functions[ nList ].push_back( std::move( pFunction ) );
	}
	return true;
}

bool CompileChildren( const KeyValues3 *pRoot, CParticleRuntimeDefinition *pDef, const ParticleChildResolver_t &resolver, CUtlString *pError )
{
	const KeyValues3 *pArray = Member( pRoot, "m_Children" );
	if ( !pArray || pArray->IsNull() )
		return true;
	if ( !pArray->IsArray() )
	{
		pError->Format( "m_Children is a '%s', not an array", pArray->GetTypeAsString() );
		return false;
	}
	for ( int i = 0; i < pArray->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pElement = pArray->GetArrayElement( i );
		if ( !pElement->IsTable() )
		{
			pError->Format( "m_Children[%d] is a '%s', not a table", i, pElement->GetTypeAsString() );
			return false;
		}
		if ( ReadBool( Member( pElement, "m_bDisableChild" ), false ) )
			continue;
		const KeyValues3 *pRef = Member( pElement, "m_ChildRef" );
		if ( !pRef || pRef->IsNull() )
		{
			pError->Format( "m_Children[%d] names no system (it has no m_ChildRef)", i );
			return false;
		}
		if ( !pRef->IsString() )
		{
			pError->Format( "m_Children[%d]: m_ChildRef is a '%s', not the name of a system file", i, pRef->GetTypeAsString() );
			return false;
		}
		if ( !*pRef->GetString() )
		{
			pError->Format( "m_Children[%d] names no system (m_ChildRef is empty)", i );
			return false;
		}
		if ( !resolver )
		{
			pError->Format( "m_Children[%d]: no way to find the child '%s'", i, pRef->GetString() );
			return false;
		}
		CUtlString childError;
		ParticleDefinitionPtr_t pChild = resolver( pRef->GetString(), &childError );
		if ( !pChild )
		{
			pError->Format( "Child '%s': %s", pRef->GetString(), childError.IsEmpty() ? "not found" : childError.Get() );
			return false;
		}
		pDef->m_nTreeSystems += pChild->m_nTreeSystems;
		pDef->m_nTreeParticles += pChild->m_nTreeParticles;
		if ( pDef->m_nTreeSystems > PARTICLE_TREE_MAX_SYSTEMS || pDef->m_nTreeParticles > PARTICLE_TREE_MAX_PARTICLES )
		{
			pError->Format( "with m_Children[%d] ('%s') its tree of children holds more than one preview can afford (at least %lld systems and %lld particles; "
							"at most %lld systems and %lld particles together)",
				i, pRef->GetString(), static_cast<long long>( pDef->m_nTreeSystems ), static_cast<long long>( pDef->m_nTreeParticles ),
				static_cast<long long>( PARTICLE_TREE_MAX_SYSTEMS ), static_cast<long long>( PARTICLE_TREE_MAX_PARTICLES ) );
			return false;
		}
		ParticleChildInfo_t info;
		info.m_pDefinition = pChild;
		info.m_ChildRef = pRef->GetString();
		info.m_flDelay = std::max( 0.0f, ReadFloat( Member( pElement, "m_flDelay" ), 0.0f ) );
		info.m_bEndCap = ReadBool( Member( pElement, "m_bEndCap" ), false );
		// Before behaviour version 5 disabled children kept their place in the numbering.
		int nRuntimeIndex = pDef->m_nBehaviorVersion < 5 ? i : int( pDef->m_Children.size() );
		pDef->m_Usage.AddChild( nRuntimeIndex, pChild->m_Usage );
		pDef->m_Children.push_back( std::move( info ) );
	}
	return true;
}

void ReadBaseProperties( const KeyValues3 *pRoot, CParticleRuntimeDefinition *pDef )
{
	pDef->m_nBehaviorVersion = ReadInt( Member( pRoot, "m_nBehaviorVersion" ), 0 );
	pDef->m_nMaxParticles = std::clamp( ReadInt( Member( pRoot, "m_nMaxParticles" ), 1000 ), 0, MAX_PARTICLES_LIMIT );
	pDef->m_nInitialParticles = std::clamp( ReadInt( Member( pRoot, "m_nInitialParticles" ), 0 ), 0, pDef->m_nMaxParticles );
	int rgba[ 4 ];
	if ( ReadColor( Member( pRoot, "m_ConstantColor" ), rgba ) )
	{
		pDef->m_ConstantColor = Vector( float( rgba[ 0 ] ) / 255.0f, float( rgba[ 1 ] ) / 255.0f, float( rgba[ 2 ] ) / 255.0f );
		pDef->m_flConstantAlpha = float( rgba[ 3 ] ) / 255.0f;
	}
	pDef->m_flConstantRadius = ReadFloat( Member( pRoot, "m_flConstantRadius" ), 5.0f );
	pDef->m_flConstantLifespan = ReadFloat( Member( pRoot, "m_flConstantLifespan" ), 1.0f );
	pDef->m_flConstantRotation = ReadFloat( Member( pRoot, "m_flConstantRotation" ), 0.0f );
	pDef->m_flConstantRotationSpeed = ReadFloat( Member( pRoot, "m_flConstantRotationSpeed" ), 0.0f );
	pDef->m_nConstantSequenceNumber = ReadInt( Member( pRoot, "m_nConstantSequenceNumber" ), 0 );
	pDef->m_BoundingBoxMin = ReadVector( Member( pRoot, "m_BoundingBoxMin" ), pDef->m_BoundingBoxMin );
	pDef->m_BoundingBoxMax = ReadVector( Member( pRoot, "m_BoundingBoxMax" ), pDef->m_BoundingBoxMax );
	pDef->m_flMaximumTimeStep = std::max( 0.001f, ReadFloat( Member( pRoot, "m_flMaximumTimeStep" ), 0.1f ) );
	float flPreSimulation = ReadFloat( Member( pRoot, "m_flPreSimulationTime" ), 0.0f );
	pDef->m_flPreSimulationTime = flPreSimulation > 0.0f ? std::min( flPreSimulation, PARTICLE_MAX_PRESIMULATION_SECONDS ) : 0.0f;
	if ( flPreSimulation > PARTICLE_MAX_PRESIMULATION_SECONDS )
		pDef->m_Warnings.AppendFormat( "m_flPreSimulationTime %g is beyond the %g seconds a system may pre-simulate; it pre-simulates %g\n", double( flPreSimulation ),
			double( PARTICLE_MAX_PRESIMULATION_SECONDS ), double( PARTICLE_MAX_PRESIMULATION_SECONDS ) );
	pDef->m_flStopSimulationAfterTime = ReadFloat( Member( pRoot, "m_flStopSimulationAfterTime" ), 1e9f );
	pDef->m_nMaxDetailLevel = std::clamp( ReadInt( Member( pRoot, "m_nMaxDetailLevel" ), 3 ), 0, 3 );
}
} // namespace

ParticleDefinitionPtr_t CompileParticleDefinitionFromKV3( const KeyValues3 *pRoot, const char *pName, const ParticleChildResolver_t &resolver, CUtlString *pError )
{
	CUtlString error;
	const KeyValues3 *pClass = Member( pRoot, "_class" );
	if ( !pRoot || !pRoot->IsTable() || !pClass || !pClass->IsString() || strcmp( pClass->GetString(), "CParticleSystemDefinition" ) != 0 )
	{
		if ( pError )
			pError->Set( "File does not contain a root object of type 'CParticleSystemDefinition'" );
		return nullptr;
	}
	auto pDef = std::make_shared<CParticleRuntimeDefinition>();
	pDef->m_Name = pName ? pName : "";
	ReadBaseProperties( pRoot, pDef.get() );
	ReadParticleManagerTraits( pRoot, &pDef->m_ManagerTraits );
	pDef->m_nTreeParticles = pDef->m_nMaxParticles;
	pDef->m_NamedValues.SetSystemName( pDef->m_Name.Get() );

	const KeyValues3 *pLocals = Member( pRoot, "m_NamedValueLocals" );
	if ( pLocals && pLocals->IsArray() )
	{
		for ( int i = 0; i < pLocals->GetArrayElementCount(); ++i )
			ReadNamedValueLocal( pLocals->GetArrayElement( i ), &pDef->m_NamedValues );
	}

	ParticleInputCompileContext_t context;
	context.m_pBindings = &pDef->m_NamedValues;
	for ( int nList = 0; nList < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nList )
	{
		if ( !CompileFunctionList( pRoot, nList, pDef.get(), &context, &error ) )
		{
			if ( pError )
				*pError = error;
			return nullptr;
		}
	}
	if ( !CompileChildren( pRoot, pDef.get(), resolver, &error ) )
	{
		if ( pError )
			*pError = error;
		return nullptr;
	}
	// Every named value the system knows has a key, declared or fallen back on.
	for ( int nSlot = 0; nSlot < pDef->m_NamedValues.Count(); ++nSlot )
	{
		const ParticleNamedValueEntry_t &entry = pDef->m_NamedValues.Get( nSlot );
		HostControlPointUsage_t usage = HostControlPointUsage_t::Make( entry.m_ID, 0, 0 );
		usage.m_ValueType = entry.m_Type;
		pDef->m_Usage.Add( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, nSlot, usage );
	}
	pDef->m_nAttributeMask |= CORE_ATTRIBUTES;
	pDef->m_bHasForces = !pDef->m_Functions[ PARTICLE_FUNCTION_FORCE_GENERATOR ].empty();
	pDef->m_Usage.m_nID = s_nNextUsageID.fetch_add( 1, std::memory_order_relaxed );
	return pDef;
}

ParticleDefinitionPtr_t CompileParticleDefinition( CUtlBuffer *pBuffer, const char *pName, const ParticleChildResolver_t &resolver, CUtlString *pError )
{
	KeyValues3 root;
	CUtlString error;
	if ( !LoadKV3( &root, &error, pBuffer, KV3_FORMAT_TFXS, pName ) )
	{
		if ( pError )
			*pError = error;
		return nullptr;
	}
	return CompileParticleDefinitionFromKV3( &root, pName, resolver, pError );
}

CParticleDefinitionFileCompiler::CParticleDefinitionFileCompiler( const char *pContentRoot, ParticleFileReader_t fnRead ) : m_fnRead( std::move( fnRead ) )
{
	AddRoot( pContentRoot );
}

void CParticleDefinitionFileCompiler::AddRoot( const char *pRoot )
{
	CUtlString root = Host_DiskPath( pRoot );
	if ( !root.IsEmpty() )
		m_Roots.emplace_back( root.Get() );
}

CUtlString CParticleDefinitionFileCompiler::FindContentRoot( const char *pFilePath )
{
	std::error_code error;
	std::filesystem::path path = std::filesystem::absolute( pFilePath, error ).lexically_normal();
	for ( std::filesystem::path dir = path.parent_path(); !dir.empty() && dir != dir.root_path(); dir = dir.parent_path() )
	{
		if ( strcasecmp( dir.filename().string().c_str(), "particles" ) == 0 )
			return CUtlString( dir.parent_path().generic_string().c_str() );
	}
	return CUtlString( path.parent_path().generic_string().c_str() );
}

bool CParticleDefinitionFileCompiler::ResolveChild( const char *pChildRef, std::string *pDiskPath, CUtlString *pError ) const
{
	std::string text( pChildRef ? pChildRef : "" );
	std::replace( text.begin(), text.end(), '\\', '/' );
	std::filesystem::path reference = std::filesystem::path( text ).lexically_normal();
	const std::string normal = reference.generic_string();
	if ( normal.empty() || normal == "." || reference.has_root_path() || normal == ".." || normal.compare( 0, 3, "../" ) == 0 )
	{
		pError->Set( "outside the content and game roots; a child is named by its path below the content root, as \"particles/fire.tfxs\"" );
		return false;
	}
	for ( const std::string &root : m_Roots )
	{
		CUtlString disk, clash;
		switch ( Host_FindOnDiskBelow( root.c_str(), normal.c_str(), &disk, &clash ) )
		{
		case HOST_FIND_FOUND:
			*pDiskPath = disk.Get();
			return true;
		case HOST_FIND_AMBIGUOUS:
			pError->Format( "%s differ only in letter case, so the name is ambiguous; rename one of them", clash.Get() );
			return false;
		case HOST_FIND_MISSING:
			break;
		}
	}
	std::string roots;
	for ( const std::string &root : m_Roots )
		roots += ( roots.empty() ? "" : " or " ) + root;
	if ( roots.empty() )
		pError->Set( "not found: no content root is known" );
	else
		pError->Format( "no such file in %s", roots.c_str() );
	return false;
}

ParticleDefinitionPtr_t CParticleDefinitionFileCompiler::Compile( const char *pPath, CUtlString *pError, const char *pShownName )
{
	CUtlString error;
	if ( !pPath || !*pPath )
	{
		if ( pError )
			pError->Set( "no file name given" );
		return nullptr;
	}
	std::error_code fsError;
	std::filesystem::path path( pPath );
	if ( path.is_relative() && !m_Roots.empty() )
		path = std::filesystem::path( m_Roots[ 0 ] ) / path;
	path = std::filesystem::absolute( path, fsError ).lexically_normal();
	// The file named is found as spelt, or ignoring case; two spellings on disk are a clash
	// here as they are for children.
	std::string diskPath = path.generic_string();
	CUtlString found, clash;
	if ( Host_FindOnDiskBelow( path.parent_path().generic_string().c_str(), path.filename().string().c_str(), &found, &clash ) == HOST_FIND_AMBIGUOUS )
	{
		if ( pError )
			pError->Format( "%s: %s differ only in letter case; rename one of them", pShownName ? pShownName : pPath, clash.Get() );
		return nullptr;
	}
	if ( !found.IsEmpty() )
		diskPath = found.Get();
	ParticleDefinitionPtr_t pDef = CompileFile( diskPath, pPath, pShownName ? pShownName : pPath, &error );
	if ( !pDef && pError )
		*pError = error;
	return pDef;
}

ParticleDefinitionPtr_t CParticleDefinitionFileCompiler::CompileChild( const char *pChildRef, CUtlString *pError )
{
	std::string diskPath;
	CUtlString error;
	ParticleDefinitionPtr_t pDef;
	if ( ResolveChild( pChildRef, &diskPath, &error ) )
		pDef = CompileFile( diskPath, pChildRef, diskPath.c_str(), &error );
	if ( !pDef && pError )
		*pError = error;
	return pDef;
}

ParticleDefinitionPtr_t CParticleDefinitionFileCompiler::CompileFile( const std::string &diskPath, const char *pName, const char *pShownName, CUtlString *pError )
{
	for ( const auto &[ cachedPath, pCached ] : m_Cache )
	{
		if ( cachedPath == diskPath )
			return pCached;
	}
	if ( std::find( m_InProgress.begin(), m_InProgress.end(), diskPath ) != m_InProgress.end() )
	{
		pError->Format( "%s is its own child (a system can't contain itself)", pShownName );
		return nullptr;
	}
	// Children are compiled depth first; a chain deeper than any real effect is refused
	// before it can exhaust the stack.
	if ( int( m_InProgress.size() ) >= PARTICLE_MAX_CHILD_DEPTH )
	{
		pError->Format( "%s: children nest deeper than %d levels", pShownName, PARTICLE_MAX_CHILD_DEPTH );
		return nullptr;
	}
	CUtlBuffer buffer;
	CUtlString error;
	if ( !m_fnRead || !m_fnRead( diskPath.c_str(), &buffer, &error ) )
	{
		pError->Format( "%s: %s", pShownName, error.IsEmpty() ? "cannot read the file" : error.Get() );
		return nullptr;
	}
	m_InProgress.push_back( diskPath );
	ParticleChildResolver_t resolver = [ this ]( const char *pChildRef, CUtlString *pChildError ) { return CompileChild( pChildRef, pChildError ); };
	ParticleDefinitionPtr_t pDef = CompileParticleDefinition( &buffer, pName, resolver, &error );
	m_InProgress.pop_back();
	if ( !pDef )
	{
		// A child failing below a child names itself already: the chain reads
		// "Child 'a': Child 'b': FILE: reason" rather than naming every file twice.
		if ( !m_InProgress.empty() && strncmp( error.Get(), "Child '", 7 ) == 0 )
			*pError = error;
		else
			pError->Format( "%s: %s", pShownName, error.Get() );
		return nullptr;
	}
	// Each warning line names its file.
	for ( const char *pLine = pDef->m_Warnings.Get(); pLine && *pLine; )
	{
		const char *pEnd = strchr( pLine, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pLine ) : strlen( pLine );
		m_Warnings.AppendFormat( "%s: %.*s\n", pShownName, int( nLength ), pLine );
		pLine = pEnd ? pEnd + 1 : nullptr;
	}
	m_Cache.emplace_back( diskPath, pDef );
	return pDef;
}
