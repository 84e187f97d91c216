#include "tools/toolutils2/errors/errormessagelist.h"

void CErrorMessageList::OnErrorMessage( int nSeverity, const char *pText, const IBaseErrorContext *pContext )
{
	ErrorMessage_t &message = m_Messages.emplace_back();
	message.m_Text = pText ? pText : "";
	message.m_nSeverity = nSeverity;
	if ( pContext )
	{
		message.m_ContextName = pContext->GetName();
		pContext->GetValueText( &message.m_ContextValue );
		message.m_pContext.reset( pContext->Clone() );
	}
	if ( nSeverity == ERROR_SEVERITY_ERROR )
		++m_nErrors;
	else if ( nSeverity == ERROR_SEVERITY_WARNING )
		++m_nWarnings;
	else
		++m_nOthers;
	if ( m_pNext )
		m_pNext->OnErrorMessage( nSeverity, pText, pContext );
}

void CErrorMessageList::Report( int nSeverity, const IBaseErrorContext *pContext, const char *pFormat, ... )
{
	CUtlString text;
	va_list args;
	va_start( args, pFormat );
	text.FormatV( pFormat, args );
	va_end( args );
	OnErrorMessage( nSeverity, text.Get(), pContext );
}

void CErrorMessageList::Clear()
{
	m_Messages.clear();
	m_nErrors = m_nWarnings = m_nOthers = 0;
}
