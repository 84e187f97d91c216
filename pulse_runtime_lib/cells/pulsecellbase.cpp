#include "pulse_runtime_lib/cells/pulsecellbase.h"

#include <typeinfo>

#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystem.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/graph/pulsegraphdefio.h"

const CSchemaClassInfo *CPulseCell_Base::GetSchemaClass() const
{
	PulseRuntime_RegisterClasses();
	return SchemaSystem()->FindClassByTypeInfo( typeid( *this ) );
}

const char *CPulseCell_Base::GetClassName() const
{
	const CSchemaClassInfo *pClass = GetSchemaClass();
	return pClass ? pClass->GetName() : "CPulseCell_Base";
}

void CPulseCell_Base::OnCancelRequested( CPulseExecCursor *pCursor, PulseCursorCancelPriority_t ) const
{
	pCursor->CompleteYield( PulseCursorExecResult_t::Canceled, nullptr, nullptr );
}

void CPulseCell_Base::OnWake( CPulseExecCursor *pCursor ) const
{
	pCursor->CompleteYield( PulseCursorExecResult_t::Succeeded, GetResumePoint(), nullptr );
}

std::unique_ptr<CPulseCell_Base> CPulseCell_Base::KV3CreateForUnknownClass( const char *pszClassName, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext )
{
	auto pUnknown = std::make_unique<CPulseCell_Unknown>();
	if ( pTable )
	{
		pUnknown->m_UnknownKeys.CopyFrom( *pTable );
		pUnknown->m_nEditorNodeID = pTable->GetMemberInt( "m_nEditorNodeID", -1 );
	}
	if ( auto *pGraphContext = dynamic_cast<CPulseGraphLoadContext *>( pContext ) )
		pGraphContext->AddWarning( "Missing cell class '%s', replacing with 'CPulseCell_Unknown'\n", pszClassName );
	return pUnknown;
}

void CPulseCell_Unknown::AppendDescription( CUtlString *pText ) const
{
	pText->AppendFormat( "was '%s'", m_UnknownKeys.GetMemberString( "_class", "?" ) );
}
