#include "tools/toolutils2/inputbind/inputbindinglist.h"

#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "tools/toolutils2/inputbind/bindablecommand.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"

BindingLoadResult_t CInputBindingList::LoadFromFile( const char *pPath, const char *pPathID, CUtlString *pError )
{
	IFileSystem *pFileSystem = GetFileSystem();
	CUtlBuffer buffer;
	CUtlString strReadError;
	if ( !pFileSystem || !pFileSystem->ReadFile( pPath, pPathID, &buffer, &strReadError ) )
	{
		if ( pError )
			*pError = pFileSystem ? strReadError.Get() : "no file system";
		return BINDING_LOAD_CANNOT_READ;
	}
	return LoadFromText( reinterpret_cast<const char *>( buffer.Base() ), buffer.TellPut(), pPath, pError );
}

BindingLoadResult_t CInputBindingList::LoadFromText( const char *pText, size_t nLength, const char *pSourceName, CUtlString *pError )
{
	KeyValues3 root;
	CUtlString strError;
	if ( !LoadKV3FromText( &root, &strError, pText, nLength, KV3_FORMAT_GENERIC ) || !AddFromKV3( root, &strError ) )
	{
		if ( pError )
			*pError = strError;
		return BINDING_LOAD_CANNOT_PARSE;
	}
	m_LoadedFiles.emplace_back( pSourceName ? pSourceName : "" );
	return BINDING_LOAD_OK;
}

// A member that must be an array of tables when present.
static bool GetTableArray( const KeyValues3 &root, const char *pName, const KeyValues3 **ppArray, CUtlString *pError )
{
	*ppArray = root.FindMember( pName );
	if ( !*ppArray || ( *ppArray )->IsNull() )
	{
		*ppArray = nullptr;
		return true;
	}
	if ( !( *ppArray )->IsArray() )
	{
		if ( pError )
			pError->Format( "%s is not an array", pName );
		return false;
	}
	return true;
}

bool CInputBindingList::AddFromKV3( const KeyValues3 &root, CUtlString *pError )
{
	if ( !root.IsTable() )
	{
		if ( pError )
			*pError = "the root is not a table";
		return false;
	}
	const KeyValues3 *pMacros = nullptr;
	const KeyValues3 *pBindings = nullptr;
	if ( !GetTableArray( root, "m_InputMacros", &pMacros, pError ) || !GetTableArray( root, "m_Bindings", &pBindings, pError ) )
		return false;

	auto findMacro = [ pMacros ]( const char *pInput ) -> const char * {
		if ( !pMacros )
			return nullptr;
		for ( int i = 0; i < pMacros->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pMacro = pMacros->GetArrayElement( i );
			// Macro names compare exactly: "save" and "Save" are two macros.
			if ( pMacro->IsTable() && !std::strcmp( pMacro->GetMemberString( "m_Name" ), pInput ) )
				return pMacro->GetMemberString( "m_Input" );
		}
		return nullptr;
	};

	for ( int i = 0; pBindings && i < pBindings->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pEntry = pBindings->GetArrayElement( i );
		if ( !pEntry->IsTable() )
			continue;
		const char *pInput = pEntry->GetMemberString( "m_Input" );
		if ( const char *pMacroInput = findMacro( pInput ) )
			pInput = pMacroInput;

		InputBinding_t binding;
		if ( !ParseSequence( pInput, &binding.m_Sequence ) )
			continue; // an unknown key name drops the binding
		binding.m_strContext = pEntry->GetMemberString( "m_Context" );
		binding.m_nContextToken = BindToken( binding.m_strContext );
		binding.m_strCommand = pEntry->GetMemberString( "m_Command" );
		binding.m_nCommandToken = BindToken( binding.m_strCommand );

		bool bDuplicate = false;
		for ( const InputBinding_t &existing : m_Bindings )
		{
			if ( existing.m_nContextToken == binding.m_nContextToken && existing.m_nCommandToken == binding.m_nCommandToken && existing.m_Sequence == binding.m_Sequence )
			{
				bDuplicate = true;
				break;
			}
		}
		if ( bDuplicate )
		{
			Log_Warning( LOG_INPUTBIND(), "Attempting to register the command %s for context %s multiple times\n", binding.m_strCommand.Get(), binding.m_strContext.Get() );
			continue;
		}
		m_Bindings.push_back( std::move( binding ) );
	}
	return true;
}

const InputBinding_t *CInputBindingList::FindBinding( uint32_t nContextToken, uint32_t nCommandToken ) const
{
	for ( const InputBinding_t &binding : m_Bindings )
	{
		if ( binding.m_nContextToken == nContextToken && binding.m_nCommandToken == nCommandToken )
			return &binding;
	}
	return nullptr;
}

bool CInputBindingList::ParseSequence( const char *pText, std::vector<InputCode_t> *pSequence )
{
	pSequence->clear();
	if ( !pText )
		return true;
	const char *pPart = pText;
	while ( true )
	{
		const char *pEnd = std::strchr( pPart, '+' );
		size_t nLength = pEnd ? size_t( pEnd - pPart ) : std::strlen( pPart );
		CUtlString strPart( pPart, nLength );
		strPart.TrimWhitespace();
		if ( !strPart.IsEmpty() )
		{
			InputCode_t nCode = InputCodeFromName( strPart );
			if ( nCode == INPUT_CODE_NONE )
			{
				pSequence->clear();
				return false;
			}
			pSequence->push_back( nCode );
		}
		if ( !pEnd )
			break;
		pPart = pEnd + 1;
	}
	return true;
}

void CInputBindingList::FormatSequence( const std::vector<InputCode_t> &sequence, CUtlString *pText )
{
	pText->Clear();
	for ( size_t i = 0; i < sequence.size(); ++i )
	{
		if ( i )
			pText->Append( '+' );
		pText->Append( InputCodeName( sequence[ i ] ) );
	}
}
