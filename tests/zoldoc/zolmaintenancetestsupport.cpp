#include "tests/zoldoc/zolmaintenancetestsupport.h"

#include "core/host/assetsystem.h"
#include "core/host/iasset.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

CTestEditorDocuments::CTestEditorDocuments() = default;
CTestEditorDocuments::~CTestEditorDocuments() = default;

CZolDoc *CTestEditorDocuments::FindOpenDocument( IAsset *pAsset )
{
	auto it = m_Open.find( pAsset );
	return it == m_Open.end() ? nullptr : it->second.get();
}

CZolDoc *CTestEditorDocuments::OpenDocument( IAsset *pAsset, CUtlString *pError )
{
	if ( CZolDoc *pOpen = FindOpenDocument( pAsset ) )
		return pOpen;
	auto pDoc = std::make_unique<CZolDoc>();
	if ( !pAsset || !pDoc->LoadFromFile( pAsset->GetAbsolutePath(), "", pError ) )
		return nullptr;
	return m_Open.emplace( pAsset, std::move( pDoc ) ).first->second.get();
}

CUtlString CTestEditorDocuments::GetDisplayName( IAsset *pAsset )
{
	return CUtlString( pAsset ? pAsset->GetResourceName() : "" );
}

ZolMaintenanceFixture::ZolMaintenanceFixture()
{
	SetParticleGameRoot( ZOL_SOURCE_DIR "/content/game" );
	ResetParticleGameData();
}

ZolMaintenanceFixture::~ZolMaintenanceFixture()
{
	m_Services.SetParticleSystemMgr( nullptr );
	SetParticleGameRoot( "" );
	ResetParticleGameData();
}

std::string ZolMaintenanceFixture::Definition( int nVersion, const std::string &body )
{
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
		   "{\n\t_class = \"CParticleSystemDefinition\"\n\tm_nBehaviorVersion = " +
		   std::to_string( nVersion ) + "\n" + body + "\n}\n";
}

std::string ZolMaintenanceFixture::Children( const std::vector<std::string> &children )
{
	std::string text = "\tm_Children = [\n";
	for ( const std::string &child : children )
	{
		const bool bDisabled = !child.empty() && child[ 0 ] == '-';
		text += "\t\t{ m_ChildRef = resource:\"particles/" + child.substr( bDisabled ? 1 : 0 ) + ".tfxs\"" + ( bDisabled ? " m_bDisableChild = true" : "" ) + " },\n";
	}
	return text + "\t]\n";
}

void ZolMaintenanceFixture::Write( const std::string &name, const std::string &text )
{
	m_Scratch.Write( "content/particles/" + name + ".tfxs", text );
}

std::string ZolMaintenanceFixture::Read( const std::string &name ) const
{
	return m_Scratch.Read( "content/particles/" + name + ".tfxs" );
}

std::filesystem::path ZolMaintenanceFixture::PathOf( const std::string &name ) const
{
	return m_Scratch.Content() / "particles" / ( name + ".tfxs" );
}

void ZolMaintenanceFixture::Start()
{
	CUtlString ignoredGameInfo;
	ASSERT_TRUE( m_Services.Init( m_Scratch.Game().c_str(), m_Scratch.Content().c_str(), &ignoredGameInfo ) );
	m_Services.SetParticleSystemMgr( HostParticleSystemMgr() );
	ResetParticleGameData();
}

IAsset *ZolMaintenanceFixture::Asset( const std::string &name ) const
{
	return m_Services.GetAssetSystem()->FindAssetByResourceName( ( "particles/" + name + ".tfxs" ).c_str() );
}

CZolDoc *ZolMaintenanceFixture::Open( const std::string &name )
{
	CUtlString error;
	CZolDoc *pDoc = m_Editor.OpenDocument( Asset( name ), &error );
	EXPECT_NE( pDoc, nullptr ) << name << ": " << error.Get();
	return pDoc;
}
