#include "pulse_runtime_lib/graph/pulsegraphdefio.h"

#include <cstdarg>
#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/kv3transfer/kv3transferresourceload.h"
#include "core/platform/platformfile.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystem.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"

CUtlString PulseGraphMessages_t::ToText() const
{
	CUtlString text;
	for ( const std::vector<CUtlString> *pList : { &m_Errors, &m_Warnings } )
	{
		for ( const CUtlString &message : *pList )
		{
			text += message;
			text += '\n';
		}
	}
	return text;
}

void CPulseGraphLoadContext::AddWarning( const char *pFormat, ... )
{
	CUtlString text;
	FormatPath( text );
	if ( !text.IsEmpty() )
		text += ": ";
	va_list args;
	va_start( args, pFormat );
	char buffer[ 1024 ];
	vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	text += buffer;
	// Messages of the format end in a newline; lists hold lines without one.
	while ( !text.IsEmpty() && text.Storage().back() == '\n' )
		text.Storage().pop_back();
	m_Warnings.push_back( text );
}

namespace
{
void SplitLines( const char *pText, std::vector<CUtlString> *pLines )
{
	const char *pStart = pText;
	while ( *pStart )
	{
		const char *pEnd = strchr( pStart, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pStart ) : strlen( pStart );
		if ( nLength > 0 )
			pLines->emplace_back( pStart, nLength );
		if ( !pEnd )
			break;
		pStart = pEnd + 1;
	}
}

// Root members that no field of the definition reads are most likely misspelt.
void WarnAboutUnknownRootKeys( const KeyValues3 &root, PulseGraphMessages_t *pMessages )
{
	const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( CPulseGraphDef ) );
	for ( int i = 0; i < root.GetMemberCount(); ++i )
	{
		const char *pName = root.GetMemberName( i );
		if ( strcmp( pName, "_class" ) != 0 && ( !pClass || !pClass->FindField( pName ) ) )
		{
			pMessages->m_Warnings.emplace_back();
			pMessages->m_Warnings.back().Format( "unknown key '%s' (ignored)", pName );
		}
	}
}
} // namespace

CPulseGraphDefHandle PulseGraphDef_LoadKV3( const KeyValues3 &root, const char *pResourceName, PulseGraphMessages_t *pMessages )
{
	PulseRuntime_RegisterClasses();
	if ( !root.IsTable() )
	{
		pMessages->m_Errors.emplace_back( "the root is of type '" );
		pMessages->m_Errors.back() += root.GetTypeAsString();
		pMessages->m_Errors.back() += "', not a table of a graph definition";
		return {};
	}
	const char *pClass = root.GetMemberString( "_class", nullptr );
	if ( pClass && strcmp( pClass, "CPulseGraphDef" ) != 0 )
	{
		pMessages->m_Errors.emplace_back();
		pMessages->m_Errors.back().Format( "the root is a '%s', not a 'CPulseGraphDef'", pClass );
		return {};
	}
	WarnAboutUnknownRootKeys( root, pMessages );

	CPulseGraphDefHandle hDef( new CPulseGraphDef() );
	hDef->SetResourceName( pResourceName );
	CPulseGraphLoadContext context;
	CKV3Transfer_EmptyResourceLoadInterface resources;
	context.AddInterface( IKV3TransferInterface_ResourceLoad::s_pszInterfaceName, static_cast<IKV3TransferInterface_ResourceLoad *>( &resources ) );
	CUtlString errors;
	bool bLoaded = LoadKV3ObjectInPlace( hDef.Get(), &root, &errors, &context );
	for ( CUtlString &warning : context.GetWarnings() )
		pMessages->m_Warnings.push_back( warning );
	if ( !bLoaded )
	{
		SplitLines( errors.Get(), &pMessages->m_Errors );
		if ( pMessages->m_Errors.empty() )
			pMessages->m_Errors.emplace_back( "the definition could not be read" );
		return {};
	}
	return hDef;
}

CPulseGraphDefHandle PulseGraphDef_LoadText( const char *pText, size_t nLength, const char *pResourceName, PulseGraphMessages_t *pMessages )
{
	KeyValues3 root;
	CUtlString error;
	if ( !LoadKV3FromText( &root, &error, pText, nLength, KV3_FORMAT_GENERIC, KV3_LOAD_ANY_FORMAT ) )
	{
		pMessages->m_Errors.emplace_back( error );
		return {};
	}
	return PulseGraphDef_LoadKV3( root, pResourceName, pMessages );
}

bool PulseGraphDef_SaveKV3( const CPulseGraphDef &def, KeyValues3 *pRoot, CUtlString *pError )
{
	PulseRuntime_RegisterClasses();
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	return SaveKV3Object( def, pRoot, pError, &context );
}

bool PulseGraphDef_SaveText( const CPulseGraphDef &def, CUtlString *pText, CUtlString *pError )
{
	KeyValues3 root;
	if ( !PulseGraphDef_SaveKV3( def, &root, pError ) )
		return false;
	if ( !SaveKV3ToString( &root, pText, KV3_FORMAT_GENERIC ) )
	{
		pError->Set( "the definition could not be written as KV3 text" );
		return false;
	}
	return true;
}

CPulseGraphDefHandle PulseGraphDef_LoadFile( const char *pPath, const char *pResourceName, PulseGraphMessages_t *pMessages, bool bBind )
{
	std::string content;
	CUtlString reason;
	if ( !Plat_ReadWholeFile( pPath, &content, &reason ) )
	{
		pMessages->m_Errors.emplace_back( reason );
		return {};
	}
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( content.data(), content.size(), pResourceName ? pResourceName : pPath, pMessages );
	if ( hDef && bBind && !PulseGraphDef_Bind( hDef.Get(), pMessages ) )
		return {};
	return hDef;
}
