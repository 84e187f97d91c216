#include "tools/widgets/color/colorgridfile.h"

#include <algorithm>
#include <cstdlib>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/host/toolsettingsstore.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"

namespace
{
int ReadChannel( const KeyValues3 &value, bool *pOk )
{
	int nValue = 0;
	if ( value.IsString() )
	{
		const char *pText = value.GetString();
		char *pEnd = nullptr;
		double flValue = strtod( pText, &pEnd );
		*pOk = pEnd != pText;
		nValue = int( std::clamp( flValue, -1e9, 1e9 ) );
	}
	else
	{
		*pOk = value.GetType() == KV3_TYPE_BOOL || value.IsNumber();
		nValue = value.GetInt( 0 );
	}
	return std::clamp( nValue, 0, 255 );
}
} // namespace

bool ReadColorGrid( const KeyValues3 &table, ColorGridData_t *pGrid, CUtlString *pError )
{
	ColorGridData_t grid;
	if ( !table.IsTable() )
	{
		pError->Set( "the file holds no table" );
		return false;
	}
	grid.m_strName = table.GetMemberString( "name", "" );
	const KeyValues3 *pColors = table.FindMember( "colors" );
	if ( !pColors || !pColors->IsArray() )
	{
		pError->Set( "\"colors\" is missing or not an array" );
		return false;
	}
	for ( int i = 0; i < pColors->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pEntry = pColors->GetArrayElement( i );
		const KeyValues3 *pValue = pEntry->IsTable() ? pEntry->FindMember( "value" ) : nullptr;
		if ( !pValue || !pValue->IsArray() || pValue->GetArrayElementCount() < 3 )
		{
			pError->Format( "colour %d has no \"value\" of three numbers", i );
			return false;
		}
		int c[ 3 ];
		for ( int k = 0; k < 3; ++k )
		{
			bool bOk = false;
			c[ k ] = ReadChannel( *pValue->GetArrayElement( k ), &bOk );
			if ( !bOk )
			{
				pError->Format( "colour %d: component %d is not a number", i, k );
				return false;
			}
		}
		ColorGridEntry_t entry;
		entry.m_Color = Color( c[ 0 ], c[ 1 ], c[ 2 ], 255 );
		entry.m_strName = pEntry->GetMemberString( "name", "" );
		grid.m_Entries.push_back( entry );
	}
	*pGrid = std::move( grid );
	return true;
}

void WriteColorGrid( const ColorGridData_t &grid, KeyValues3 *pTable )
{
	pTable->SetToEmptyTable();
	pTable->SetMemberString( "name", grid.m_strName.Get() );
	KeyValues3 *pColors = pTable->SetMemberEmptyArray( "colors" );
	for ( const ColorGridEntry_t &entry : grid.m_Entries )
	{
		KeyValues3 *pEntry = pColors->ArrayAddToTail();
		pEntry->SetToEmptyTable();
		pEntry->SetMemberString( "name", entry.m_strName.Get() );
		KeyValues3 *pValue = pEntry->SetMemberEmptyArray( "value" );
		for ( int k = 0; k < 3; ++k )
			pValue->ArrayAddToTail()->SetInt( entry.m_Color[ k ] );
	}
}

ColorGridData_t DefaultColorGrid()
{
	ColorGridData_t grid;
	grid.m_strName = "Default Colors";
	const struct
	{
		const char *m_pName;
		Color m_Color;
	} s_Defaults[] = { { "White", Color( 255, 255, 255 ) }, { "Black", Color( 0, 0, 0 ) }, { "Red", Color( 255, 0, 0 ) },
					   { "Green", Color( 0, 255, 0 ) }, { "Blue", Color( 0, 0, 255 ) } };
	for ( const auto &color : s_Defaults )
		grid.m_Entries.push_back( { color.m_Color, CUtlString( color.m_pName ) } );
	return grid;
}

CUtlString GetSharedColorGridPath()
{
	CUtlString path;
	if ( IFileSystem *pFileSystem = GetFileSystem() )
	{
		if ( !pFileSystem->RelativePathToFullPath( SHARED_COLORS_FILE, PATH_ID_GAME, &path ) )
			pFileSystem->MakeWritePath( SHARED_COLORS_FILE, PATH_ID_GAME, &path );
	}
	return path;
}

bool LoadSharedColorGrid( ColorGridData_t *pGrid, CUtlString *pError )
{
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem )
	{
		pError->Set( "no file system" );
		return false;
	}
	CUtlBuffer buffer;
	if ( !pFileSystem->ReadFile( SHARED_COLORS_FILE, PATH_ID_GAME, &buffer, pError ) )
		return false;
	KeyValues3 table;
	CUtlString error;
	if ( !LoadKV3( &table, &error, &buffer, KV3_FORMAT_GENERIC, SHARED_COLORS_FILE ) )
	{
		pError->Format( "%s: %s", SHARED_COLORS_FILE, error.Get() );
		return false;
	}
	if ( !ReadColorGrid( table, pGrid, &error ) )
	{
		pError->Format( "%s: %s", SHARED_COLORS_FILE, error.Get() );
		return false;
	}
	return true;
}

bool SaveSharedColorGrid( const ColorGridData_t &grid, CUtlString *pError )
{
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem )
	{
		pError->Set( "no file system" );
		return false;
	}
	KeyValues3 table;
	WriteColorGrid( grid, &table );
	CUtlBuffer buffer;
	if ( !SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &table, pError, &buffer ) )
		return false;
	// Written where it was read from, else under the first game directory.
	CUtlString path = GetSharedColorGridPath();
	if ( path.IsEmpty() )
	{
		pError->Set( "the game root is not known" );
		return false;
	}
	return pFileSystem->WriteFile( path.Get(), nullptr, buffer, pError );
}

bool IsCustomColorGridAvailable()
{
	return !GetToolSettingsStore().GetDirectory().IsEmpty();
}

bool LoadCustomColorGrid( ColorGridData_t *pGrid, CUtlString *pError )
{
	KeyValues3 table;
	CUtlString error;
	if ( !GetToolSettingsStore().Load( CUSTOM_COLORS_TOOL_FILE, &table, &error ) )
	{
		if ( error.IsEmpty() )
		{
			// No colours of one's own yet.
			*pGrid = ColorGridData_t();
			return true;
		}
		*pError = error;
		return false;
	}
	return ReadColorGrid( table, pGrid, pError );
}

bool SaveCustomColorGrid( const ColorGridData_t &grid, CUtlString *pError )
{
	KeyValues3 table;
	WriteColorGrid( grid, &table );
	return GetToolSettingsStore().Save( CUSTOM_COLORS_TOOL_FILE, table, pError );
}
