#pragma once
// A stand-in for the property panel around one input editor: it holds the attribute's KV3
// value, hands it to the editor, and keeps what the editor writes with the modify type of
// each write, so a test sees how many writes and undo steps an edit makes.

#include <memory>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "tests/support/userinput.h"
#include "tests/zoltool/testqapplication.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

class CTestInputEditorHost : public IPropertyEditorHost
{
public:
	KeyValues3 m_Value;
	// The modify type of each write, in order.
	std::vector<PropEdModifyType_t> m_Writes;

	template <typename T> void SetValue( const T &object )
	{
		CUtlString error;
		SaveKV3Object( object, &m_Value, &error );
	}
	template <typename T> T GetValue() const
	{
		T object;
		CUtlString error;
		LoadKV3ObjectInPlace( &object, &m_Value, &error );
		return object;
	}
	int GetWriteCount() const { return int( m_Writes.size() ); }
	// Undo steps the writes make: a one-shot write is one, a begin..end run is one.
	int GetUndoSteps() const
	{
		int nSteps = 0;
		for ( PropEdModifyType_t eType : m_Writes )
			nSteps += eType == PROPED_MODIFY_ONE_SHOT || eType == PROPED_MODIFY_BEGIN;
		return nSteps;
	}

	void Apply( CPropertyEditorEditSlots *pSlots, PropEdModifyType_t eModifyType ) override
	{
		auto *pEditor = dynamic_cast<CQAttributeEditor_Base *>( pSlots );
		if ( !pEditor || !pEditor->IsModified() )
			return;
		pEditor->ClearModified();
		m_Writes.push_back( eModifyType );
		pEditor->WriteToAttribute();
	}
	IPropertyEditDomain *GetDomain() const override { return nullptr; }
	void ReadCommonValueText( const CUtlVector<PropEdSpecificAttr_t> &, const ZolPropertyRowInfo &, CUtlString *pOut, bool, bool *pDiffer ) override
	{
		pOut->Set( "" );
		*pDiffer = false;
	}
	bool ReadCommonKV3( const CUtlVector<PropEdSpecificAttr_t> &, KeyValues3 *pOut, bool *pDiffer ) override
	{
		*pOut = m_Value;
		*pDiffer = false;
		return true;
	}
	void WriteValueText( const CUtlVector<PropEdSpecificAttr_t> &, const char * ) override {}
	void WriteKV3( const CUtlVector<PropEdSpecificAttr_t> &, const KeyValues3 &value ) override { m_Value = value; }
	void RegisterHelp( const char *, const char *, const char *, const char *, const char * ) override {}
	bool LookupHelpText( const char *, const char *, const char *, CUtlString *, int ) override { return false; }
};

// An editor made as the panel makes it: initialised for nTargets targets, then read.
template <typename E> std::unique_ptr<E> MakeInputEditor( CTestInputEditorHost *pHost, int nTargets = 1 )
{
	EnsureTestQApplication();
	auto pEditor = std::make_unique<E>();
	PropertyEditorInit_t init;
	init.m_pHost = pHost;
	for ( int i = 0; i < nTargets; ++i )
		init.m_Targets.AddToTail( PropEdSpecificAttr_t{} );
	pEditor->Initialize( init );
	pEditor->ReadFromAttribute();
	pEditor->resize( 420, pEditor->height() );
	pEditor->show();
	return pEditor;
}
