#include "core/host/toolsettingsstore.h"

#include <cstdlib>

#include "core/containers/utlbuffer.h"
#include "core/host/hostpaths.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/strtools.h"

void CToolSettingsStore::SetDirectory( const char *pDirectory )
{
	m_strDirectory.Set( pDirectory );
}

CUtlString CToolSettingsStore::GetDirectory() const
{
	if ( !m_strDirectory.IsEmpty() )
		return Host_NormalizePath( m_strDirectory.Get() );
	const char *pOverride = getenv( TOOL_SETTINGS_DIRECTORY_ENV );
	if ( pOverride && *pOverride )
		return Host_NormalizePath( pOverride );
	const char *pConfig = getenv( "XDG_CONFIG_HOME" );
	if ( pConfig && *pConfig )
		return Host_JoinPath( pConfig, "zol" );
	const char *pHome = getenv( "HOME" );
	if ( pHome && *pHome )
		return Host_JoinPath( pHome, ".config\\zol" );
	return CUtlString();
}

CUtlString CToolSettingsStore::GetSettingsPath( const char *pToolName ) const
{
	// Tool names become file names: keep them to safe characters.
	CUtlString fileName;
	for ( const char *p = pToolName ? pToolName : ""; *p; ++p )
	{
		char c = *p;
		bool bSafe = ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || ( c >= '0' && c <= '9' ) || c == '_' || c == '-' || c == '.';
		fileName.Append( bSafe ? c : '_' );
	}
	if ( fileName.IsEmpty() )
		fileName.Set( "tool" );
	fileName.Append( "_settings.kv3" );
	CUtlString directory = GetDirectory();
	return directory.IsEmpty() ? CUtlString() : Host_JoinPath( directory.Get(), fileName.Get() );
}

bool CToolSettingsStore::Load( const char *pToolName, KeyValues3 *pTable, CUtlString *pError ) const
{
	pTable->SetToEmptyTable();
	if ( pError )
		pError->Clear();
	CUtlString path = GetSettingsPath( pToolName );
	if ( path.IsEmpty() || !m_FileSystem.FileExists( path.Get() ) )
		return false;
	CUtlBuffer buffer;
	if ( !m_FileSystem.ReadFile( path.Get(), nullptr, &buffer, pError ) )
		return false;
	CUtlString error;
	if ( !LoadKV3( pTable, &error, &buffer, KV3_FORMAT_GENERIC, path.Get() ) || !pTable->IsTable() )
	{
		if ( pError )
			pError->Format( "The settings file '%s' can't be read: %s", path.Get(), error.IsEmpty() ? "it holds no table" : error.Get() );
		pTable->SetToEmptyTable();
		return false;
	}
	return true;
}

bool CToolSettingsStore::Save( const char *pToolName, const KeyValues3 &table, CUtlString *pError )
{
	CUtlString path = GetSettingsPath( pToolName );
	if ( path.IsEmpty() )
	{
		if ( pError )
			pError->Set( "No settings directory: neither ZOL_SETTINGS_DIR nor HOME is set" );
		return false;
	}
	CUtlBuffer buffer;
	if ( !SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &table, pError, &buffer ) )
		return false;
	return m_FileSystem.WriteFile( path.Get(), nullptr, buffer, pError );
}

CToolSettingsStore &GetToolSettingsStore()
{
	static CToolSettingsStore s_Store;
	return s_Store;
}
