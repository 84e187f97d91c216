#pragma once
// All the plain host services of one process, made together from the game and content
// roots. While it lives, each service is the current one (GetFileSystem(),
// GetAssetSystem(), ...) and answers Host_CreateInterface under its versioned name.
//
//   CHostServices services;
//   CUtlString error;
//   if ( !services.Init( "content/game", "content/content", &error ) ) ...
//   services.GetAssetSystem()->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &compiler );

#include <memory>

#include "core/text/utlstring.h"

class CAssetSystem;
class CFileSystem;
class CGameInfo;
class CGameToolsService;
class CHelpSystem;
class CHostInterfaceReg;
class CPropertyEditorSystem;
class CResourceSystem;
class CSceneSystem;
class CToolSceneNodeFactory;
class IParticleSystemMgr;

class CHostServices
{
public:
	CHostServices();
	~CHostServices();
	CHostServices( const CHostServices & ) = delete;
	CHostServices &operator=( const CHostServices & ) = delete;

	// Sets up the search paths, indexes the content and reads the game information.
	// A missing or broken "gameinfo.gi" is reported in pError but doesn't fail the start:
	// its keys then answer their defaults. False only when a root isn't a directory.
	bool Init( const char *pGameRoot, const char *pContentRoot, CUtlString *pError = nullptr );

	CFileSystem *GetFileSystem() const { return m_pFileSystem.get(); }
	CResourceSystem *GetResourceSystem() const { return m_pResourceSystem.get(); }
	CAssetSystem *GetAssetSystem() const { return m_pAssetSystem.get(); }
	CHelpSystem *GetHelpSystem() const { return m_pHelpSystem.get(); }
	CPropertyEditorSystem *GetPropertyEditorSystem() const { return m_pPropertyEditorSystem.get(); }
	CGameInfo *GetGameInfo() const { return m_pGameInfo.get(); }
	CSceneSystem *GetSceneSystem() const { return m_pSceneSystem.get(); }
	CToolSceneNodeFactory *GetToolSceneNodeFactory() const { return m_pToolSceneNodeFactory.get(); }
	CGameToolsService *GetGameToolsService() const { return m_pGameToolsService.get(); }

	// The particle manager that the host made; it becomes the current one and answers
	// "ParticleSystemMgr003" until these services go (or another one is given).
	void SetParticleSystemMgr( IParticleSystemMgr *pMgr );

private:
	void Install();
	void Uninstall();

	std::unique_ptr<CFileSystem> m_pFileSystem;
	std::unique_ptr<CResourceSystem> m_pResourceSystem;
	std::unique_ptr<CAssetSystem> m_pAssetSystem;
	std::unique_ptr<CHelpSystem> m_pHelpSystem;
	std::unique_ptr<CPropertyEditorSystem> m_pPropertyEditorSystem;
	std::unique_ptr<CGameInfo> m_pGameInfo;
	std::unique_ptr<CSceneSystem> m_pSceneSystem;
	std::unique_ptr<CToolSceneNodeFactory> m_pToolSceneNodeFactory;
	std::unique_ptr<CGameToolsService> m_pGameToolsService;
	std::unique_ptr<CHostInterfaceReg> m_Registrations[ 9 ];
	IParticleSystemMgr *m_pParticleSystemMgr = nullptr;
	std::unique_ptr<CHostInterfaceReg> m_pParticleSystemMgrRegistration;
	bool m_bInstalled = false;
};
