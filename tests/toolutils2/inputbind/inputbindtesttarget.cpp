#include "inputbindtesttarget.h"

static void Record( CInputBindTestTarget *pTarget, const char *pCommand, int nStage )
{
	pTarget->m_Calls.push_back( std::string( pCommand ) + "." + std::to_string( nStage ) );
}

// Registers a handler for every stage, so the tests see all stages that run.
template <typename Command>
static void RecordAllStages( Command &command, const char *pName, bool bWithDrag )
{
	for ( int nStage = 0; nStage < BIND_STAGE_COUNT; ++nStage )
	{
		if ( !bWithDrag && ( nStage == BIND_STAGE_DRAG || nStage == BIND_STAGE_DRAG_START ) )
			continue;
		command.SetHandler( BindStage_t( nStage ), [ pName, nStage ]( CInputBindTestTarget *p ) { Record( p, pName, nStage ); } );
	}
}

static void BuildTestCommands( CBindTargetDescriptor<CInputBindTestTarget> &d )
{
	RecordAllStages( d.AddCommand( "Save" ), "Save", false );
	RecordAllStages( d.AddCommand( "Select" ), "Select", false );
	RecordAllStages( d.AddCommand( "Orbit" ), "Orbit", true );
	RecordAllStages( d.AddCommand( "Pick" ), "Pick", false );
	auto &tool = d.AddCommand( "Tool" );
	tool.SetModifierId( 1 );
	RecordAllStages( tool, "Tool", false );
	auto &guarded = d.AddCommand( "Guarded" );
	guarded.SetRequiredModifiers( 2 );
	RecordAllStages( guarded, "Guarded", false );
}

static CBindTargetDescriptor<CInputBindTestTarget> s_TestDescriptor( "InputBindTest", "CInputBindTestTarget", &BuildTestCommands );

const CBindTargetDescriptorBase *CInputBindTestTarget::GetBindTargetDescriptor() const
{
	return &s_TestDescriptor;
}

std::vector<std::string> CInputBindTestTarget::CallsOf( const char *pCommand ) const
{
	std::string prefix = std::string( pCommand ) + ".";
	std::vector<std::string> calls;
	for ( const std::string &call : m_Calls )
	{
		if ( call.compare( 0, prefix.size(), prefix ) == 0 )
			calls.push_back( call );
	}
	return calls;
}

std::string InputBindTestFile( const std::vector<std::pair<std::string, std::string>> &inputAndCommand, const std::string &macros )
{
	std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n{\n";
	text += "\tm_InputMacros = [ " + macros + " ]\n\tm_Bindings =\n\t[\n";
	for ( const auto &entry : inputAndCommand )
		text += "\t\t{ m_Input = \"" + entry.first + "\" m_Context = \"InputBindTest\" m_Command = \"" + entry.second + "\" },\n";
	text += "\t]\n}\n";
	return text;
}
