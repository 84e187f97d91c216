// An input's value into a register, by its value source.

#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocconnections.h"
#include "pulsedoc_lib/model/pulseports.h"

namespace
{
// Mirrored inputs name other inputs; a circle of them must end somewhere.
constexpr int MAX_MIRROR_DEPTH = 16;
thread_local int t_nMirrorDepth = 0;
} // namespace

uint16_t CBasePulseInparamPort::CompileToRegister( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	const CPulseValueFullType type = GetType();
	PulseValueSource_t eSource = m_eSource;
	uint16_t nRegister = PULSE_INVALID_REGISTER;
	switch ( eSource )
	{
	case PULSE_VALUE_SOURCE_PORT:
	{
		if ( m_pInternalSource )
		{
			nRegister = pChunk->ReadOutput( pPoint, m_pInternalSource, m_pInternalOutparam, m_pOwner, GetName() );
			break;
		}
		const CPulseDoc_Connection_Inparam *pConnection = FindConnection();
		if ( !pConnection )
		{
			pContext->ReportError( m_pOwner, "Value port '%s' not connected", GetName() );
			return PULSE_INVALID_REGISTER;
		}
		CPulseDocNode *pSource = pConnection->FindSourceNode();
		CBasePulseOutparamPort *pOutparam = pConnection->FindSourceOutparam();
		if ( !pSource || !pOutparam )
		{
			pContext->ReportError( m_pOwner, "Value port '%s' reads '%s' of node %d, which has no such output", GetName(), pConnection->m_SourceOutparamName.Get(),
								   pConnection->m_nSourceNode );
			return PULSE_INVALID_REGISTER;
		}
		nRegister = pChunk->ReadOutput( pPoint, pSource, pOutparam, m_pOwner, GetName() );
		break;
	}
	case PULSE_VALUE_SOURCE_VAR:
	{
		const CPulseDoc_BaseValueDefinition *pDefinition = pContext->GetDoc()->FindValueDefinition( m_nVarOrConstID );
		if ( !pDefinition )
		{
			pContext->ReportError( m_pOwner, "Invalid variable reference (%d) for port '%s'", m_nVarOrConstID, GetName() );
			return PULSE_INVALID_REGISTER;
		}
		nRegister = pChunk->EmitValueDefinitionRead( pPoint, pDefinition, m_pOwner );
		break;
	}
	case PULSE_VALUE_SOURCE_LITERAL:
		if ( !type.IsValid() )
		{
			pContext->ReportError( m_pOwner, "Value port '%s' has invalid type", GetName() );
			return PULSE_INVALID_REGISTER;
		}
		return pChunk->EmitLiteral( pPoint, m_pOwner, GetName(), type, m_LiteralValue );
	case PULSE_VALUE_SOURCE_DOMAIN_VALUE:
		// A plain value of a domain port compiles as a literal; names of the level's
		// entities and panels need a domain this build doesn't have.
		if ( !type.IsValid() )
		{
			pContext->ReportError( m_pOwner, "Domain value port '%s' has invalid type", GetName() );
			return PULSE_INVALID_REGISTER;
		}
		return pChunk->EmitLiteral( pPoint, m_pOwner, GetName(), type, m_LiteralValue );
	case PULSE_VALUE_SOURCE_BLACKBOARD_REF:
		pContext->ReportError( m_pOwner, "Value port '%s' reads a blackboard; blackboards of other graphs are not compiled by this build", GetName() );
		return PULSE_INVALID_REGISTER;
	case PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM:
	{
		const CBasePulseInparamPort *pMirrored = m_pMirroredPort;
		if ( !pMirrored )
		{
			CPulseDocNode *pAncestor = pContext->GetDoc()->FindNode( m_nMirroredAncestorNodeID );
			pMirrored = pAncestor ? pAncestor->FindInparam( m_MirroredAncestorInparamName.Get() ) : nullptr;
		}
		if ( !pMirrored || pMirrored == this )
		{
			pContext->ReportError( m_pOwner, "Mirrored inpararm '%s' not found on ancestor %d", m_MirroredAncestorInparamName.Get(), m_nMirroredAncestorNodeID );
			return PULSE_INVALID_REGISTER;
		}
		if ( t_nMirrorDepth >= MAX_MIRROR_DEPTH )
		{
			pContext->ReportError( m_pOwner, "Mirrored inparam '%s' mirrors itself through other inputs", GetName() );
			return PULSE_INVALID_REGISTER;
		}
		++t_nMirrorDepth;
		nRegister = pMirrored->CompileToRegister( pPoint, pChunk );
		--t_nMirrorDepth;
		break;
	}
	default: pContext->ReportError( m_pOwner, "Value port '%s' has no value source", GetName() ); return PULSE_INVALID_REGISTER;
	}
	if ( nRegister == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	return pChunk->CastRegister( nRegister, pPoint, type, m_pOwner );
}
