#include "core/host/hostservices.h"

#include "core/host/assetsystem.h"
#include "core/host/filesystem.h"
#include "core/host/gameinfo.h"
#include "core/host/gametoolsservice.h"
#include "core/host/helpsystem.h"
#include "core/host/hostpaths.h"
#include "core/host/interfaceregistry.h"
#include "core/host/propertyeditorsystem.h"
#include "core/host/resourcesystem.h"
#include "core/host/scenesystem.h"
#include "core/host/toolscenenodefactory.h"
#include "core/logging/logging.h"
#include "core/particles/iparticlesystemmgr.h"

CHostServices::CHostServices() = default;

CHostServices::~CHostServices()
{
	Uninstall();
}

bool CHostServices::Init( const char *pGameRoot, const char *pContentRoot, CUtlString *pError )
{
	Uninstall();
	m_pAssetSystem.reset();

	m_pFileSystem = std::make_unique<CFileSystem>();
	m_pResourceSystem = std::make_unique<CResourceSystem>();
	m_pHelpSystem = std::make_unique<CHelpSystem>();
	m_pPropertyEditorSystem = std::make_unique<CPropertyEditorSystem>();
	m_pGameInfo = std::make_unique<CGameInfo>();
	m_pSceneSystem = std::make_unique<CSceneSystem>();
	m_pToolSceneNodeFactory = std::make_unique<CToolSceneNodeFactory>();

	for ( const char *pRoot : { pGameRoot, pContentRoot } )
	{
		if ( !m_pFileSystem->IsDirectory( pRoot ) )
		{
			if ( pError )
				pError->Format( "The directory '%s' doesn't exist", pRoot ? pRoot : "" );
			return false;
		}
	}
	m_pFileSystem->SetupFromRoots( pGameRoot, pContentRoot );
	m_pAssetSystem = std::make_unique<CAssetSystem>( m_pFileSystem.get(), m_pResourceSystem.get() );
	m_pGameToolsService = std::make_unique<CGameToolsService>( m_pFileSystem.get() );
	m_pGameInfo->Load( m_pFileSystem.get(), pError );
	// What the tools' help entries say; a broken help file costs only its texts.
	CUtlString strHelpErrors;
	m_pHelpSystem->LoadTextFiles( m_pFileSystem.get(), &strHelpErrors );
	if ( !strHelpErrors.IsEmpty() )
		Log_Warning( LOG_GENERAL, "Help files: %s", strHelpErrors.Get() );
	Install();
	return true;
}

void CHostServices::Install()
{
	::SetFileSystem( m_pFileSystem.get() );
	::SetResourceSystem( m_pResourceSystem.get() );
	::SetAssetSystem( m_pAssetSystem.get() );
	::SetHelpSystem( m_pHelpSystem.get() );
	::SetPropertyEditorSystem( m_pPropertyEditorSystem.get() );
	::SetGameInfo( m_pGameInfo.get() );
	::SetGameToolsService( m_pGameToolsService.get() );
	m_Registrations[ 0 ] = std::make_unique<CHostInterfaceReg>( FILESYSTEM_INTERFACE_VERSION, static_cast<IFileSystem *>( m_pFileSystem.get() ) );
	m_Registrations[ 1 ] = std::make_unique<CHostInterfaceReg>( RESOURCESYSTEM_INTERFACE_VERSION, static_cast<IResourceSystem *>( m_pResourceSystem.get() ) );
	m_Registrations[ 2 ] = std::make_unique<CHostInterfaceReg>( ASSETSYSTEM_INTERFACE_VERSION, static_cast<IAssetSystem *>( m_pAssetSystem.get() ) );
	m_Registrations[ 3 ] = std::make_unique<CHostInterfaceReg>( HELPSYSTEM_INTERFACE_VERSION, static_cast<IHelpSystem *>( m_pHelpSystem.get() ) );
	m_Registrations[ 4 ] = std::make_unique<CHostInterfaceReg>( PROPERTYEDITORSYSTEM_INTERFACE_VERSION, static_cast<IPropertyEditorSystem *>( m_pPropertyEditorSystem.get() ) );
	m_Registrations[ 5 ] = std::make_unique<CHostInterfaceReg>( GAMEINFO_INTERFACE_VERSION, static_cast<void *>( m_pGameInfo.get() ) );
	m_Registrations[ 6 ] = std::make_unique<CHostInterfaceReg>( SCENESYSTEM_INTERFACE_VERSION, static_cast<ISceneSystem *>( m_pSceneSystem.get() ) );
	m_Registrations[ 7 ] = std::make_unique<CHostInterfaceReg>( TOOLSCENENODEFACTORY_INTERFACE_VERSION, static_cast<IToolSceneNodeFactory *>( m_pToolSceneNodeFactory.get() ) );
	m_Registrations[ 8 ] = std::make_unique<CHostInterfaceReg>( GAMETOOLSSERVICE_INTERFACE_VERSION, static_cast<IGameToolsService *>( m_pGameToolsService.get() ) );
	m_bInstalled = true;
}

void CHostServices::Uninstall()
{
	SetParticleSystemMgr( nullptr );
	if ( !m_bInstalled )
		return;
	for ( std::unique_ptr<CHostInterfaceReg> &pRegistration : m_Registrations )
		pRegistration.reset();
	// Only clear what still points at this object's services.
	if ( ::GetFileSystem() == m_pFileSystem.get() )
		::SetFileSystem( nullptr );
	if ( ::GetResourceSystem() == m_pResourceSystem.get() )
		::SetResourceSystem( nullptr );
	if ( ::GetAssetSystem() == m_pAssetSystem.get() )
		::SetAssetSystem( nullptr );
	if ( ::GetHelpSystem() == m_pHelpSystem.get() )
		::SetHelpSystem( nullptr );
	if ( ::GetPropertyEditorSystem() == m_pPropertyEditorSystem.get() )
		::SetPropertyEditorSystem( nullptr );
	if ( ::GetGameInfo() == m_pGameInfo.get() )
		::SetGameInfo( nullptr );
	if ( ::GetGameToolsService() == m_pGameToolsService.get() )
		::SetGameToolsService( nullptr );
	m_bInstalled = false;
}

void CHostServices::SetParticleSystemMgr( IParticleSystemMgr *pMgr )
{
	m_pParticleSystemMgrRegistration.reset();
	if ( m_pParticleSystemMgr && ::GetParticleSystemMgr() == m_pParticleSystemMgr )
		::SetParticleSystemMgr( nullptr );
	m_pParticleSystemMgr = pMgr;
	if ( !pMgr )
		return;
	::SetParticleSystemMgr( pMgr );
	m_pParticleSystemMgrRegistration = std::make_unique<CHostInterfaceReg>( PARTICLESYSTEMMGR_INTERFACE_VERSION, static_cast<void *>( pMgr ) );
}
