#pragma once
// Documents for tests: a body of root children written as KV3 becomes a whole document,
// which is compiled with the shipped game's node descriptions and run as `zol pulse run`
// runs it.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "pulse_runtime_lib/system/pulsegraphrunner.h"
#include "pulsedoc_lib/compiler/pulsegraphcompiler.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"

inline const std::string &PulseDocTestSourceDir()
{
	static const std::string s_Dir( ZOL_SOURCE_DIR );
	return s_Dir;
}

// The runtime's descriptions and the shipped game's events, made once.
inline const CPulseNodeDescriptions &PulseDocTestDescriptions()
{
	static const CPulseNodeDescriptions *s_pDescriptions = [] {
		auto *pDescriptions = new CPulseNodeDescriptions;
		CUtlString report;
		EXPECT_TRUE( pDescriptions->LoadGameDescriptions( ( PulseDocTestSourceDir() + "/content/game" ).c_str(), &report ) ) << report.Get();
		return pDescriptions;
	}();
	return *s_pDescriptions;
}

inline std::string PulseDocText( const std::string &children, const std::string &rootKeys = "" )
{
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tpulse:3c9a4e71-2f0b-4d8e-9a61-5be0c7d2f418 ---\n"
		   "{ _class = \"CPulseDoc_Root\" " +
		rootKeys + " m_Children = [ " + children + " ] }\n";
}

// A method Main whose exit runs the group of the given flow children (node 2).
inline std::string MainRunning( const std::string &steps )
{
	return R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 1 m_Name = "Main" m_Children = [ { _class = "CPulseDoc_Connection_Outflow" m_DestFlowNodeID = 2 } ] },
		{ _class = "CPulseDoc_Group" m_NodeID = 2 m_Children = [ )" +
		steps + " ] },";
}

struct PulseDocCompiled_t
{
	std::unique_ptr<CPulseDoc> m_pDoc;
	CPulseDocMessages m_Messages;
	PulseDocCompileResult_t m_Result;
	bool m_bLoaded = false;
	bool m_bCompiled = false;

	// Every message, one a line ("node 3: ...").
	std::string Messages() const { return m_Messages.ToText().Get(); }
};

inline std::unique_ptr<PulseDocCompiled_t> CompilePulseDocText( const std::string &text, const PulseCompileOptions_t &options = {} )
{
	auto pCompiled = std::make_unique<PulseDocCompiled_t>();
	pCompiled->m_pDoc = std::make_unique<CPulseDoc>( &PulseDocTestDescriptions() );
	pCompiled->m_bLoaded = pCompiled->m_pDoc->LoadText( text.data(), text.size(), &pCompiled->m_Messages );
	if ( pCompiled->m_bLoaded )
		pCompiled->m_bCompiled = PulseDoc_Compile( pCompiled->m_pDoc.get(), &pCompiled->m_Messages, &pCompiled->m_Result, options, "test.tpulse" );
	return pCompiled;
}

// The lines a run logs; the test fails when the document doesn't compile or the run fails.
inline std::vector<std::string> RunPulseDoc( const std::string &text, const PulseRunOptions_t &options = {}, const PulseCompileOptions_t &compileOptions = {} )
{
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( text, compileOptions );
	EXPECT_TRUE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	if ( !pCompiled->m_bCompiled )
		return {};
	PulseRunResult_t result;
	EXPECT_TRUE( PulseRunGraph( pCompiled->m_Result.m_hDef, options, &result ) ) << result.m_Reason.Get();
	std::vector<std::string> lines;
	for ( const CUtlString &line : result.m_Lines )
		lines.emplace_back( line.Get() );
	return lines;
}

// The codes of the compiled chunk, by name ("GET_CONST", ...).
inline std::vector<std::string> CompiledCodes( const PulseDocCompiled_t &compiled, int nChunk = 0 )
{
	std::vector<std::string> codes;
	const KeyValues3 *pChunks = compiled.m_Result.m_Definition.FindMember( "m_Chunks" );
	if ( !pChunks || nChunk >= pChunks->GetArrayElementCount() )
		return codes;
	const KeyValues3 *pInstructions = pChunks->GetArrayElement( nChunk )->FindMember( "m_Instructions" );
	for ( int i = 0; pInstructions && i < pInstructions->GetArrayElementCount(); ++i )
		codes.emplace_back( pInstructions->GetArrayElement( i )->GetMemberString( "m_nCode", "" ) );
	return codes;
}

inline int CountCode( const std::vector<std::string> &codes, const char *pCode )
{
	int n = 0;
	for ( const std::string &code : codes )
		n += code == pCode;
	return n;
}

// Pieces of a document, written the way a user writes them by hand.
inline std::string Literal( const char *pType, const std::string &value )
{
	return std::string( "{ m_LiteralValueTypeWhenSaved = \"" ) + pType + "\" m_LiteralValue = " + value + " }";
}

inline std::string Inparam( int nSource, const char *pOutparam, const char *pInparam )
{
	return "{ _class = \"CPulseDoc_Connection_Inparam\" m_SourceNode = " + std::to_string( nSource ) + " m_SourceOutparamName = \"" + pOutparam +
		"\" m_ThisInparamName = \"" + pInparam + "\" }";
}

inline std::string Outflow( const char *pName, int nDest )
{
	const std::string name = *pName ? std::string( " m_SourceOutflowName = \"" ) + pName + "\"" : "";
	return "{ _class = \"CPulseDoc_Connection_Outflow\"" + name + " m_DestFlowNodeID = " + std::to_string( nDest ) + " }";
}

// An expression node; ports maps "$name" inputs to the node and output they read.
inline std::string Expression( int nID, const std::string &text, const std::vector<std::tuple<const char *, int, const char *>> &ports = {} )
{
	std::string connections, portVariables;
	for ( const auto &[ pName, nSource, pOutparam ] : ports )
	{
		connections += Inparam( nSource, pOutparam, pName ) + ",";
		portVariables += std::string( "\"" ) + pName + "\" = { m_ValueSource = \"port\" } ";
	}
	std::string escaped;
	for ( char c : text )
	{
		if ( c == '"' )
			escaped += '\\';
		escaped += c;
	}
	return "{ _class = \"CPulseDoc_Value_Expression\" m_NodeID = " + std::to_string( nID ) + " m_Children = [ " + connections + " ] m_ExprText = \"" +
		escaped + "\" m_ExprPortVariables = { " + portVariables + " } },";
}

// A debug log of the result of a value node.
inline std::string LogOf( int nID, int nValue, const char *pOutparam = "retval" )
{
	return "{ _class = \"CPulseDoc_Step_DebugLog\" m_NodeID = " + std::to_string( nID ) + " m_Children = [ " + Inparam( nValue, pOutparam, "pText" ) +
		" ] pText = { m_ValueSource = \"port\" } },";
}

inline std::string LogText( int nID, const std::string &text )
{
	return "{ _class = \"CPulseDoc_Step_DebugLog\" m_NodeID = " + std::to_string( nID ) + " pText = " + Literal( "PVAL_STRING", "\"" + text + "\"" ) +
		" },";
}

inline std::string Group( int nID, const std::string &steps, const std::string &exits = "" )
{
	return "{ _class = \"CPulseDoc_Group\" m_NodeID = " + std::to_string( nID ) + " m_Children = [ " + exits + steps + " ] },";
}

inline std::string IntVariable( int nID, const char *pName, int nValue )
{
	return "{ _class = \"CPulseDoc_VariableDefinition\" m_NodeID = " + std::to_string( nID ) + " m_Name = \"" + pName +
		"\" m_Value = { m_Type = \"PVAL_INT\" m_Value = " + std::to_string( nValue ) + " } },";
}

inline std::string SetVar( int nID, int nVariable, int nValue )
{
	return "{ _class = \"CPulseDoc_Step_SetVar\" m_NodeID = " + std::to_string( nID ) + " m_Children = [ " + Inparam( nValue, "retval", "m_Value" ) +
		" ] m_VarDefID = " + std::to_string( nVariable ) + " m_Value = { m_ValueSource = \"port\" } },";
}

