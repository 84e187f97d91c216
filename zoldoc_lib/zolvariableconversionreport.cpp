#include "zoldoc_lib/zolvariableconversionreport.h"

#include "core/host/iasset.h"
#include "core/text/pathtools.h"
#include "zoldoc_lib/izoldocumentprovider.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolnodelink.h"
#include "zoldoc_lib/zolvariableconversion.h"

namespace
{
CUtlString EscapeHtml( const char *pText )
{
	CUtlString out;
	for ( const char *p = pText ? pText : ""; *p; ++p )
	{
		switch ( *p )
		{
		case '&': out.Append( "&amp;" ); break;
		case '<': out.Append( "&lt;" ); break;
		case '>': out.Append( "&gt;" ); break;
		case '\'': out.Append( "&#39;" ); break;
		case '"': out.Append( "&quot;" ); break;
		default: out.Append( *p );
		}
	}
	return out;
}

const ZolNodeLink_t *FindLink( const ErrorMessage_t &message )
{
	const auto *pContext = dynamic_cast<const CZolNodeLinkContext *>( message.m_pContext.get() );
	return pContext ? &pContext->GetValue() : nullptr;
}

// The node of a link in the plan's working copy of its document.
const CBaseZolNode *FindWorkingNode( const CZolVariableConversionPlan &plan, const ZolNodeLink_t &link )
{
	const ZolConversionDocument_t *pRecord = plan.FindDocument( link.m_pAsset );
	if ( !pRecord || !pRecord->m_pWorkingCopy || !link.HasNode() )
		return nullptr;
	return pRecord->m_pWorkingCopy->ResolveElementRef( { link.m_nType, link.m_nIndex } );
}

// "campfire:Position Along Ring", "campfire", or "unknown".
CUtlString LinkName( const CZolVariableConversionPlan &plan, const ZolNodeLink_t *pLink )
{
	if ( !pLink || !pLink->m_pAsset )
		return CUtlString( "unknown" );
	char szShort[ 260 ];
	V_FileBase( pLink->m_pAsset->GetResourceName(), szShort, sizeof( szShort ) );
	CUtlString name( szShort );
	if ( const CBaseZolNode *pNode = FindWorkingNode( plan, *pLink ) )
	{
		name.Append( ":" );
		name.Append( CZolDoc::GetFriendlyName( pNode ) );
	}
	return name;
}

void AppendMessagesHtml( const CZolVariableConversionPlan &plan, const CErrorMessageList &messages, CUtlString *pHtml )
{
	if ( messages.GetMessages().empty() )
	{
		pHtml->Append( "(no messages)" );
		return;
	}
	for ( const ErrorMessage_t &message : messages.GetMessages() )
	{
		static const char *const s_Openings[] = { "<font color='white'>Info ", "<font color='yellow'>Warning ", "<font color='red'>Error " };
		const bool bKnown = message.m_nSeverity >= 0 && message.m_nSeverity <= 2;
		if ( bKnown )
			pHtml->Append( s_Openings[ message.m_nSeverity ] );
		const ZolNodeLink_t *pLink = FindLink( message );
		CUtlString linkText;
		if ( pLink )
			ErrorContextValueText( *pLink, &linkText );
		const CUtlString escapedLink = EscapeHtml( linkText.Get() );
		pHtml->AppendFormat( "<a href='#%s' title='%s'>%s</a>", escapedLink.Get(), escapedLink.Get(), EscapeHtml( LinkName( plan, pLink ).Get() ).Get() );
		if ( bKnown )
			pHtml->Append( "</font>" );
		pHtml->AppendFormat( ": %s<br>", EscapeHtml( message.m_Text.Get() ).Get() );
	}
}
} // namespace

CUtlString BuildZolConversionReportHtml( const CZolVariableConversionPlan &plan )
{
	CUtlString html( "<b>Build Action List:</b> <br>" );
	AppendMessagesHtml( plan, plan.GetBuildMessages(), &html );
	html.Append( "<br><br><b>Dry Run:</b> <br>" );
	AppendMessagesHtml( plan, plan.GetDryRunMessages(), &html );
	if ( plan.IsApplied() )
	{
		html.Append( "<br><br><b>Modify Documents:</b> <br>" );
		AppendMessagesHtml( plan, plan.GetModifyMessages(), &html );
	}
	return html;
}

const char *GetZolConversionStatusText( const CZolVariableConversionPlan &plan, bool *pbError )
{
	if ( plan.GetModifyMessages().GetErrorCount() > 0 )
	{
		*pbError = true;
		return "Errors reported! Check results carefully.";
	}
	*pbError = plan.HasErrorsBeforeApply();
	return *pbError ? "Errors reported, proceed with caution" : "";
}

void AppendZolConversionFindings( const CZolVariableConversionPlan &plan, IZolDocumentProvider *pDocuments, const char *pOtherFile, CZolFileReport *pReport )
{
	const struct
	{
		const char *m_pStage;
		const CErrorMessageList *m_pMessages;
	} stages[] = { { "build", &plan.GetBuildMessages() }, { "dry run", &plan.GetDryRunMessages() }, { "apply", &plan.GetModifyMessages() } };
	for ( const auto &stage : stages )
	{
		for ( const ErrorMessage_t &message : stage.m_pMessages->GetMessages() )
		{
			const ZolNodeLink_t *pLink = FindLink( message );
			const CUtlString file = pLink && pLink->m_pAsset ? pDocuments->GetDisplayName( pLink->m_pAsset ) : CUtlString( pOtherFile );
			CUtlString where;
			if ( const CBaseZolNode *pNode = pLink ? FindWorkingNode( plan, *pLink ) : nullptr )
			{
				where = DescribeParticleFunction( pLink->m_nType, pLink->m_nIndex, pNode->GetClassName() );
				where.Append( ": " );
			}
			const ZolFindingSeverity_t eSeverity = message.m_nSeverity == ERROR_SEVERITY_ERROR ? ZOL_FINDING_ERROR
												   : message.m_nSeverity == ERROR_SEVERITY_WARNING ? ZOL_FINDING_WARNING
																								   : ZOL_FINDING_INFO;
			pReport->Add( file.Get(), eSeverity, "%s: %s%s", stage.m_pStage, where.Get(), message.m_Text.Get() );
		}
	}
}
