// The particle editor's steps of a scripted run: an edit of the active definition, a
// look at one of its values, and a selection (what the panels then show).

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/particles/particleparamid.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/text/strtools.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
// "KEY VALUE" into its two words; false when one is missing.
bool SplitWords( const char *pArgs, std::string *pFirst, std::string *pRest )
{
	std::string args( pArgs );
	size_t nSpace = args.find( ' ' );
	*pFirst = args.substr( 0, nSpace );
	pRest->clear();
	size_t nValue = nSpace == std::string::npos ? std::string::npos : args.find_first_not_of( ' ', nSpace );
	if ( nValue != std::string::npos )
		*pRest = args.substr( nValue );
	return !pFirst->empty();
}

// A whole number, else a number, else the text itself.
void SetMemberFromText( KeyValues3 *pTable, const char *pKey, const char *pText )
{
	char *pEnd = nullptr;
	errno = 0;
	long long nValue = strtoll( pText, &pEnd, 10 );
	if ( *pText && !*pEnd && errno == 0 )
	{
		pTable->SetMemberInt64( pKey, nValue );
		return;
	}
	double flValue = strtod( pText, &pEnd );
	if ( *pText && !*pEnd )
		pTable->SetMemberDouble( pKey, flValue );
	else
		pTable->SetMemberString( pKey, pText );
}

void DescribeValue( const KeyValues3 *pValue, CUtlString *pOut )
{
	if ( !pValue )
		pOut->Set( "(absent)" );
	else if ( pValue->GetType() == KV3_TYPE_DOUBLE )
		pOut->Format( "%g", pValue->GetDouble() );
	else if ( pValue->IsNumber() )
		pOut->Format( "%lld", (long long)pValue->GetInt64() );
	else if ( pValue->IsString() )
		pOut->Set( pValue->GetString() );
	else
		pOut->Format( "(%s)", pValue->GetTypeAsString() );
}
// A list named by its word in any case, with or without blanks and a plural "s"
// ("Emitter", "emitters", "Pre Emission Operator", "Children"), or by its key.
bool NamesList( const std::string &name, int nType )
{
	auto normal = []( std::string text ) {
		std::string out;
		for ( char c : text )
		{
			if ( c != ' ' )
				out += char( tolower( (unsigned char)c ) );
		}
		if ( out.size() > 1 && out.back() == 's' )
			out.pop_back();
		return out;
	};
	std::string wanted = normal( name );
	return wanted == normal( GetParticleFunctionTypeWord( nType ) ) || !V_stricmp_fast( name.c_str(), GetParticleFunctionListKey( nType ) ) ||
		( nType == PARTICLE_FUNCTION_CHILDREN && wanted == "child" );
}
} // namespace

bool CZolApp::RunSelectStep( const char *pArgs, CUtlString *pOutput )
{
	CZolSession *pSession = GetActiveZolSession();
	CZolDoc *pDoc = pSession ? pSession->GetDoc() : nullptr;
	// The last word is the index; the words before it name the list.
	std::string args( pArgs );
	size_t nLast = args.find_last_of( ' ' );
	std::string word = nLast == std::string::npos ? args : args.substr( 0, nLast );
	std::string index = nLast == std::string::npos ? std::string() : args.substr( nLast + 1 );
	if ( !pDoc || !pDoc->GetRoot() || word.empty() )
	{
		pOutput->Set( "\"select\" needs an open definition and \"base\" or a list word and an index, such as \"select Emitter 0\"" );
		return false;
	}
	if ( !V_stricmp_fast( word.c_str(), "cp" ) )
	{
		// A control point: the preview's gizmo stands on it.
		char *pNumberEnd = nullptr;
		long nNumber = strtol( index.c_str(), &pNumberEnd, 10 );
		if ( index.empty() || *pNumberEnd || nNumber < 0 || nNumber >= MAX_PARTICLE_CONTROL_POINTS )
		{
			pOutput->Format( "\"select %s\": a control point is a number from 0 to %d", pArgs, MAX_PARTICLE_CONTROL_POINTS - 1 );
			return false;
		}
		pSession->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( int( nNumber ) ) );
		pOutput->Format( "selected control point %ld", nNumber );
		return true;
	}
	if ( !V_stricmp_fast( args.c_str(), "base" ) )
	{
		pDoc->SelectBaseProperties();
		pOutput->Set( "selected the base properties" );
		return true;
	}
	int nType = -1;
	for ( int nList = 0; nList < PARTICLE_FUNCTION_LIST_COUNT && nType < 0; ++nList )
	{
		if ( NamesList( word, nList ) )
			nType = nList;
	}
	char *pEnd = nullptr;
	long nIndex = strtol( index.c_str(), &pEnd, 10 );
	CBaseZolNode *pNode = nType >= 0 && !index.empty() && !*pEnd ? pDoc->ResolveElementRef( ZolElementRef_t{ nType, int32_t( nIndex ) } ) : nullptr;
	if ( !pNode )
	{
		pOutput->Format( "\"select %s\": no such element", pArgs );
		return false;
	}
	pDoc->SelectElement( pNode, false );
	pOutput->Format( "selected %s %ld (%s)", GetParticleFunctionTypeWord( nType ), nIndex, CZolDoc::GetFriendlyName( pNode ) );
	return true;
}

bool CZolApp::RunScriptStep( const char *pStep, CUtlString *pOutput )
{
	if ( !strncmp( pStep, "select ", 7 ) )
		return RunSelectStep( pStep + 7, pOutput );
	bool bSet = !strncmp( pStep, "set ", 4 );
	bool bGet = !strncmp( pStep, "get ", 4 );
	if ( !bSet && !bGet )
		return CSimpleEditorSharedWindowApp<CZolSession, CQZolMainWnd>::RunScriptStep( pStep, pOutput );

	CZolSession *pSession = GetActiveZolSession();
	CZolRootNode *pRoot = pSession && pSession->GetDoc() ? pSession->GetDoc()->GetRoot() : nullptr;
	std::string key, value;
	if ( !pRoot || !SplitWords( pStep + 4, &key, &value ) || ( bSet && value.empty() ) )
	{
		pOutput->Format( "\"%s\" needs an open definition and %s", pStep, bSet ? "a key and a value" : "a key" );
		return false;
	}
	if ( bSet )
	{
		CZolDoc *pDoc = pSession->GetDoc();
		pDoc->BeginEdit( ( "Set " + key ).c_str(), true );
		SetMemberFromText( pRoot->GetKV3ForModify(), key.c_str(), value.c_str() );
		pDoc->NoteNodeModified( pRoot );
	}
	CUtlString strValue;
	DescribeValue( pRoot->GetKV3()->FindMember( key.c_str() ), &strValue );
	pOutput->Format( "%s = %s", key.c_str(), strValue.Get() );
	return true;
}
