#include "tools/zol/host/toolshost.h"

#include <dlfcn.h>

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QTimer>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "core/host/hostservices.h"
#include "core/host/interfaceregistry.h"
#include "core/host/iprompt.h"
#include "core/host/safefilewrite.h"
#include "core/logging/logging.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "core/platform/platformmode.h"
#include "core/platform/platformtime.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/widgets/baseeditorwnd/baseeditorwnd.h"
#include "tools/toolutils2/widgets/baseeditorwnd/qtprompt.h"
#include "tools/zol/host/scriptedrun.h"

namespace
{
struct ToolsHostOptions_t
{
	QString m_GameRoot;
	QString m_ContentRoot;
	QString m_ScreenshotPath;
	int m_nFrames = 30;
	std::vector<QString> m_Files;
	CScriptedRun m_Script;
};

void PrintHostUsage( FILE *pOut )
{
	fprintf( pOut, "usage: zol [--game DIR] [--content DIR] [--screenshot PATH [--frames N]] [--do STEP]... [--answer TITLE=BUTTON]... [FILE...]\n" );
}

bool ParseOptions( int argc, char **argv, ToolsHostOptions_t *pOptions )
{
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		bool bHasValue = i + 1 < argc;
		int nScriptArgs = pOptions->m_Script.ParseOption( argc, argv, i );
		if ( nScriptArgs < 0 )
			return false;
		if ( nScriptArgs > 0 )
			i += nScriptArgs - 1;
		else if ( !strcmp( pArg, "--game" ) && bHasValue )
			pOptions->m_GameRoot = QString::fromLocal8Bit( argv[ ++i ] );
		else if ( !strcmp( pArg, "--content" ) && bHasValue )
			pOptions->m_ContentRoot = QString::fromLocal8Bit( argv[ ++i ] );
		else if ( !strcmp( pArg, "--screenshot" ) && bHasValue )
			pOptions->m_ScreenshotPath = QString::fromLocal8Bit( argv[ ++i ] );
		else if ( !strcmp( pArg, "--frames" ) && bHasValue )
			pOptions->m_nFrames = atoi( argv[ ++i ] );
		else if ( pArg[ 0 ] == '-' && pArg[ 1 ] == '-' )
		{
			fprintf( stderr, "zol: unknown or incomplete option \"%s\"\n", pArg );
			return false;
		}
		else
			pOptions->m_Files.push_back( QFileInfo( QString::fromLocal8Bit( pArg ) ).absoluteFilePath() );
	}
	return pOptions->m_nFrames > 0;
}

// The shipped "content/" roots: beside or above the executable (an installed or built
// tree), else the source tree it was built from.
QString FindShippedContent( const char *pSubDirectory )
{
	QDir dir( QCoreApplication::applicationDirPath() );
	for ( int nUp = 0; nUp < 4; ++nUp )
	{
		QString candidate = dir.absoluteFilePath( QString( "content/" ) + pSubDirectory );
		if ( QFileInfo( candidate ).isDir() )
			return candidate;
		if ( !dir.cdUp() )
			break;
	}
#ifdef ZOL_SOURCE_DIR
	QString fromSource = QString( ZOL_SOURCE_DIR ) + "/content/" + pSubDirectory;
	if ( QFileInfo( fromSource ).isDir() )
		return fromSource;
#endif
	return QString();
}

// The picture goes to disk as every file does: whole or not at all.
bool SaveWindowPicture( QWidget *pWindow, const QString &path, CUtlString *pError )
{
	if ( !pWindow )
	{
		pError->Set( "there is no window" );
		return false;
	}
	QByteArray bytes;
	QBuffer buffer( &bytes );
	buffer.open( QIODevice::WriteOnly );
	QByteArray format = QFileInfo( path ).suffix().toLower().toUtf8();
	if ( !pWindow->grab().save( &buffer, format.isEmpty() ? "PNG" : format.constData() ) )
	{
		pError->Format( "no picture of the format \"%s\" can be made", format.constData() );
		return false;
	}
	return SafeWriteFile( path.toUtf8().constData(), bytes.constData(), size_t( bytes.size() ), pError );
}

using InstallSchemaBindingsFn_t = bool ( * )( const char *, void * );
} // namespace

int RunToolsHost( int argc, char **argv )
{
	ToolsHostOptions_t options;
	if ( !ParseOptions( argc, argv, &options ) )
	{
		PrintHostUsage( stderr );
		return 2;
	}

	QApplication app( argc, argv );
	app.setApplicationName( "zol" );
	app.setQuitOnLastWindowClosed( false );

	if ( options.m_GameRoot.isEmpty() )
		options.m_GameRoot = FindShippedContent( "game" );
	if ( options.m_ContentRoot.isEmpty() )
		options.m_ContentRoot = FindShippedContent( "content" );
	if ( options.m_GameRoot.isEmpty() || options.m_ContentRoot.isEmpty() )
	{
		fprintf( stderr, "zol: no game or content directory; give --game DIR and --content DIR\n" );
		return 1;
	}
	// The file system, resources, assets, help, property editors and game information,
	// each answering Host_CreateInterface under its versioned name.
	CHostServices services;
	CUtlString strError;
	if ( !services.Init( QFileInfo( options.m_GameRoot ).absoluteFilePath().toUtf8().constData(), QFileInfo( options.m_ContentRoot ).absoluteFilePath().toUtf8().constData(), &strError ) )
	{
		fprintf( stderr, "zol: %s\n", strError.Get() );
		return 1;
	}
	if ( !strError.IsEmpty() )
		Log_Warning( LOG_GENERAL, "%s\n", strError.Get() );

	// The particle classes and their inputs, before any definition is read.
	RegisterParticleInputClasses();
	RegisterParticleInputDefaultTests( ToolAttrHost() );
	services.SetParticleSystemMgr( HostParticleSystemMgr() );

	// Nobody watches a picture being taken: the run asks no questions that matter, and a
	// question that comes all the same gets its default button and goes to the log
	// instead of a dialog that nobody would answer.
	const bool bBatch = !options.m_ScreenshotPath.isEmpty();
	if ( bBatch )
		Plat_SetHeadlessMode( true );
	CQtPrompt prompt;
	CScopedPrompt scopedPrompt( options.m_Script.IsScripted() ? options.m_Script.GetPrompt() : bBatch ? nullptr : &prompt );

	// The module lies beside the executable.
	QString modulePath = QCoreApplication::applicationDirPath() + "/libzol_editor.so";
	void *pModule = dlopen( modulePath.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL );
	if ( !pModule )
	{
		fprintf( stderr, "zol: cannot load the editor module %s: %s\n", modulePath.toUtf8().constData(), dlerror() );
		return 1;
	}
	auto fnCreateInterface = reinterpret_cast<CreateInterfaceFn_t>( dlsym( pModule, "CreateInterface" ) );
	auto fnInstallSchemaBindings = reinterpret_cast<InstallSchemaBindingsFn_t>( dlsym( pModule, "InstallSchemaBindings" ) );
	if ( !fnCreateInterface || !fnInstallSchemaBindings )
	{
		fprintf( stderr, "zol: %s is not an editor module (missing exports)\n", modulePath.toUtf8().constData() );
		return 1;
	}
	fnInstallSchemaBindings( "SchemaSystem_001", nullptr );

	int nCode = 0;
	auto *pTool = static_cast<CBaseEditorApp *>( static_cast<CBaseToolSystem2 *>( fnCreateInterface( TOOLSYSTEM2_INTERFACE_VERSION, &nCode ) ) );
	if ( !pTool || nCode != 0 )
	{
		fprintf( stderr, "zol: the module has no \"%s\"\n", TOOLSYSTEM2_INTERFACE_VERSION );
		return 1;
	}
	if ( !pTool->Connect( &Host_CreateInterface ) )
	{
		fprintf( stderr, "zol: the tool could not connect to the host's services\n" );
		return 1;
	}
	CUtlString strMissing;
	if ( !pTool->CheckNeededInterfaces( &Host_CreateInterface, &strMissing ) )
	{
		fprintf( stderr, "zol: %s\n", strMissing.Get() );
		return 1;
	}
	if ( !pTool->InitTool() || !pTool->StartTool( 0 ) )
	{
		fprintf( stderr, "zol: the tool did not start\n" );
		return 1;
	}

	auto *pWindow = dynamic_cast<CQBaseEditorWnd *>( pTool->GetMainWindow() );
	if ( pWindow )
	{
		prompt.SetDefaultParent( pWindow );
		pWindow->show();
	}

	ToolOpenRequest_t request;
	request.m_nKind = TOOL_OPEN_REQUEST_FILES;
	for ( const QString &file : options.m_Files )
		request.m_Names.emplace_back( QDir::toNativeSeparators( file ).replace( '/', '\\' ).toUtf8().constData() );
	if ( !request.m_Names.empty() )
		pTool->OnOpenRequest( request );

	int nExitCode = 0;
	int nFramesRun = 0;
	QTimer frameTimer;
	QObject::connect( &frameTimer, &QTimer::timeout, [ & ]() {
		pTool->Frame();
		options.m_Script.RunNextStep( pTool );
		++nFramesRun;
		if ( options.m_ScreenshotPath.isEmpty() || nFramesRun < options.m_nFrames )
			return;
		frameTimer.stop();
		CUtlString strShotError;
		if ( !SaveWindowPicture( pWindow, options.m_ScreenshotPath, &strShotError ) )
		{
			fprintf( stderr, "zol: could not write the screenshot %s: %s\n", options.m_ScreenshotPath.toUtf8().constData(), strShotError.Get() );
			nExitCode = 1;
		}
		QCoreApplication::quit();
	} );
	if ( pWindow )
	{
		// Quitting asks the framework's close questions; a hidden window means all closed.
		QObject::connect( pWindow, &CQBaseEditorWnd::EditorWindowHidden, &app, &QCoreApplication::quit );
	}
	frameTimer.start( 16 );
	int nLoopCode = app.exec();
	if ( nExitCode == 0 )
		nExitCode = nLoopCode;

	if ( !options.m_ScreenshotPath.isEmpty() )
	{
		// A screenshot run writes nothing back and asks nothing.
		for ( CBaseEditorSession *pSession : pTool->GetSessions() )
			pSession->SetModified( false );
	}
	pTool->ShutdownTool();
	pTool->Disconnect();
	SetParticleSystemMgr( nullptr );
	int nScriptCode = options.m_Script.Finish();
	return nExitCode != 0 ? nExitCode : nScriptCode;
}
