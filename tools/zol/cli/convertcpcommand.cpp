// zol convert-cp: turns every read of a control point, across the family of a particle
// system (its parents and children), into a read of one new variable, as the editor's
// conversion dialog does: the plan is built and type-checked, a dry run says what each
// step would do, and only a run without errors applies it and writes the changed files.

#include <cstdio>
#include <cstring>

#include "core/text/strtools.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/climaintenance.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolnamedvaluecache.h"
#include "zoldoc_lib/zolvariableconversion.h"
#include "zoldoc_lib/zolvariableconversionreport.h"

namespace
{
constexpr const char *USAGE = "usage: zol convert-cp --cp N --name NAME [--type TYPE] [--dry-run] FILE\n";

int Usage( const char *pWhy )
{
	fprintf( stderr, "zol convert-cp: %s\n%s", pWhy, USAGE );
	return 2;
}

// The family of one system, read from disk.
class CFileFamilySource final : public IZolDocumentSource
{
public:
	explicit CFileFamilySource( IAsset *pAsset ) : m_pAsset( pAsset ) {}
	IAsset *GetSourceAsset() const override { return m_pAsset; }
	const CZolDoc *GetSourceDocument() const override { return nullptr; }
	const CZolDoc *FindOpenDocument( IAsset * ) const override { return nullptr; }

private:
	IAsset *m_pAsset;
};

// "PVAL_TRANSFORM" as files write it, or a name users see ("Transform"), ignoring case.
bool ParseVariableType( const char *pText, CPulseValueFullType *pType )
{
	bool bOk = false;
	CPulseValueFullType type = CPulseValueFullType::Parse( pText, &bOk );
	if ( bOk && type.IsValid() )
	{
		*pType = type;
		return true;
	}
	for ( int n = 0; n < PVAL_COUNT; ++n )
	{
		const char *pFriendly = PulseValueType_GetFriendlyName( PulseValueType_t( n ) );
		if ( pFriendly && !V_stricmp_fast( pFriendly, pText ) )
		{
			*pType = CPulseValueFullType( PulseValueType_t( n ) );
			return true;
		}
	}
	return false;
}

int RunConvertCp( int argc, char **argv )
{
	long long nControlPoint = -1;
	const char *pName = nullptr;
	const char *pType = nullptr;
	const char *pFile = nullptr;
	bool bDryRun = false;
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		const bool bHasValue = i + 1 < argc;
		if ( !strcmp( pArg, "--cp" ) )
		{
			if ( !bHasValue || !ZolCliParseInt( argv[ ++i ], 0, 63, &nControlPoint ) )
				return Usage( "--cp needs a control point number from 0 to 63" );
		}
		else if ( !strcmp( pArg, "--name" ) )
		{
			if ( !bHasValue )
				return Usage( "--name needs the variable's name" );
			pName = argv[ ++i ];
		}
		else if ( !strcmp( pArg, "--type" ) )
		{
			if ( !bHasValue )
				return Usage( "--type needs a variable type" );
			pType = argv[ ++i ];
		}
		else if ( !strcmp( pArg, "--dry-run" ) )
			bDryRun = true;
		else if ( IsMaintenanceFileArgument( pArg ) && !pFile )
			pFile = pArg;
		else
		{
			CUtlString why;
			if ( IsMaintenanceFileArgument( pArg ) )
				why.Format( "one file only (%s)", pArg );
			else
				why = DescribeBadMaintenanceArgument( pArg );
			return Usage( why.Get() );
		}
	}
	if ( nControlPoint < 0 || !pName || !pFile )
		return Usage( !pFile ? "no file given" : nControlPoint < 0 ? "--cp is needed" : "--name is needed" );
	CPulseValueFullType type;
	if ( pType && !ParseVariableType( pType, &type ) )
	{
		CUtlString why;
		why.Format( "'%s' is not a variable type (PVAL_FLOAT, PVAL_VEC3, PVAL_TRANSFORM, ...)", pType );
		return Usage( why.Get() );
	}

	CZolCliMaintenanceHost host;
	if ( !host.Start( pFile ) )
		return 2;
	CZolFileReport report;
	IAsset *pAsset = host.FindFileAsset( pFile, &report );
	if ( !pAsset )
	{
		PrintMaintenanceReport( report, stdout );
		return 1;
	}

	CFileFamilySource source( pAsset );
	CZolNamedValueCache family( &source );
	CUtlVector<IAsset *> assets;
	family.GetDependencyAssets( &assets );
	CZolVariableConversionPlan plan( &host.GetDocuments(), int( nControlPoint ) );
	for ( IAsset *pMember : assets )
		plan.AddDocument( pMember );
	plan.BuildActionList();
	plan.SetVariableName( pName );
	if ( pType )
		plan.SetVariableType( type );
	plan.DryRun();

	const CUtlString fileName = host.GetDisplayName( pAsset );
	int nStatus = plan.HasErrorsBeforeApply() ? 1 : 0;
	if ( plan.GetStepCount() == 0 )
	{
		report.Add( fileName.Get(), ZOL_FINDING_INFO, "nothing in the family reads control point %d; nothing to convert", int( nControlPoint ) );
	}
	else if ( !bDryRun && nStatus != 0 )
	{
		report.Add( fileName.Get(), ZOL_FINDING_ERROR, "not applied: the plan lists errors; nothing was changed" );
	}
	else if ( !bDryRun )
	{
		plan.Apply();
		nStatus = plan.GetModifyMessages().GetErrorCount() ? 1 : 0;
	}
	AppendZolConversionFindings( plan, &host.GetDocuments(), fileName.Get(), &report );
	if ( plan.IsApplied() )
		host.GetDocuments().WriteChanged( &report );
	PrintMaintenanceReport( report, stdout );
	return report.HasErrors() ? 1 : nStatus;
}

CZolCliCommandRegistrar s_ConvertCp( { "convert-cp", "convert-cp --cp N --name NAME [--type TYPE] [--dry-run] FILE",
	"turns every read of a control point, across the system's parents and children, into a read of a new variable", RunConvertCp } );
} // namespace
