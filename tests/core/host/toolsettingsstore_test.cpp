#include "core/host/toolsettingsstore.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "core/kv3/keyvalues3.h"
#include "core/text/pathtools.h"
#include "tests/core/host/hosttestsupport.h"

TEST( ToolSettingsStore, TablesRoundTripPerTool )
{
	CHostScratchDirectory scratch;
	CToolSettingsStore store;
	store.SetDirectory( ( scratch.Root() / "settings" ).string().c_str() );

	KeyValues3 table;
	table.SetToEmptyTable();
	KeyValues3 *pRecent = table.FindOrCreateMember( "RecentDirectories" );
	pRecent->SetToEmptyTable();
	pRecent->SetMemberString( "Directory 0", "c:\\content\\particles" );
	table.SetMemberBool( "Closed Correctly", false );
	table.SetMemberInt( "Autosave Interval", 5 );

	CUtlString error;
	ASSERT_TRUE( store.Save( "particles", table, &error ) ) << error.Get();
	KeyValues3 other;
	other.SetToEmptyTable();
	other.SetMemberInt( "Other", 1 );
	ASSERT_TRUE( store.Save( "pulse", other, &error ) );

	KeyValues3 loaded;
	ASSERT_TRUE( store.Load( "particles", &loaded, &error ) ) << error.Get();
	EXPECT_TRUE( loaded.IsEqual( table ) );
	ASSERT_TRUE( store.Load( "pulse", &loaded, &error ) );
	EXPECT_TRUE( loaded.IsEqual( other ) );
}

TEST( ToolSettingsStore, MissingOrBrokenFilesGiveAnEmptyTable )
{
	CHostScratchDirectory scratch;
	CToolSettingsStore store;
	store.SetDirectory( scratch.Root().string().c_str() );

	KeyValues3 loaded;
	CUtlString error;
	EXPECT_FALSE( store.Load( "never_saved", &loaded, &error ) );
	EXPECT_TRUE( loaded.IsTable() );
	EXPECT_EQ( loaded.GetMemberCount(), 0 );
	EXPECT_TRUE( error.IsEmpty() );

	scratch.Write( "broken_settings.kv3", "{ this is not = kv3" );
	EXPECT_FALSE( store.Load( "broken", &loaded, &error ) );
	EXPECT_TRUE( loaded.IsTable() );
	EXPECT_FALSE( error.IsEmpty() );
}

TEST( ToolSettingsStore, EnvironmentPicksTheDirectoryUnlessSet )
{
	CHostScratchDirectory scratch;
	std::string directory = ( scratch.Root() / "from_env" ).string();
	struct EnvironmentGuard_t
	{
		explicit EnvironmentGuard_t( const char *pValue ) { setenv( TOOL_SETTINGS_DIRECTORY_ENV, pValue, 1 ); }
		~EnvironmentGuard_t() { unsetenv( TOOL_SETTINGS_DIRECTORY_ENV ); }
	} guard( directory.c_str() );
	CToolSettingsStore store;
	EXPECT_TRUE( V_PathsMatch( store.GetDirectory().Get(), directory.c_str() ) );

	KeyValues3 table;
	table.SetToEmptyTable();
	table.SetMemberInt( "Value", 7 );
	ASSERT_TRUE( store.Save( "tool with/odd:name", table ) );
	EXPECT_TRUE( std::filesystem::exists( scratch.Root() / "from_env" / "tool_with_odd_name_settings.kv3" ) );

	store.SetDirectory( scratch.Root().string().c_str() );
	EXPECT_TRUE( V_PathsMatch( store.GetDirectory().Get(), scratch.Root().string().c_str() ) );
}
