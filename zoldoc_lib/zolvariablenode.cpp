#include "zoldoc_lib/zolvariablenode.h"

#include <cstring>

#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/basetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattredit.h"
#include "zoldoc_lib/izolnodevariablecontext.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolnamedvalue.h"
#include "zoldoc_lib/zolnamedvaluecache.h"
#include "zoldoc_lib/zolsharedvariablenote.h"

namespace
{
constexpr const char *NODE_CLASS = "ParticleNamedValueSource_t";

CZolVariableNode *VariableOf( HToolAttrTableInstance handle )
{
	static const uint32_t s_nTag = ToolAttrTypeTag( NODE_CLASS );
	if ( !handle.m_pInstance || handle.m_nTypeTag != s_nTag )
		return nullptr;
	return static_cast<CBaseZolNode *>( handle.m_pInstance )->AsVariableNode();
}

// "Variable Type": the variable's value type, picked from the types a particle variable
// may have. Beside it the property panel shows which related files share the variable.
class CZolVariableTypeAttr final : public CBaseToolAttr, public IToolAttr_TypedValue<CPulseValueFullType>
{
public:
	CZolVariableTypeAttr() : CBaseToolAttr( "m_ValueType", NODE_CLASS, "particles" )
	{
		m_FriendlyName = "Variable Type";
		m_nEditHint = TOOLATTR_EDIT_HINT_CHOICES;
	}

	int GetAttrType() const override { return TOOLATTR_TYPE_STRING; }
	IToolAttr_Value *AsValue() override { return this; }
	bool IsWritable( HToolAttrTableInstance handle ) const override { return VariableOf( handle ) != nullptr; }
	bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const override
	{
		*pHasDefault = true;
		const CZolVariableNode *pNode = VariableOf( handle );
		return !pNode || pNode->GetValueType() == CPulseValueFullType( PVAL_VEC3 );
	}
	bool ResetToDefault( HToolAttrTableInstance handle ) override
	{
		if ( !VariableOf( handle ) )
			return false;
		SetTyped( handle, CPulseValueFullType( PVAL_VEC3 ), 0 );
		return true;
	}
	bool GetIconName( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		ZolSharedVariableNote_t note;
		if ( const CZolVariableNode *pNode = VariableOf( handle ) )
			pNode->GetSharedVariableNote( &note );
		*pOut = note.m_SharedIcon;
		return note.m_bShared;
	}
	void GetDescription( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		ZolSharedVariableNote_t note;
		if ( const CZolVariableNode *pNode = VariableOf( handle ) )
			pNode->GetSharedVariableNote( &note );
		*pOut = note.m_SharedText;
	}
	bool GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		ZolSharedVariableNote_t note;
		if ( const CZolVariableNode *pNode = VariableOf( handle ) )
			pNode->GetSharedVariableNote( &note );
		*pOut = note.m_ConflictText;
		return note.m_bConflict;
	}

	// IToolAttr_TypedValue
	void SetTyped( HToolAttrTableInstance handle, const CPulseValueFullType &type, int nFlags ) override
	{
		CZolVariableNode *pNode = VariableOf( handle );
		if ( !pNode || !type.IsValid() )
			return;
		CToolAttrEditScope edit( handle, this, nFlags );
		pNode->SetValueType( type );
	}
	void GetTyped( HToolAttrTableInstance handle, CPulseValueFullType &out ) const override
	{
		const CZolVariableNode *pNode = VariableOf( handle );
		out = pNode ? pNode->GetValueType() : CPulseValueFullType();
	}
	void GetTypedDefault( HToolAttrTableInstance, CPulseValueFullType &out ) const override { out = CPulseValueFullType( PVAL_VEC3 ); }

	// IToolAttr_Value
	bool SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags ) override
	{
		CZolEditableType type;
		if ( !VariableOf( handle ) || !type.SetText( pszText ) )
			return false;
		SetTyped( handle, type.Get(), nFlags );
		return true;
	}
	void GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		const CZolVariableNode *pNode = VariableOf( handle );
		*pOut = pNode ? pNode->GetValueType().ToString() : CUtlString();
	}
	bool GetChoices( IToolAttrHost *, HToolAttrTableInstance, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override
	{
		CUtlVector<CPulseValueFullType> types;
		GetZolVariableTypes( &types );
		for ( const CPulseValueFullType &type : types )
		{
			ToolAttrGenericChoice_t &choice = ( *pChoices )[ pChoices->AddToTail() ];
			choice.m_Value = type.ToString();
			choice.m_FriendlyName = CZolEditableType( type ).GetFriendlyName();
		}
		return true;
	}
	const ToolAttrRange_t<int64_t> *GetIntRange() const override { return nullptr; }
	const ToolAttrRange_t<float> *GetFloatRange() const override { return nullptr; }
};

// "Default Config": the variable's default configuration, a nested table.
class CZolDefaultConfigAttr final : public CBaseToolAttr
{
public:
	CZolDefaultConfigAttr() : CBaseToolAttr( "m_DefaultConfig", NODE_CLASS, "particles" )
	{
		m_FriendlyName = "Default Config";
		m_nAutoExpand = 1;
	}

	int GetAttrType() const override { return TOOLATTR_TYPE_TABLE; }
	HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance handle ) override
	{
		CZolVariableNode *pNode = VariableOf( handle );
		return pNode ? pNode->GetDefaultConfigForModify().GetTableInstance() : HToolAttrTableInstance();
	}
	bool IsAtDefault( HToolAttrTableInstance, bool *pHasDefault ) const override
	{
		*pHasDefault = false;
		return false;
	}
	bool ResetToDefault( HToolAttrTableInstance ) override { return false; }
};
} // namespace

IBaseToolAttr *CZolVariableNode::GetValueTypeAttribute()
{
	static CZolVariableTypeAttr s_Attr;
	return &s_Attr;
}

IBaseToolAttr *CZolVariableNode::GetDefaultConfigAttribute()
{
	static CZolDefaultConfigAttr s_Attr;
	return &s_Attr;
}

CZolVariableNode::CZolVariableNode( CZolDoc *pDoc ) : CBaseZolNode( pDoc ), m_ValueType( CPulseValueFullType( PVAL_VEC3 ) )
{
	m_DefaultConfig.Link( this, &m_ValueType );
}

void CZolVariableNode::SaveToKV3( KeyValues3 *pOut ) const
{
	pOut->CopyFrom( m_KV3 );
	pOut->SetMemberString( "m_ValueType", m_ValueType.GetText().Get() );
	KeyValues3 *pConfig = pOut->FindOrCreateMember( "m_DefaultConfig" );
	// Members at their default stay out of the file, as they do for every other record.
	CUtlString error;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	if ( !SaveKV3Object( static_cast<const ParticleNamedValueConfiguration_t &>( m_DefaultConfig ), pConfig, &error, &context ) || !pConfig->IsTable() )
		pConfig->SetToEmptyTable();
}

void CZolVariableNode::LoadFromKV3( const KeyValues3 *pIn )
{
	m_KV3.CopyFrom( *pIn );
	ExtractTypedMembers();
}

void CZolVariableNode::TakeFromKV3( KeyValues3 *pIn )
{
	CBaseZolNode::TakeFromKV3( pIn );
	ExtractTypedMembers();
}

void CZolVariableNode::ExtractTypedMembers()
{
	// Values are read leniently: a member that can't be read keeps its default.
	static_cast<ParticleNamedValueConfiguration_t &>( m_DefaultConfig ) = ParticleNamedValueConfiguration_t();
	if ( const KeyValues3 *pConfig = m_KV3.FindMember( "m_DefaultConfig" ) )
	{
		CUtlString error;
		CKV3TransferLoadContext context;
		if ( pConfig->IsTable() )
			LoadKV3ObjectInPlace( static_cast<ParticleNamedValueConfiguration_t *>( &m_DefaultConfig ), pConfig, &error, &context );
		m_KV3.RemoveMember( "m_DefaultConfig" );
	}

	// A missing or unreadable type keeps the type a new variable has.
	m_ValueType.Set( CPulseValueFullType( PVAL_VEC3 ) );
	if ( const KeyValues3 *pType = m_KV3.FindMember( "m_ValueType" ) )
	{
		if ( pType->IsString() )
			m_ValueType.SetText( pType->GetString() );
		m_KV3.RemoveMember( "m_ValueType" );
	}
	m_DefaultConfig.Link( this, &m_ValueType );
}

void CZolVariableNode::GetDisplayStrings( CBufferString *pName, CBufferString *, CBufferString * ) const
{
	pName->Set( GetName() );
}

void CZolVariableNode::GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	int nFirst = pAttributes->Count();
	CBaseZolNode::GetAttributes( handle, pAttributes );
	// The typed members stand as attributes of their own, not as keys of the table.
	for ( int i = pAttributes->Count() - 1; i >= nFirst; --i )
	{
		const char *pName = ( *pAttributes )[ i ]->GetName();
		if ( !std::strcmp( pName, "m_ValueType" ) || !std::strcmp( pName, "m_DefaultConfig" ) )
			pAttributes->Remove( i );
	}
	pAttributes->AddToTail( GetValueTypeAttribute() );
	pAttributes->AddToTail( GetDefaultConfigAttribute() );
}

void CZolVariableNode::OnAttrWillChange( HToolAttrTableInstance, IBaseToolAttr * )
{
	if ( m_pDoc )
		m_pDoc->NoteNodeModified( this );
}

void CZolVariableNode::OnAttrChanged( HToolAttrTableInstance, IBaseToolAttr *pAttr )
{
	if ( pAttr != GetValueTypeAttribute() )
		return;
	m_DefaultConfig.Link( this, &m_ValueType );
	ZolNamedValue_GetDefault( m_ValueType.Get(), &m_DefaultConfig.m_ConfigValue );
	if ( m_pDoc )
		m_pDoc->SendEvent( ZolEvent_PropertyDomainTopologyChanged_t() );
}

void CZolVariableNode::GetSharedVariableNote( ZolSharedVariableNote_t *pNote ) const
{
	*pNote = ZolSharedVariableNote_t();
	if ( !m_pVariableContext )
		return;
	CUtlVector<ZolNamedValueRecord_t> records;
	m_pVariableContext->GetSharedVariables( GetName(), &records );
	BuildZolSharedVariableNote( GetName(), m_ValueType.Get(), records, pNote );
}
