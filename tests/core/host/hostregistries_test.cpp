// The smaller services: help, property editor registry, game information, interfaces.

#include <gtest/gtest.h>

#include <string>

#include "core/host/gameinfo.h"
#include "core/host/helpsystem.h"
#include "core/host/assetsystem.h"
#include "core/host/filesystem.h"
#include "core/host/hostservices.h"
#include "core/host/iassetsystem.h"
#include "core/host/ifilesystem.h"
#include "core/host/interfaceregistry.h"
#include "core/host/propertyeditorsystem.h"
#include "tests/core/host/hosttestsupport.h"

TEST( HelpSystem, TitlesAndWordSearchByKeyIgnoringCase )
{
	CHelpSystem help;
	help.OpenScope( "particles", 1 );
	help.AddEntry( "particles", "Element.C_OP_Decay", "Lifespan Decay", "Removes particles when their lifespan ends." );
	help.AddEntry( "particles", "Element.C_INIT_RandomColor", "Color Random", nullptr, "Picks a tint between two colours." );
	help.OpenScope( "pulse_editor", 0 );

	EXPECT_STREQ( help.GetTitle( "particles", "element.c_op_decay" ), "Lifespan Decay" );
	EXPECT_STREQ( help.GetTitle( nullptr, "Element.C_INIT_RandomColor" ), "Color Random" );
	EXPECT_STREQ( help.GetTitle( "pulse_editor", "Element.C_OP_Decay" ), "" );
	EXPECT_STREQ( help.GetTitle( "particles", "Element.Unknown" ), "" );

	EXPECT_TRUE( help.KeyTextContainsWord( "particles", "Element.C_OP_Decay", "LIFESPAN" ) );
	EXPECT_TRUE( help.KeyTextContainsWord( "particles", "Element.C_INIT_RandomColor", "tint" ) );
	EXPECT_FALSE( help.KeyTextContainsWord( "particles", "Element.C_OP_Decay", "colour" ) );
	// The title alone is not the text.
	EXPECT_FALSE( help.KeyTextContainsWord( "particles", "Element.C_INIT_RandomColor", "Random" ) );
	EXPECT_FALSE( help.KeyTextContainsWord( "particles", "Element.Unknown", "a" ) );

	EXPECT_EQ( help.GetScopeFlags( "PARTICLES" ), 1 );
	EXPECT_EQ( help.GetScopeFlags( "unknown" ), -1 );
	EXPECT_TRUE( help.HasScope( "pulse_editor" ) );

	help.AddEntry( "particles", "ELEMENT.C_OP_DECAY", "Decay", "" );
	EXPECT_EQ( help.GetEntryCount( "particles" ), 2 );
	EXPECT_STREQ( help.GetTitle( "particles", "Element.C_OP_Decay" ), "Decay" );
}

namespace
{
class CTestEditorFactory final : public IAttributeEditorFactory
{
public:
	explicit CTestEditorFactory( int nHeight ) : m_nHeight( nHeight ) {}
	int GetFixedRowHeight() const override { return m_nHeight; }
	int m_nHeight;
};
} // namespace

TEST( PropertyEditorSystem, FactoriesByNameDomainsAndThePanelHook )
{
	CPropertyEditorSystem system;
	CTestEditorFactory fixed( 22 ), variable( -1 );
	EXPECT_TRUE( system.RegisterAttributeEditorFactory( "SequencePicker", &fixed ) );
	EXPECT_TRUE( system.RegisterAttributeEditorFactory( "PerParticleFloatInput", &variable ) );
	EXPECT_FALSE( system.RegisterAttributeEditorFactory( "sequencepicker", &variable ) );
	EXPECT_EQ( system.FindAttributeEditorFactory( "SEQUENCEPICKER" ), &fixed );
	EXPECT_EQ( system.FindAttributeEditorFactory( "Unknown" ), nullptr );
	EXPECT_EQ( system.GetAttributeEditorFactoryCount(), 2 );

	int nDomainA = 0, nDomainB = 0;
	auto *pDomainA = reinterpret_cast<IPropertyEditDomain *>( &nDomainA );
	auto *pDomainB = reinterpret_cast<IPropertyEditDomain *>( &nDomainB );
	system.RegisterPropertyDomain( pDomainA );
	system.RegisterPropertyDomain( pDomainA );
	system.RegisterPropertyDomain( pDomainB );
	system.RemovePropertyDomain( pDomainA );
	EXPECT_FALSE( system.IsPropertyDomainRegistered( pDomainA ) );
	EXPECT_TRUE( system.IsPropertyDomainRegistered( pDomainB ) );

	EXPECT_EQ( system.CreatePropertyPanel( nullptr ), nullptr );
	int nParent = 0, nPanel = 0;
	void *pGivenParent = nullptr;
	system.SetPropertyPanelFactory( [&]( void *pParent ) -> void * {
		pGivenParent = pParent;
		return &nPanel;
	} );
	EXPECT_EQ( system.CreatePropertyPanel( &nParent ), &nPanel );
	EXPECT_EQ( pGivenParent, &nParent );
}

TEST( GameInfo, KeysByPathFromText )
{
	CGameInfo info;
	CUtlString error;
	ASSERT_TRUE( info.LoadFromText( "\"GameInfo\"\n{\n\tgame \"Test Game\"\n\tParticles\n\t{\n\t\tBudget_SimulationUS 1500\n\t\tZOL_AllowScreenSpaceOverlay 1\n\t}\n"
									"\tpulse_bindings\n\t{\n\t\tbinding \"a.tpulse\"\n\t\tbinding \"b.tpulse\"\n\t}\n\tsingle_list \"only\"\n}\n",
									"test.gi", &error ) )
		<< error.Get();
	EXPECT_STREQ( info.GetGameName(), "Test Game" );
	EXPECT_EQ( info.GetInt( "Particles/Budget_SimulationUS", 0 ), 1500 );
	EXPECT_EQ( info.GetInt( "particles/budget_simulationus", 0 ), 1500 );
	EXPECT_EQ( info.GetInt( "Particles/Budget_RenderUS", 250 ), 250 );
	EXPECT_TRUE( info.GetBool( "Particles/ZOL_AllowScreenSpaceOverlay" ) );
	ASSERT_NE( info.FindKey( "Particles" ), nullptr );
	EXPECT_EQ( info.FindKey( "Particles" )->GetInt( "ZOL_AllowScreenSpaceOverlay", 0 ), 1 );

	CUtlVector<CUtlString> bindings;
	ASSERT_EQ( info.GetStringList( "pulse_bindings", &bindings ), 2 );
	EXPECT_STREQ( bindings[ 1 ].Get(), "b.tpulse" );
	EXPECT_EQ( info.GetStringList( "single_list", &bindings ), 1 );
	EXPECT_EQ( info.GetStringList( "missing", &bindings ), 0 );
}

TEST( GameInfo, BrokenOrForeignTextLeavesDefaults )
{
	CGameInfo info;
	CUtlString error;
	EXPECT_FALSE( info.LoadFromText( "\"GameInfo\" { game ", "broken.gi", &error ) );
	EXPECT_FALSE( error.IsEmpty() );
	EXPECT_FALSE( info.LoadFromText( "\"Other\" { game \"x\" }", "other.gi", &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "GameInfo" ), std::string::npos );
	EXPECT_FALSE( info.IsLoaded() );
	EXPECT_EQ( info.GetInt( "Particles/Budget_SimulationUS", 7 ), 7 );
	EXPECT_STREQ( info.GetGameName(), "" );
}

TEST( GameInfo, ShippedGameInfoReadsThroughTheFileSystem )
{
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( ShippedGameRoot().string().c_str(), ShippedContentRoot().string().c_str() );
	KeyValues direct;
	ASSERT_TRUE( direct.LoadFromFile( ( ShippedGameRoot() / "gameinfo.gi" ).string().c_str() ) );

	CGameInfo info;
	CUtlString error;
	ASSERT_TRUE( info.Load( &fileSystem, &error ) ) << error.Get();
	EXPECT_STREQ( info.GetGameName(), direct.GetString( "game" ) );
	EXPECT_NE( info.FindKey( "Brakel/fgd_files" ), nullptr );
}

namespace
{
int g_nRegisteredObject = 0;
void *MakeRegisteredObject()
{
	return &g_nRegisteredObject;
}
CHostInterfaceReg g_TestRegistration( "HostTestInterface_001", MakeRegisteredObject );
} // namespace

TEST( InterfaceRegistry, UnknownNamesFailWithCodeOne )
{
	int nCode = -1;
	EXPECT_EQ( Host_CreateInterface( "HostTestInterface_001", &nCode ), &g_nRegisteredObject );
	EXPECT_EQ( nCode, IFACE_OK );
	EXPECT_EQ( Host_CreateInterface( "hosttestinterface_001", &nCode ), nullptr );
	EXPECT_EQ( nCode, IFACE_FAILED );
	EXPECT_EQ( Host_CreateInterface( "HostTestInterface_002", &nCode ), nullptr );
	EXPECT_EQ( nCode, IFACE_FAILED );
	EXPECT_EQ( Host_CreateInterface( nullptr, &nCode ), nullptr );
	EXPECT_EQ( nCode, IFACE_FAILED );
}

TEST( HostServices, StartOnTheShippedContentAndAnswerByName )
{
	{
		CHostServices services;
		CUtlString error;
		ASSERT_TRUE( services.Init( ShippedGameRoot().string().c_str(), ShippedContentRoot().string().c_str(), &error ) ) << error.Get();
		EXPECT_EQ( GetFileSystem(), static_cast<IFileSystem *>( services.GetFileSystem() ) );
		EXPECT_EQ( Host_FindInterface<IAssetSystem>( ASSETSYSTEM_INTERFACE_VERSION ), static_cast<IAssetSystem *>( services.GetAssetSystem() ) );
		EXPECT_NE( Host_FindInterface<IPropertyEditorSystem>( PROPERTYEDITORSYSTEM_INTERFACE_VERSION ), nullptr );
		EXPECT_NE( GetAssetSystem()->FindAssetByResourceName( "particles/samples/campfire.tfxs" ), nullptr );
		EXPECT_TRUE( GetGameInfo()->IsLoaded() );
	}
	int nCode = 0;
	EXPECT_EQ( Host_CreateInterface( ASSETSYSTEM_INTERFACE_VERSION, &nCode ), nullptr );
	EXPECT_EQ( nCode, IFACE_FAILED );
	EXPECT_EQ( GetFileSystem(), nullptr );

	CHostServices missing;
	CUtlString error;
	EXPECT_FALSE( missing.Init( "/no/such/game", ShippedContentRoot().string().c_str(), &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "/no/such/game" ), std::string::npos );
}
