#include "pulsedoc_lib/compiler/pulsesequencepoint.h"

#include "pulsedoc_lib/model/pulsedocnode.h"
#include "pulsedoc_lib/model/pulseports.h"

void CPulseSequencePoint::ChainAdditionalPointPropertiesFn( PropertiesFn_t fn )
{
	PropertiesFn_t fnOld = std::move( m_fnProperties );
	m_fnProperties = [ fnOld = std::move( fnOld ), fn = std::move( fn ) ]( PulseSequencePointProperties_t *pProperties ) {
		if ( fnOld )
			fnOld( pProperties );
		fn( pProperties );
	};
}

void CPulseSequencePoint::SetNoOpCompilePoint()
{
	m_fnCompile = []( const CPulseSequencePoint *, CCompiledChunk * ) {};
}

void CPulseSequencePoint::GetProperties( PulseSequencePointProperties_t *pProperties ) const
{
	*pProperties = PulseSequencePointProperties_t();
	if ( m_fnProperties )
		m_fnProperties( pProperties );
}

void CPulseSequencePoint::Compile( CCompiledChunk *pChunk ) const
{
	if ( m_fnCompile )
		m_fnCompile( this, pChunk );
}

const char *CPulseSequencePoint::GetPortNameForLogs() const
{
	return m_pPort ? m_pPort->GetName() : "No Port";
}

CUtlString CPulseSequencePoint::Describe() const
{
	CUtlString port, node;
	if ( m_pPort )
	{
		CUtlString owner;
		m_pPort->GetOwner()->DescribeForErrors( &owner );
		port.Format( " @ ('%s': Node %s Port %s)", m_pPort->GetName(), owner.Get(), m_pPort->GetName() );
	}
	if ( m_pOwner )
		node.Format( " - %s '%s'", m_pOwner->GetNodeTypeInfo().m_pTypeName, m_pOwner->GetNodeTypeInfo().m_pFriendlyName );
	CUtlString text;
	text.Format( "SeqPoint{%p} %s%s%s", static_cast<const void *>( this ), m_pName, port.Get(), node.Get() );
	return text;
}
