#include "pulsedoc_lib/model/pulseports.h"

#include <cstring>

#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocconnections.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"

namespace
{
struct ValueSourceText_t
{
	const char *m_pKey;
	const char *m_pLabel;
};
constexpr ValueSourceText_t s_ValueSources[ PULSE_VALUE_SOURCE_COUNT ] = {
	{ "literal", "Literal Value" },
	{ "var", "Variable Reference" },
	{ "domain_value", "Domain-Specific Value" },
	{ "port", "External Port" },
	{ "blackboard_ref", "Blackboard Variable Reference" },
	{ "mirrored_ancestor_inparam", "[INTERNAL] Mirrored Ancestor InParam" },
};
const char *const s_VisibilityNames[] = { "UNSPECIFIED", "SHOW", "HIDE" };
} // namespace

const char *PulseValueSource_GetKey( PulseValueSource_t eSource )
{
	return eSource >= 0 && eSource < PULSE_VALUE_SOURCE_COUNT ? s_ValueSources[ eSource ].m_pKey : "";
}

const char *PulseValueSource_GetLabel( PulseValueSource_t eSource )
{
	return eSource >= 0 && eSource < PULSE_VALUE_SOURCE_COUNT ? s_ValueSources[ eSource ].m_pLabel : "";
}

// Every port.

CBasePulsePort::CBasePulsePort( CPulseDocNode *pOwner, const char *pName, const char *pFriendlyName, const char *pDescription )
	: m_pOwner( pOwner ), m_Name( pName ), m_FriendlyName( pFriendlyName ? pFriendlyName : "" ), m_Description( pDescription ? pDescription : "" )
{
	m_Metadata.SetToEmptyTable();
}

bool CBasePulsePort::IsVisible() const
{
	if ( m_eUserVisibility == PULSE_PORT_VISIBILITY_UNSPECIFIED )
		return m_bDefaultVisible;
	return m_eUserVisibility == PULSE_PORT_VISIBILITY_SHOW;
}

void CBasePulsePort::ToggleVisibility()
{
	switch ( m_eUserVisibility )
	{
	case PULSE_PORT_VISIBILITY_SHOW: m_eUserVisibility = PULSE_PORT_VISIBILITY_HIDE; break;
	case PULSE_PORT_VISIBILITY_HIDE: m_eUserVisibility = PULSE_PORT_VISIBILITY_SHOW; break;
	default: m_eUserVisibility = m_bDefaultVisible ? PULSE_PORT_VISIBILITY_HIDE : PULSE_PORT_VISIBILITY_SHOW; break;
	}
}

void CBasePulsePort::SaveKV3( KeyValues3 *pTable ) const
{
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	if ( m_eUserVisibility != PULSE_PORT_VISIBILITY_UNSPECIFIED )
		pTable->SetMemberString( "m_nUserVisibility", s_VisibilityNames[ m_eUserVisibility ] );
}

void CBasePulsePort::LoadKV3( const KeyValues3 *pValue, CPulseDocLoadContext *pContext )
{
	m_eUserVisibility = PULSE_PORT_VISIBILITY_UNSPECIFIED;
	if ( !pValue || !pValue->IsTable() )
		return;
	CPulseDocKeyReader reader( *pValue, m_pOwner, pContext, m_Name.Get() );
	int nVisibility = 0;
	reader.TakeEnum( "m_nUserVisibility", s_VisibilityNames, 3, &nVisibility );
	m_eUserVisibility = PulsePortUserVisibility_t( nVisibility );
}

// Value inputs.

CBasePulseInparamPort::CBasePulseInparamPort( CPulseDocNode *pOwner, const char *pName, const CPulseValueFullType &type, const char *pKey, const char *pFriendlyName,
											  const char *pDescription )
	: CBasePulsePort( pOwner, pName, pFriendlyName, pDescription ), m_Key( pKey ? pKey : pName ), m_Type( type )
{
}

CPulseValueFullType CBasePulseInparamPort::GetTypeOfKind( TypeKind_t eKind ) const
{
	if ( eKind != TYPE_DECLARED && m_UserRefinedType.IsValid() )
		return m_UserRefinedType;
	return m_Type;
}

void CBasePulseInparamPort::SetLiteral( const KeyValues3 &value )
{
	m_eSource = PULSE_VALUE_SOURCE_LITERAL;
	m_LiteralValue.CopyFrom( value );
}

void CBasePulseInparamPort::SetVarReference( PulseDocNodeID_t nID )
{
	m_eSource = PULSE_VALUE_SOURCE_VAR;
	m_nVarOrConstID = nID;
}

void CBasePulseInparamPort::SetMirroredAncestor( PulseDocNodeID_t nNodeID, const char *pName )
{
	m_eSource = PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM;
	m_nMirroredAncestorNodeID = nNodeID;
	m_MirroredAncestorInparamName.Set( pName );
}

void CBasePulseInparamPort::SetInternalSource( CPulseDocNode *pValueNode, CBasePulseOutparamPort *pOutparam )
{
	m_eSource = PULSE_VALUE_SOURCE_PORT;
	m_pInternalSource = pValueNode;
	m_pInternalOutparam = pOutparam;
}

void CBasePulseInparamPort::SetMirroredPort( const CBasePulseInparamPort *pPort )
{
	m_eSource = PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM;
	m_pMirroredPort = pPort;
	m_MirroredAncestorInparamName.Set( pPort->GetName() );
}

void CBasePulseInparamPort::CopySourceFrom( const CBasePulseInparamPort &other )
{
	m_eSource = other.m_eSource;
	m_LiteralValue.CopyFrom( other.m_LiteralValue );
	if ( other.m_eSource == PULSE_VALUE_SOURCE_LITERAL && other.m_Type.IsValid() && other.m_Type.GetBaseType() != PVAL_UNKNOWN && m_Type.GetBaseType() == PVAL_UNKNOWN )
		m_Type = other.m_Type;
	m_nVarOrConstID = other.m_nVarOrConstID;
	m_nMirroredAncestorNodeID = other.m_nMirroredAncestorNodeID;
	m_MirroredAncestorInparamName = other.m_MirroredAncestorInparamName;
	m_pInternalSource = other.m_pInternalSource;
	m_pInternalOutparam = other.m_pInternalOutparam;
	m_pMirroredPort = other.m_pMirroredPort;
	m_bStored = true;
}

void CBasePulseInparamPort::SetDefaultValue( const KeyValues3 &value )
{
	if ( !m_bStored )
		m_LiteralValue.CopyFrom( value );
}

bool CBasePulseInparamPort::CanChangeValueSource() const
{
	return !m_Metadata.GetMemberBool( "port_restrict_to_literal" );
}

const CPulseDoc_Connection_Inparam *CBasePulseInparamPort::FindConnection() const
{
	if ( !m_pOwner )
		return nullptr;
	for ( const std::unique_ptr<CPulseDocNode> &pChild : m_pOwner->GetChildren() )
	{
		auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Inparam *>( pChild.get() );
		if ( pConnection && pConnection->m_ThisInparamName == m_Name )
			return pConnection;
	}
	return nullptr;
}

void CBasePulseInparamPort::Validate( CPulseDocMessages *pMessages ) const
{
	if ( m_eSource == PULSE_VALUE_SOURCE_PORT && !m_pInternalSource && !FindConnection() )
		pMessages->Error( m_pOwner, "Value port '%s' not connected", m_Name.Get() );
	if ( m_eSource == PULSE_VALUE_SOURCE_VAR && m_pOwner->GetDoc() && !m_pOwner->GetDoc()->FindValueDefinition( m_nVarOrConstID ) )
		pMessages->Error( m_pOwner, "Invalid variable reference (%d) for port '%s'", m_nVarOrConstID, m_Name.Get() );
}

void CBasePulseInparamPort::SaveKV3( KeyValues3 *pTable ) const
{
	pTable->SetToEmptyTable();
	if ( m_eSource != PULSE_VALUE_SOURCE_LITERAL )
		pTable->SetMemberString( "m_ValueSource", PulseValueSource_GetKey( m_eSource ) );
	switch ( m_eSource )
	{
	case PULSE_VALUE_SOURCE_VAR: pTable->SetMemberInt( "m_nVarOrConstID", m_nVarOrConstID ); break;
	case PULSE_VALUE_SOURCE_LITERAL:
	case PULSE_VALUE_SOURCE_DOMAIN_VALUE:
		if ( m_UserRefinedType.IsValid() )
			pTable->SetMemberString( "m_UserRefinedType", m_UserRefinedType.ToString().Get() );
		else if ( m_Type.IsValid() && m_Type.GetBaseType() != PVAL_UNKNOWN )
			pTable->SetMemberString( "m_LiteralValueTypeWhenSaved", m_Type.ToString().Get() );
		if ( m_bLiteralStringSingleQuotedForDisplay )
			pTable->SetMemberBool( "m_bLiteralStringSingleQuotedForDisplay", true );
		if ( !m_LiteralValue.IsNull() )
			pTable->FindOrCreateMember( "m_LiteralValue" )->CopyFrom( m_LiteralValue );
		break;
	case PULSE_VALUE_SOURCE_BLACKBOARD_REF: pTable->FindOrCreateMember( "m_BlackboardReference" )->CopyFrom( m_BlackboardReference ); break;
	case PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM:
		pTable->SetMemberInt( "m_MirroredAncestorNodeID", m_nMirroredAncestorNodeID );
		pTable->SetMemberString( "m_MirroredAncestorInparamName", m_MirroredAncestorInparamName.Get() );
		break;
	default: break;
	}
	CBasePulsePort::SaveKV3( pTable );
}

void CBasePulseInparamPort::LoadKV3( const KeyValues3 *pValue, CPulseDocLoadContext *pContext )
{
	m_eSource = PULSE_VALUE_SOURCE_LITERAL;
	m_UserRefinedType.Clear();
	m_bLiteralStringSingleQuotedForDisplay = false;
	m_nVarOrConstID = -1;
	m_BlackboardReference.SetToNull();
	m_nMirroredAncestorNodeID = -1;
	m_MirroredAncestorInparamName.Clear();
	m_bStored = pValue != nullptr;
	CBasePulsePort::LoadKV3( pValue, pContext );
	if ( !pValue )
	{
		// An input the file says nothing about reads its connection when it has one.
		if ( FindConnection() )
			m_eSource = PULSE_VALUE_SOURCE_PORT;
		return;
	}
	if ( !pValue->IsTable() )
	{
		// The literal in short: "pText = "hello"".
		m_LiteralValue.CopyFrom( *pValue );
		return;
	}
	m_LiteralValue.SetToNull();
	CPulseDocKeyReader reader( *pValue, m_pOwner, pContext, m_Name.Get() );
	reader.Take( "m_nUserVisibility" );
	const char *pSourceKeys[ PULSE_VALUE_SOURCE_COUNT ];
	for ( int i = 0; i < PULSE_VALUE_SOURCE_COUNT; ++i )
		pSourceKeys[ i ] = s_ValueSources[ i ].m_pKey;
	int nSource = PULSE_VALUE_SOURCE_LITERAL;
	reader.TakeEnum( "m_ValueSource", pSourceKeys, PULSE_VALUE_SOURCE_COUNT, &nSource );
	m_eSource = PulseValueSource_t( nSource );
	reader.TakeInt( "m_nVarOrConstID", &m_nVarOrConstID );
	// Written for the reader's sake; the port knows its own type.
	reader.Take( "m_LiteralValueTypeWhenSaved" );
	reader.TakeFullType( "m_UserRefinedType", &m_UserRefinedType );
	reader.TakeBool( "m_bLiteralStringSingleQuotedForDisplay", &m_bLiteralStringSingleQuotedForDisplay );
	if ( const KeyValues3 *pLiteral = reader.Take( "m_LiteralValue" ) )
		m_LiteralValue.CopyFrom( *pLiteral );
	// An old file keeps a domain value in a table of its own; its value wins.
	if ( const KeyValues3 *pDomainValue = reader.TakeTable( "m_DomainValue" ) )
	{
		const KeyValues3 *pValueOfDomain = pDomainValue->FindMember( "m_Value" );
		if ( m_eSource == PULSE_VALUE_SOURCE_DOMAIN_VALUE && pValueOfDomain && pValueOfDomain->IsString() && *pValueOfDomain->GetString() )
			m_LiteralValue.SetString( pValueOfDomain->GetString() );
	}
	if ( const KeyValues3 *pBlackboard = reader.Take( "m_BlackboardReference" ) )
		m_BlackboardReference.CopyFrom( *pBlackboard );
	reader.TakeInt( "m_MirroredAncestorNodeID", &m_nMirroredAncestorNodeID );
	reader.TakeString( "m_MirroredAncestorInparamName", &m_MirroredAncestorInparamName );
	KeyValues3 rest;
	reader.KeepRest( &rest );
	for ( int i = 0; rest.IsTable() && i < rest.GetMemberCount(); ++i )
		reader.Warn( "unknown key '%s' (dropped)", rest.GetMemberName( i ) );
}

// Value outputs.

CBasePulseOutparamPort::CBasePulseOutparamPort( CPulseDocNode *pOwner, const char *pName, const CPulseValueFullType &type, const char *pFriendlyName,
												const char *pDescription )
	: CBasePulsePort( pOwner, pName, pFriendlyName, pDescription ), m_Type( type )
{
}

// Flow inputs.

CPulseInflowPort::CPulseInflowPort( CPulseDocNode *pOwner, const char *pName, const char *pFriendlyName, bool bDefault, const CPulseSequencePoint *pPrimary,
									PulseInflowMode_t eMode )
	: CBasePulsePort( pOwner, pName, pFriendlyName ), m_Point( "InflowPort", pOwner, this ), m_bDefault( bDefault ), m_eMode( eMode )
{
	switch ( eMode )
	{
	case PULSE_INFLOW_SIMPLE:
		m_Point.SetPropertiesFn( [ pPrimary ]( PulseSequencePointProperties_t *pProperties ) { pProperties->AddNext( pPrimary ); } );
		m_Point.SetNoOpCompilePoint();
		break;
	case PULSE_INFLOW_YIELDS:
		m_Point.SetPropertiesFn( []( PulseSequencePointProperties_t *pProperties ) {
			pProperties->m_bNoFallThrough = true;
			pProperties->m_bYields = true;
		} );
		break;
	case PULSE_INFLOW_TERMINATES: m_Point.SetPropertiesFn( []( PulseSequencePointProperties_t * ) {} ); break;
	}
}

// Flow outputs.

CPulseOutflowPort::CPulseOutflowPort( CPulseDoc_BaseFlow *pOwner, const char *pName, const char *pFriendlyName, bool bDefault, bool bBackedByVariable )
	: CBasePulsePort( pOwner, pName, pFriendlyName ), m_Point( "OutflowPort", pOwner, this ), m_pFlowOwner( pOwner ), m_bDefault( bDefault ),
	  m_bBackedByVariable( bBackedByVariable )
{
}

namespace
{
const CPulseSequencePoint *ResolveFrom( const CPulseOutflowPort &port, const CPulseDocNode **ppTargetNode, int nDepth )
{
	const CPulseDoc_BaseFlow *pOwner = port.GetFlowOwner();
	// A default exit goes on at the next flow node under the same flow parent.
	if ( port.IsDefault() )
	{
		if ( const CPulseDoc_BaseFlow *pSibling = PulseDoc_NextFlowSibling( pOwner ) )
		{
			if ( ppTargetNode )
				*ppTargetNode = pSibling;
			return pSibling->GetDefaultInflowPoint();
		}
	}
	for ( const std::unique_ptr<CPulseDocNode> &pChild : pOwner->GetChildren() )
	{
		auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Outflow *>( pChild.get() );
		if ( !pConnection || pConnection->FindSourceOutflow() != &port )
			continue;
		auto *pDest = dynamic_cast<const CPulseDoc_BaseFlow *>( pConnection->FindDestNode() );
		const CPulseInflowPort *pInflow = pConnection->FindDestInflow();
		if ( !pDest || !pInflow )
			return nullptr;
		if ( ppTargetNode )
			*ppTargetNode = pDest;
		return pDest->GetInflowEntry( pInflow );
	}
	// The last of a group's children goes on where the group does.
	if ( port.IsDefault() && nDepth < PULSE_DOC_MAX_NODE_DEPTH )
	{
		if ( auto *pParent = dynamic_cast<const CPulseDoc_BaseFlow *>( pOwner->GetParent() ) )
		{
			if ( const CPulseOutflowPort *pExit = pParent->GetChildSequenceExit() )
				return ResolveFrom( *pExit, ppTargetNode, nDepth + 1 );
		}
	}
	return nullptr;
}
} // namespace

const CPulseSequencePoint *CPulseOutflowPort::ResolveTarget( const CPulseDocNode **ppTargetNode ) const
{
	if ( ppTargetNode )
		*ppTargetNode = nullptr;
	return ResolveFrom( *this, ppTargetNode, 0 );
}

void CPulseOutflowPort::Validate( CPulseDocMessages *pMessages ) const
{
	CUtlString owner = m_pOwner->DescribeForErrors();
	for ( const std::unique_ptr<CPulseDocNode> &pChild : m_pOwner->GetChildren() )
	{
		auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Outflow *>( pChild.get() );
		if ( !pConnection || pConnection->FindSourceOutflow() != this )
			continue;
		auto *pDest = dynamic_cast<const CPulseDoc_BaseFlow *>( pConnection->FindDestNode() );
		const CPulseInflowPort *pInflow = pConnection->FindDestInflow();
		// A target that isn't there is the connection's to report.
		if ( pDest && pInflow && !pDest->GetInflowEntry( pInflow ) )
			pMessages->Error( m_pOwner, "Node Outflow %s (\"%s\") connection to Node #%d inflow '%s' not allowed (not accessible)", owner.Get(), m_Name.Get(),
							  pConnection->m_nDestFlowNodeID, pInflow->GetName() );
	}
}
