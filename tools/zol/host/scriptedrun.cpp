#include "tools/zol/host/scriptedrun.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "core/host/hostpaths.h"
#include "core/host/iprompt.h"
#include "core/host/safefilewrite.h"
#include "core/host/scriptedprompt.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"

namespace
{
// The file names whose write "stop-before-rename" waits for.
CUtlString g_strStopPattern;

// One shot: the first write of a matching file after "stop-before-rename" stops the
// process with its temporary file complete and the old file still in place.
void StopBeforeRename( const char *pTemporaryPath, const char *pTargetPath )
{
	if ( !Host_WildcardMatch( g_strStopPattern, V_UnqualifiedFileName( pTargetPath ) ) )
		return;
	SafeWrite_SetBeforeRenameHook( nullptr );
	printf( "zol: stopped before renaming %s over %s\n", pTemporaryPath, pTargetPath );
	fflush( stdout );
	raise( SIGSTOP );
}

bool ParseButton( const char *pName, PromptButton_t *pButton )
{
	for ( unsigned nBit = PROMPT_BUTTON_OK; nBit <= PROMPT_BUTTON_CLOSE; nBit <<= 1 )
	{
		if ( !V_stricmp_fast( pName, PromptButtonName( PromptButton_t( nBit ) ) ) )
		{
			*pButton = PromptButton_t( nBit );
			return true;
		}
	}
	return false;
}
} // namespace

CScriptedRun::CScriptedRun() : m_pPrompt( std::make_unique<CScriptedPrompt>() )
{
	m_pPrompt->SetFailureHandler( [ this ]( const char *pFailure ) {
		fprintf( stderr, "zol: unscripted prompt: %s\n", pFailure );
		m_bFailed = true;
	} );
}

CScriptedRun::~CScriptedRun() = default;

int CScriptedRun::ParseOption( int argc, char **argv, int i )
{
	bool bDo = !strcmp( argv[ i ], "--do" );
	bool bAnswer = !strcmp( argv[ i ], "--answer" );
	if ( !bDo && !bAnswer )
		return 0;
	if ( i + 1 >= argc )
	{
		fprintf( stderr, "zol: %s needs a value\n", argv[ i ] );
		return -1;
	}
	const char *pValue = argv[ i + 1 ];
	if ( bDo )
	{
		m_Steps.emplace_back( pValue );
		return 2;
	}
	const char *pEquals = strrchr( pValue, '=' );
	PromptButton_t eButton = PROMPT_BUTTON_NONE;
	if ( !pEquals || pEquals == pValue || !ParseButton( pEquals + 1, &eButton ) )
	{
		fprintf( stderr, "zol: --answer takes TITLE=BUTTON (Yes, No, Cancel, OK, ...), not \"%s\"\n", pValue );
		return -1;
	}
	CUtlString strTitle;
	strTitle.Set( pValue, size_t( pEquals - pValue ) );
	m_pPrompt->ExpectQuestion( eButton, strTitle );
	++m_nAnswers;
	return 2;
}

IPrompt *CScriptedRun::GetPrompt()
{
	return m_pPrompt.get();
}

void CScriptedRun::RunNextStep( CBaseEditorApp *pTool )
{
	if ( m_nNextStep >= m_Steps.size() )
		return;
	const CUtlString &strStep = m_Steps[ m_nNextStep++ ];
	CUtlString strOutput;
	bool bDone = true;
	if ( !strcmp( strStep, "quit" ) )
	{
		strOutput = "quitting";
		QCoreApplication::quit();
	}
	else if ( !strncmp( strStep, "stop-before-rename", 18 ) && ( !strStep.Get()[ 18 ] || strStep.Get()[ 18 ] == ' ' ) )
	{
		g_strStopPattern = strStep.Get()[ 18 ] ? strStep.Get() + 19 : "*";
		SafeWrite_SetBeforeRenameHook( &StopBeforeRename );
		strOutput.Format( "the next file written whose name matches \"%s\" stops before its rename", g_strStopPattern.Get() );
	}
	else
		bDone = pTool->RunScriptStep( strStep, &strOutput );
	if ( !bDone )
	{
		fprintf( stderr, "zol: %s: %s\n", strStep.Get(), strOutput.Get() );
		m_bFailed = true;
		return;
	}
	printf( "zol: %s: %s\n", strStep.Get(), strOutput.Get() );
	fflush( stdout );
}

int CScriptedRun::Finish()
{
	if ( m_pPrompt->GetPendingCount() > 0 )
	{
		fprintf( stderr, "zol: %d scripted answer(s) were never asked for\n", m_pPrompt->GetPendingCount() );
		m_bFailed = true;
	}
	return m_bFailed ? 3 : 0;
}
