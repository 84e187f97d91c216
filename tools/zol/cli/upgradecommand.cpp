// zol upgrade: brings particle system definitions up to the running behaviour version, as
// the editor's "Upgrade Version" does; with --recursive their enabled children too, each
// file once. A dry run (or --check) says what would change and writes nothing.

#include <cstdio>
#include <cstring>

#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/climaintenance.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolversionupgrade.h"

namespace
{
constexpr const char *USAGE = "usage: zol upgrade [--recursive] [--dry-run|--check] FILE...|--all\n";

int Usage( const char *pWhy )
{
	fprintf( stderr, "zol upgrade: %s\n%s", pWhy, USAGE );
	return 2;
}

int RunUpgrade( int argc, char **argv )
{
	bool bRecursive = false, bDryRun = false, bCheck = false, bAll = false;
	CUtlVector<const char *> files;
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		if ( !strcmp( pArg, "--recursive" ) )
			bRecursive = true;
		else if ( !strcmp( pArg, "--dry-run" ) )
			bDryRun = true;
		else if ( !strcmp( pArg, "--check" ) )
			bCheck = true;
		else if ( !strcmp( pArg, "--all" ) )
			bAll = true;
		else if ( IsMaintenanceFileArgument( pArg ) )
			files.AddToTail( pArg );
		else
			return Usage( DescribeBadMaintenanceArgument( pArg ).Get() );
	}
	if ( bDryRun && bCheck )
		return Usage( "--dry-run and --check exclude each other" );
	if ( bAll == !files.IsEmpty() )
		return Usage( bAll ? "--all and files exclude each other" : "no file given" );

	CZolCliMaintenanceHost host;
	CZolFileReport report;
	CUtlVector<IAsset *> assets;
	if ( !host.StartFor( files, bAll, &assets, &report ) )
		return 2;
	CZolVersionUpgrade upgrade( &host.GetDocuments(), &report );
	upgrade.SetDryRun( bDryRun || bCheck );
	for ( IAsset *pAsset : assets )
		upgrade.UpgradeAsset( pAsset, bRecursive );

	PrintMaintenanceReport( report, stdout );
	if ( report.HasErrors() )
		return 1;
	return bCheck && upgrade.GetChangedCount() > 0 ? 3 : 0;
}

CZolCliCommandRegistrar s_Upgrade( { "upgrade", "upgrade [--recursive] [--dry-run|--check] FILE...|--all",
	"brings definitions (and with --recursive their children) up to the current behavior version; --check exits 3 when one is old", RunUpgrade } );
} // namespace
