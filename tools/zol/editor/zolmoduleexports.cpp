#include "tools/zol/editor/zolmoduleexports.h"

#include <cstring>
#include <memory>

#include "core/kv3/keyvalues3.h"
#include "tools/zol/editor/zolapp.h"

CZolInterfaceRegistration *CZolInterfaceRegistration::s_pFirst = nullptr;
CBaseVModuleMetadataProvider *CBaseVModuleMetadataProvider::s_pFirst = nullptr;

CZolInterfaceRegistration::CZolInterfaceRegistration( FactoryFn_t fnFactory, const char *pName ) : m_fnFactory( fnFactory ), m_pName( pName ), m_pNext( s_pFirst )
{
	s_pFirst = this;
}

CBaseVModuleMetadataProvider::CBaseVModuleMetadataProvider() : m_pNext( s_pFirst )
{
	s_pFirst = this;
}

// The tool: one application per process, made on first request.
static void *CreateZolToolSystem()
{
	static CZolApp *s_pApp = new CZolApp();
	return static_cast<CBaseToolSystem2 *>( s_pApp );
}
static CZolInterfaceRegistration s_ToolRegistration( &CreateZolToolSystem, TOOLSYSTEM2_INTERFACE_VERSION );

// The module names itself in its metadata.
class CZolModuleNameMetadata final : public CBaseVModuleMetadataProvider
{
public:
	bool AddModuleMetadata( KeyValues3 *pTable, const char ** ) override
	{
		pTable->SetMemberString( "module", "zol" );
		return true;
	}
};
static CZolModuleNameMetadata s_ModuleNameMetadata;

extern "C" void *CreateInterface( const char *pName, int *pReturnCode )
{
	for ( CZolInterfaceRegistration *pRecord = CZolInterfaceRegistration::s_pFirst; pRecord; pRecord = pRecord->m_pNext )
	{
		if ( pName && !strcmp( pRecord->m_pName, pName ) )
		{
			if ( pReturnCode )
				*pReturnCode = 0;
			return pRecord->m_fnFactory();
		}
	}
	if ( pReturnCode )
		*pReturnCode = 1;
	return nullptr;
}

static void *s_pSchemaSystem = nullptr;

extern "C" bool InstallSchemaBindings( const char *pInterfaceName, void *pSchemaSystem )
{
	if ( !pInterfaceName || strcmp( pInterfaceName, "SchemaSystem_001" ) )
		return false;
	// The module's schema classes are declared in the libraries it links, which register
	// them with the process's schema when they load; later calls have nothing to add.
	if ( !s_pSchemaSystem )
		s_pSchemaSystem = pSchemaSystem;
	return true;
}

extern "C" int GetResourceManifestCount()
{
	// The editor declares no resource manifests of its own.
	return 0;
}

extern "C" int GetResourceManifests( int nFirst, void **ppOut, int64_t nMax )
{
	(void)nFirst;
	(void)ppOut;
	(void)nMax;
	return 0;
}

extern "C" KeyValues3 *ExtractModuleMetadata( const char **ppError )
{
	// One walk per process; the result (or the refusal) is kept.
	static std::unique_ptr<KeyValues3> s_pTable;
	static const char *s_pError = nullptr;
	static bool s_bDone = false;
	if ( !s_bDone )
	{
		s_bDone = true;
		s_pTable = std::make_unique<KeyValues3>();
		s_pTable->SetToEmptyTable();
		for ( CBaseVModuleMetadataProvider *pProvider = CBaseVModuleMetadataProvider::s_pFirst; pProvider; pProvider = pProvider->m_pNext )
		{
			if ( !pProvider->AddModuleMetadata( s_pTable.get(), &s_pError ) )
			{
				s_pTable.reset();
				if ( !s_pError )
					s_pError = "module metadata refused";
				break;
			}
		}
	}
	if ( !s_pTable && ppError )
		*ppError = s_pError;
	return s_pTable.get();
}

extern "C" int BinaryProperties_GetValue( unsigned nId, BinaryPropertyValue_t *pResult )
{
	if ( !pResult )
		return 0;
	switch ( nId )
	{
	case 0: *pResult = { "Release", 0, 0 }; return 1;
	case 1:
	case 4: *pResult = { nullptr, 0, 1 }; return 1;
	case 2:
	case 5: *pResult = { nullptr, 1, 1 }; return 1;
	case 3: *pResult = { "zol", 0, 0 }; return 1;
	case 6: *pResult = { nullptr, 2, 1 }; return 1;
	default: return 0;
	}
}
