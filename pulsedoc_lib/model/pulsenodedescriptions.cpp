#include "pulsedoc_lib/model/pulsenodedescriptions.h"

#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "core/keyvalues/keyvalues.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematype.h"
#include "core/text/friendlyname.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
bool IsOutflowField( const CSchemaClassField &field )
{
	const CSchemaType *pType = field.GetType();
	const CSchemaClassInfo *pClass = pType && pType->GetCategory() == SCHEMA_TYPE_DECLARED_CLASS ? pType->GetClass() : nullptr;
	for ( ; pClass; pClass = pClass->GetBaseClass() )
	{
		if ( strcmp( pClass->GetName(), "CPulse_OutflowConnection" ) == 0 )
			return true;
	}
	return false;
}

CUtlString FriendlyNameOf( const char *pName )
{
	CUtlString friendly;
	V_TryAndMakeFriendlyNameFromCppName( pName, &friendly );
	return friendly;
}

void SetParam( KeyValues3 *pParams, const PulseFunctionParam_t &param, const char *pInflow )
{
	bool bCreated = false;
	KeyValues3 *pParam = pParams->FindOrCreateMember( param.m_pName, &bCreated );
	if ( !bCreated )
		return; // two functions with one parameter name: the first tells its type
	pParam->SetToEmptyTable();
	pParam->SetMemberString( "type", param.m_Type.ToString().Get() );
	if ( param.m_pDescription && *param.m_pDescription )
		pParam->SetMemberString( "description", param.m_pDescription );
	if ( pInflow )
		pParam->SetMemberString( "associated_inflow_name", pInflow );
}

// An entry of "pulse_inflows" and the like, as a table with its name.
void ForEachEntry( const KeyValues3 *pList, const std::function<void( const char *, const KeyValues3 & )> &fn )
{
	static const KeyValues3 s_Empty = [] {
		KeyValues3 kv;
		kv.SetToEmptyTable();
		return kv;
	}();
	if ( !pList )
		return;
	if ( pList->IsArray() )
	{
		for ( int i = 0; i < pList->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pEntry = pList->GetArrayElement( i );
			if ( pEntry->IsTable() )
				fn( pEntry->GetMemberString( "name", "" ), *pEntry );
			else if ( pEntry->IsString() )
				fn( pEntry->GetString(), s_Empty );
		}
	}
	else if ( pList->IsTable() )
	{
		for ( int i = 0; i < pList->GetMemberCount(); ++i )
		{
			const KeyValues3 *pEntry = pList->GetMember( i );
			fn( pList->GetMemberName( i ), pEntry->IsTable() ? *pEntry : s_Empty );
		}
	}
}

void ReadFlows( const KeyValues3 *pList, bool bInflows, std::vector<PulseGenericShape_t::Flow_t> *pFlows )
{
	ForEachEntry( pList, [ & ]( const char *pName, const KeyValues3 &entry ) {
		if ( !*pName )
			return;
		PulseGenericShape_t::Flow_t &flow = pFlows->emplace_back();
		flow.m_Name.Set( pName );
		flow.m_FriendlyName.Set( entry.GetMemberString( "friendly_name", "" ) );
		flow.m_Description.Set( entry.GetMemberString( "description", "" ) );
		flow.m_bDefault = entry.GetMemberBool( bInflows ? "is_default_inflow" : "is_default_outflow" );
		flow.m_bYields = bInflows && entry.GetMemberBool( "yields" );
		flow.m_bTerminates = bInflows && entry.GetMemberBool( "terminates" );
		flow.m_bBackedByVariable = !bInflows && entry.GetMemberBool( "backed_by_variable" );
	} );
}

void ReadParams( const KeyValues3 *pList, bool bInputs, std::vector<PulseGenericShape_t::Param_t> *pParams, CUtlString *pProblems )
{
	ForEachEntry( pList, [ & ]( const char *pName, const KeyValues3 &entry ) {
		if ( !*pName )
			return;
		PulseGenericShape_t::Param_t &param = pParams->emplace_back();
		param.m_Name.Set( pName );
		const char *pType = entry.GetMemberString( "type", "" );
		if ( !param.m_Type.FromString( pType ) )
			pProblems->AppendFormat( "%s '%s': '%s' is no value type\n", bInputs ? "inparam" : "outparam", pName, pType );
		param.m_FriendlyName.Set( entry.GetMemberString( "friendly_name", "" ) );
		param.m_Description.Set( entry.GetMemberString( "description", "" ) );
		if ( const KeyValues3 *pDefault = entry.FindMember( "default_value" ) )
			param.m_DefaultValue.CopyFrom( *pDefault );
		param.m_AssociatedFlow.Set( entry.GetMemberString( bInputs ? "associated_inflow_name" : "associated_outflow_name", "" ) );
		param.m_FieldName.Set( entry.GetMemberString( "field_name", "" ) );
		if ( const KeyValues3 *pMetadata = entry.FindMember( "metadata" ); pMetadata && pMetadata->IsTable() )
			param.m_Metadata.CopyFrom( *pMetadata );
		else
			param.m_Metadata.SetToEmptyTable();
	} );
}
} // namespace

const PulseGenericShape_t::Param_t *PulseGenericShape_t::FindInparam( const char *pName ) const
{
	for ( const Param_t &param : m_Inparams )
	{
		if ( param.m_Name == pName )
			return &param;
	}
	return nullptr;
}

CPulseNodeDescriptions::CPulseNodeDescriptions() : m_pGameData( std::make_unique<CGameData>() )
{
	AddRuntimeClasses();
}

CPulseNodeDescriptions::~CPulseNodeDescriptions() = default;

const CPulseNodeDescriptions &CPulseNodeDescriptions::GetRuntimeDescriptions()
{
	static const CPulseNodeDescriptions s_Descriptions;
	return s_Descriptions;
}

void CPulseNodeDescriptions::AddRuntimeClasses()
{
	CSchemaSystemTypeScope *pScope = PulseRuntime_GetTypeScope();
	// Cell functions gather under their cell class, in registration order.
	std::vector<std::string> cellOrder;
	std::map<std::string, std::vector<const PulseFunctionBinding_t *>> cellFunctions;
	for ( const PulseFunctionBinding_t *pBinding : PulseFunctions_GetAll() )
	{
		if ( pBinding->IsLibrary() )
		{
			CGameDataClass *pClass = m_pGameData->CreateClassRecord();
			pClass->m_nClassType = GDCLASS_POINT;
			pClass->m_Name.Format( "%s::%s", pBinding->m_pClassName, pBinding->m_pMethodName );
			pClass->m_FriendlyName.Set( pBinding->m_pFriendlyName );
			pClass->m_Description.Set( pBinding->m_pDescription );
			KeyValues3 &meta = pClass->m_MetaData;
			meta.SetToEmptyTable();
			meta.SetMemberBool( "is_pulse_library_method", true );
			KeyValues3 *pIn = meta.SetMemberEmptyTable( "pulse_inparams" );
			for ( const PulseFunctionParam_t &param : pBinding->m_Inputs )
				SetParam( pIn, param, nullptr );
			KeyValues3 *pOut = meta.SetMemberEmptyTable( "pulse_outparams" );
			for ( const PulseFunctionParam_t &param : pBinding->m_Outputs )
				SetParam( pOut, param, nullptr );
			m_pGameData->AddClass( pClass );
			continue;
		}
		auto [ it, bNew ] = cellFunctions.try_emplace( pBinding->m_pClassName );
		if ( bNew )
			cellOrder.push_back( pBinding->m_pClassName );
		it->second.push_back( pBinding );
	}
	for ( const std::string &className : cellOrder )
	{
		CGameDataClass *pClass = m_pGameData->CreateClassRecord();
		pClass->m_nClassType = GDCLASS_POINT;
		pClass->m_Name.Set( className.c_str() );
		// "CPulseCell_Inflow_Wait" is "Wait".
		const char *pShortName = strncmp( className.c_str(), "CPulseCell_", 11 ) == 0 ? className.c_str() + 11 : className.c_str();
		for ( const char *pFamily : { "Inflow_", "Outflow_", "Step_", "Value_" } )
		{
			if ( strncmp( pShortName, pFamily, strlen( pFamily ) ) == 0 )
				pShortName += strlen( pFamily );
		}
		pClass->m_FriendlyName = FriendlyNameOf( pShortName );
		KeyValues3 &meta = pClass->m_MetaData;
		meta.SetToEmptyTable();
		KeyValues3 *pInflows = meta.SetMemberEmptyArray( "pulse_inflows" );
		KeyValues3 *pIn = meta.SetMemberEmptyTable( "pulse_inparams" );
		KeyValues3 *pOut = meta.SetMemberEmptyTable( "pulse_outparams" );
		const std::vector<const PulseFunctionBinding_t *> &functions = cellFunctions[ className ];
		for ( const PulseFunctionBinding_t *pBinding : functions )
		{
			KeyValues3 *pInflow = pInflows->ArrayAddToTail();
			pInflow->SetToEmptyTable();
			pInflow->SetMemberString( "name", pBinding->m_pMethodName );
			pInflow->SetMemberString( "friendly_name", pBinding->m_pFriendlyName );
			pInflow->SetMemberString( "description", pBinding->m_pDescription );
			const char *pMetadata = pBinding->m_pMetadataName ? pBinding->m_pMetadataName : "";
			// A cell with one function enters through it by default.
			if ( strcmp( pMetadata, "MPulseCellInflow_IsDefault" ) == 0 || functions.size() == 1 )
				pInflow->SetMemberBool( "is_default_inflow", true );
			if ( strcmp( pMetadata, "MPulseCursorTerminates" ) == 0 )
				pInflow->SetMemberBool( "terminates", true );
			if ( pBinding->m_nFlags & PULSE_FUNCTION_FLAG_YIELDS )
				pInflow->SetMemberBool( "yields", true );
			if ( strcmp( pMetadata, "MPulseRequirementCheck" ) == 0 )
				pInflow->SetMemberBool( "requirement_check", true );
			if ( strcmp( pMetadata, "MPulseRequirementCommit" ) == 0 )
				pInflow->SetMemberBool( "requirement_commit", true );
			for ( const PulseFunctionParam_t &param : pBinding->m_Inputs )
				SetParam( pIn, param, pBinding->m_pMethodName );
			for ( const PulseFunctionParam_t &param : pBinding->m_Outputs )
				SetParam( pOut, param, nullptr );
		}
		// The cell's outflow fields are the node's exits; a cell with one exits there by default.
		KeyValues3 *pOutflows = meta.SetMemberEmptyArray( "pulse_outflows" );
		if ( const CSchemaClassInfo *pSchemaClass = pScope->FindDeclaredClass( className.c_str() ) )
		{
			std::vector<const CSchemaClassField *> fields;
			pSchemaClass->GetAllFields( fields );
			for ( const CSchemaClassField *pField : fields )
			{
				if ( !IsOutflowField( *pField ) )
					continue;
				KeyValues3 *pOutflow = pOutflows->ArrayAddToTail();
				pOutflow->SetToEmptyTable();
				pOutflow->SetMemberString( "name", pField->GetName() );
				const char *pFieldName = pField->GetName();
				pOutflow->SetMemberString( "friendly_name", FriendlyNameOf( pFieldName ).Get() );
			}
			if ( pOutflows->GetArrayElementCount() == 1 )
				pOutflows->GetArrayElement( 0 )->SetMemberBool( "is_default_outflow", true );
		}
		m_pGameData->AddClass( pClass );
	}
}

bool CPulseNodeDescriptions::LoadText( const char *pText, const char *pName, const char *pGameRoot, CUtlString *pReport )
{
	CFgdReader reader( m_pGameData.get(), pGameRoot ? pGameRoot : "" );
	m_pGameData->ClearErrors();
	bool bOk = reader.LoadGameDataFromText( pName, pText, strlen( pText ) );
	for ( const GameDataError_t &error : m_pGameData->GetErrors() )
	{
		if ( pReport )
			pReport->AppendFormat( "%s\n", error.m_Text.Get() );
	}
	m_Shapes.clear();
	return bOk && m_pGameData->GetErrors().Count() == 0;
}

bool CPulseNodeDescriptions::LoadGameDescriptions( const char *pGameRoot, CUtlString *pReport )
{
	if ( !pGameRoot || !*pGameRoot )
		return true;
	KeyValues gameInfo;
	std::filesystem::path gameInfoPath = std::filesystem::path( pGameRoot ) / "gameinfo.gi";
	if ( !gameInfo.LoadFromFile( gameInfoPath.string().c_str() ) )
		return true;
	const KeyValues *pBlock = gameInfo.FindKey( "Brakel" );
	const KeyValues *pFiles = pBlock ? pBlock->FindKey( "pulse_node_descriptions" ) : nullptr;
	if ( !pFiles )
		return true;
	bool bOk = true;
	for ( const KeyValues *pFile = pFiles->GetFirstSubKey(); pFile; pFile = pFile->GetNextKey() )
	{
		if ( pFile->HasSubKeys() || !*pFile->GetString() )
			continue;
		CFgdReader reader( m_pGameData.get(), pGameRoot );
		m_pGameData->ClearErrors();
		if ( !reader.LoadGameData( pFile->GetString() ) || m_pGameData->GetErrors().Count() > 0 )
		{
			bOk = false;
			if ( pReport )
			{
				pReport->AppendFormat( "Failed to load Pulse node descriptions '%s'.\n", pFile->GetString() );
				for ( const GameDataError_t &error : m_pGameData->GetErrors() )
					pReport->AppendFormat( "%s\n", error.m_Text.Get() );
			}
		}
	}
	m_Shapes.clear();
	return bOk;
}

const CGameDataClass *CPulseNodeDescriptions::FindClass( const char *pName ) const
{
	return pName && *pName ? m_pGameData->FindClass( pName ) : nullptr;
}

const PulseGenericShape_t *CPulseNodeDescriptions::FindShape( const char *pName ) const
{
	const CGameDataClass *pClass = FindClass( pName );
	if ( !pClass )
		return nullptr;
	for ( const std::unique_ptr<PulseGenericShape_t> &pShape : m_Shapes )
	{
		if ( pShape->m_ClassName == pClass->m_Name )
			return pShape.get();
	}
	auto pShape = std::make_unique<PulseGenericShape_t>();
	const KeyValues3 &meta = pClass->m_MetaData;
	pShape->m_ClassName = pClass->m_Name;
	pShape->m_FriendlyName = pClass->m_FriendlyName.IsEmpty() ? pClass->m_Name : pClass->m_FriendlyName;
	pShape->m_Description = pClass->m_Description;
	ReadFlows( meta.FindMember( "pulse_inflows" ), true, &pShape->m_Inflows );
	ReadFlows( meta.FindMember( "pulse_outflows" ), false, &pShape->m_Outflows );
	ReadParams( meta.FindMember( "pulse_inparams" ), true, &pShape->m_Inparams, &pShape->m_Problems );
	ReadParams( meta.FindMember( "pulse_outparams" ), false, &pShape->m_Outparams, &pShape->m_Problems );
	pShape->m_bGlobalEvent = meta.GetMemberBool( "is_pulse_global_event" );
	pShape->m_bHook = meta.GetMemberBool( "is_pulse_hook" );
	pShape->m_bSpontaneous = meta.GetMemberBool( "is_spontaneous" ) || pShape->m_bGlobalEvent || pShape->m_bHook;
	pShape->m_bLibraryMethod = meta.GetMemberBool( "is_pulse_library_method" ) || meta.GetMemberBool( "is_pulse_target_method" );
	pShape->m_bStateCell = meta.GetMemberBool( "is_state_cell" );
	// An entry goes on through its exit; a function call comes in and goes on by default.
	if ( pShape->m_Outflows.empty() && ( pShape->m_bSpontaneous || pShape->m_bLibraryMethod ) )
	{
		PulseGenericShape_t::Flow_t &flow = pShape->m_Outflows.emplace_back();
		flow.m_Name.Set( "OutDefault" );
		flow.m_FriendlyName.Set( "Out Default" );
		flow.m_bDefault = true;
	}
	if ( pShape->m_Inflows.empty() && pShape->m_bLibraryMethod )
	{
		PulseGenericShape_t::Flow_t &flow = pShape->m_Inflows.emplace_back();
		flow.m_Name.Set( "InDefault" );
		flow.m_FriendlyName.Set( "In Default" );
		flow.m_bDefault = true;
	}
	m_Shapes.push_back( std::move( pShape ) );
	return m_Shapes.back().get();
}

void CPulseNodeDescriptions::GatherClassesWith( const char *pFlag, std::vector<CUtlString> *pNames ) const
{
	for ( int i = 0; i < m_pGameData->GetClassCount(); ++i )
	{
		const CGameDataClass *pClass = m_pGameData->GetClass( i );
		if ( pClass->m_MetaData.GetMemberBool( pFlag ) )
			pNames->push_back( pClass->m_Name );
	}
}
