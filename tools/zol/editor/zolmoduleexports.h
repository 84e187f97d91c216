#pragma once
// What the editor module exports with C linkage, for the tools host to find with dlsym.

#include <cstdint>

class KeyValues3;

// One answer of BinaryProperties_GetValue: a text (kind 0) or a number (kind 1).
struct BinaryPropertyValue_t
{
	const char *m_pText;
	int64_t m_nNumber;
	int m_nKind;
};

// A factory record of the module's interface list, linked at static initialisation.
class CZolInterfaceRegistration
{
public:
	using FactoryFn_t = void *( * )();
	CZolInterfaceRegistration( FactoryFn_t fnFactory, const char *pName );

	FactoryFn_t m_fnFactory;
	const char *m_pName;
	CZolInterfaceRegistration *m_pNext;
	static CZolInterfaceRegistration *s_pFirst;
};

// Adds to the module's metadata table; false refuses and ends the walk with pError set.
class CBaseVModuleMetadataProvider
{
public:
	CBaseVModuleMetadataProvider();
	virtual bool AddModuleMetadata( KeyValues3 *pTable, const char **ppError ) = 0;

	CBaseVModuleMetadataProvider *m_pNext;
	static CBaseVModuleMetadataProvider *s_pFirst;

protected:
	~CBaseVModuleMetadataProvider() = default;
};

extern "C" {
__attribute__( ( visibility( "default" ) ) ) void *CreateInterface( const char *pName, int *pReturnCode );
__attribute__( ( visibility( "default" ) ) ) bool InstallSchemaBindings( const char *pInterfaceName, void *pSchemaSystem );
__attribute__( ( visibility( "default" ) ) ) int GetResourceManifestCount();
__attribute__( ( visibility( "default" ) ) ) int GetResourceManifests( int nFirst, void **ppOut, int64_t nMax );
__attribute__( ( visibility( "default" ) ) ) KeyValues3 *ExtractModuleMetadata( const char **ppError );
__attribute__( ( visibility( "default" ) ) ) int BinaryProperties_GetValue( unsigned nId, BinaryPropertyValue_t *pResult );
}

// Signatures for the host's dlsym look-ups.
using ZolCreateInterfaceFn_t = void *( * )( const char *, int * );
using ZolInstallSchemaBindingsFn_t = bool ( * )( const char *, void * );
