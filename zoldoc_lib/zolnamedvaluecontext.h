#pragma once
// The variable context of one session's nodes, and the enumeration of the variables of
// its family that pickers and the add variable dialog list.

#include "zoldoc_lib/izolnodevariablecontext.h"
#include "zoldoc_lib/zolnamedvaluecache.h"

class CZolControlPointState;

class CZolNamedValueContext : public IZolNodeVariableContext
{
public:
	// pState (optional) knows the preview's entity models for attachment names.
	CZolNamedValueContext( IZolDocumentSource *pSource, const CZolControlPointState *pState ) : m_Cache( pSource ), m_pState( pState ) {}
	// A context of the window follows the session shown; the cache starts empty.
	void SetSource( IZolDocumentSource *pSource, const CZolControlPointState *pState )
	{
		m_Cache.SetSource( pSource );
		m_pState = pState;
	}
	IZolDocumentSource *GetSource() const { return m_Cache.GetSource(); }

	// IZolNodeVariableContext
	void GetDomainValues( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override;
	void GetAttachmentNames( const char *pEntity, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override;
	void GetConfigurationNames( CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override;
	void GetSharedVariables( const char *pName, CUtlVector<ZolNamedValueRecord_t> *pRecords ) override;

	// The variables of the family, sorted by name (ignoring case), then file.
	void GetAllNamedValueInfo( CUtlVector<ZolNamedValueRecord_t> *pRecords );
	void GetDependencyAssets( CUtlVector<IAsset *> *pAssets ) { m_Cache.GetDependencyAssets( pAssets ); }
	// The variables of the current file that fit a type, by name.
	void GetCompatibleVariables( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices );
	// After a change of the documents: the next query reads the family anew.
	void ClearNamedValueCache() { m_Cache.Clear(); }
	CZolNamedValueCache &GetCache() { return m_Cache; }

private:
	CZolNamedValueCache m_Cache;
	const CZolControlPointState *m_pState;
};
