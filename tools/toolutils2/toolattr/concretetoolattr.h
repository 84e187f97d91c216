#pragma once
// The concrete attribute family: attributes of declared fields, one object per member of
// a class, shared by every instance. Each checks the handle's type tag against its owner
// class before it touches the instance; on a mismatch it acts as if there were none.

#include <cstdlib>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <variant>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/platform/platformmode.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schemavalueequal.h"
#include "tools/toolutils2/toolattr/basetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrarray.h"
#include "tools/toolutils2/toolattr/itoolattrconcretedataaccess.h"
#include "tools/toolutils2/toolattr/itoolattrkv3.h"
#include "tools/toolutils2/toolattr/itoolattrmap.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattrconcreteaccess.h"
#include "tools/toolutils2/toolattr/toolattredit.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "tools/toolutils2/toolattr/toolattrvaluetext.h"

template <SchemaDeclaredClass S> IToolAttr_Table *ToolAttrTableFor();
template <typename K, typename V, typename O> class CConcreteToolAttrMap; // concretetoolattrmap.h
template <typename T, typename O>
std::unique_ptr<IBaseToolAttr> ToolAttrMakeAttribute( const char *pszName, const char *pszHelpContext, IToolAttrConcreteDataAccess<T> *pAccess );

// Bits of CBaseConcreteToolAttr::m_nDefaultFlags.
constexpr uint32_t TOOLATTR_DEFAULT_FLAG_NO_DEFAULT = 1u << 1; // reset does nothing, the value is always at default
constexpr uint32_t TOOLATTR_DEFAULT_FLAG_CAPTURED = 1u << 2;   // the default was taken from an instance

// What the state functions of an attribute answer.
enum ToolAttrState_t : int
{
	TOOLATTR_STATE_NORMAL = 0,
	TOOLATTR_STATE_READ_ONLY = 1,
	TOOLATTR_STATE_SUPPRESSED = 2,
};

// A declared command button of an attribute.
template <typename O> struct ToolAttrCommand_t
{
	ToolAttrCustomCommand_t m_Descriptor;
	std::function<bool( O * )> m_fnModify;         // runs inside an edit bracket
	std::function<bool( const O * )> m_fnConst;    // used when there is no modifying handler
};

template <typename T, typename O>
class CBaseConcreteToolAttr : public CBaseToolAttr
{
public:
	using Default_t = std::conditional_t<SchemaCopyable<T>, T, std::monostate>;

	CBaseConcreteToolAttr( const char *pszName, const char *pszHelpContext, IToolAttrConcreteDataAccess<T> *pAccess )
		: CBaseToolAttr( pszName, O::SchemaClassName(), pszHelpContext ), m_pAccess( pAccess )
	{
	}

	static uint32_t OwnerTypeTag()
	{
		static const uint32_t s_nTag = ToolAttrTypeTag( O::SchemaClassName() );
		return s_nTag;
	}
	// The instance when the handle names one of the owner class; null otherwise.
	O *GetOwner( HToolAttrTableInstance handle ) const
	{
		if ( !handle.m_pInstance || handle.m_nTypeTag != OwnerTypeTag() )
			return nullptr;
		return static_cast<O *>( handle.m_pInstance );
	}

	bool IsWritable( HToolAttrTableInstance handle ) const override
	{
		const O *pOwner = GetOwner( handle );
		if ( !pOwner || m_bReadOnly || !m_pAccess->CanSet( handle ) )
			return false;
		if ( StateOf( pOwner ) == TOOLATTR_STATE_READ_ONLY )
			return false;
		return !m_fnWritable || m_fnWritable( pOwner );
	}
	bool IsHidden( HToolAttrTableInstance handle ) const override
	{
		const O *pOwner = GetOwner( handle );
		return m_fnHidden && pOwner ? m_fnHidden( pOwner ) : m_bHidden;
	}
	bool IsSuppressed( HToolAttrTableInstance handle ) const override
	{
		if ( m_bDevOnly && Plat_IsRunningOnCustomerMachine() )
			return true;
		const O *pOwner = GetOwner( handle );
		if ( pOwner && StateOf( pOwner ) == TOOLATTR_STATE_SUPPRESSED )
			return true;
		if ( pOwner && m_fnSuppressedForAttr )
			return m_fnSuppressedForAttr( pOwner, this );
		return m_fnSuppressed && pOwner ? m_fnSuppressed( pOwner ) : m_bSuppressed;
	}
	void GetFriendlyName( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		const O *pOwner = GetOwner( handle );
		if ( m_fnFriendlyName && pOwner )
			m_fnFriendlyName( pOwner, pOut );
		else
			CBaseToolAttr::GetFriendlyName( handle, pOut );
	}
	void GetDescription( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		const O *pOwner = GetOwner( handle );
		if ( m_fnDescription && pOwner )
			m_fnDescription( pOwner, pOut );
		else
			CBaseToolAttr::GetDescription( handle, pOut );
	}
	int GetOverrideState( HToolAttrTableInstance handle ) const override
	{
		const O *pOwner = GetOwner( handle );
		return m_fnGetOverrideState && pOwner ? m_fnGetOverrideState( pOwner ) : TOOLATTR_OVERRIDE_NONE;
	}
	void SetOverride( HToolAttrTableInstance handle, bool bOverride ) override
	{
		O *pOwner = GetOwner( handle );
		if ( !pOwner || !m_fnSetOverride )
			return;
		CToolAttrEditScope edit( handle, this, 0 );
		m_fnSetOverride( pOwner, bOverride );
	}
	bool GetDefaultColor( HToolAttrTableInstance handle, Color *pOut ) const override
	{
		const O *pOwner = GetOwner( handle );
		if ( !pOwner )
			return false;
		if ( m_fnDefaultColor )
			return m_fnDefaultColor( pOwner, pOut );
		if ( !m_DefaultColor )
			return false;
		*pOut = *m_DefaultColor;
		return true;
	}
	void OnPreChange( HToolAttrTableInstance handle, int nFlags ) override
	{
		if ( O *pOwner = GetOwner( handle ); pOwner && m_fnPreChange )
			m_fnPreChange( pOwner, nFlags );
	}
	void OnPostChange( HToolAttrTableInstance handle, int nFlags ) override
	{
		if ( O *pOwner = GetOwner( handle ); pOwner && m_fnPostChange )
			m_fnPostChange( pOwner, nFlags );
	}

	bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const override
	{
		*pHasDefault = true;
		if ( m_nDefaultFlags & TOOLATTR_DEFAULT_FLAG_NO_DEFAULT )
			return true;
		const O *pOwner = GetOwner( handle );
		if ( !pOwner )
		{
			*pHasDefault = false;
			return true;
		}
		if ( m_fnIsDefault )
			return m_fnIsDefault( pOwner );
		if constexpr ( SchemaCopyable<T> )
		{
			if ( m_fnGetDefault )
			{
				T defaultValue{};
				if ( m_fnGetDefault( pOwner, &defaultValue ) )
					return SchemaValuesEqual<T>( m_pAccess->Get( handle ), defaultValue );
			}
			return SchemaValuesEqual<T>( m_pAccess->Get( handle ), m_Default );
		}
		else
		{
			return IsAtDefaultByParts( handle );
		}
	}
	bool ResetToDefault( HToolAttrTableInstance handle ) override
	{
		if ( m_nDefaultFlags & TOOLATTR_DEFAULT_FLAG_NO_DEFAULT )
			return true;
		if ( !GetOwner( handle ) || !m_pAccess->CanSet( handle ) )
			return false;
		if constexpr ( SchemaCopyable<T> )
		{
			T defaultValue = m_Default;
			if ( T fromCallback{}; m_fnGetDefault && m_fnGetDefault( GetOwner( handle ), &fromCallback ) )
				defaultValue = std::move( fromCallback );
			T &value = m_pAccess->BeginEdit( handle, this, 0 );
			value = defaultValue;
			m_pAccess->EndEdit( handle, this, 0 );
			return true;
		}
		else
		{
			return ResetByParts( handle );
		}
	}

	// The current value becomes the default of this attribute, and so of every instance:
	// the attribute object is shared by all of them.
	bool CaptureAsDefault( HToolAttrTableInstance handle ) override
	{
		if ( !GetOwner( handle ) || !m_pAccess->CanGet( handle ) )
			return false;
		if constexpr ( SchemaCopyable<T> )
		{
			m_Default = m_pAccess->Get( handle );
			m_nDefaultFlags = ( m_nDefaultFlags & ~TOOLATTR_DEFAULT_FLAG_NO_DEFAULT ) | TOOLATTR_DEFAULT_FLAG_CAPTURED;
			return true;
		}
		else
		{
			return CaptureByParts( handle );
		}
	}
	// Writes the captured default into the instance. The source names where it was
	// captured; one attribute keeps one default, so only its class is checked.
	bool ApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source ) override
	{
		if ( source.m_pInstance && !GetOwner( source ) )
			return false;
		if ( !GetOwner( handle ) || !m_pAccess->CanSet( handle ) )
			return false;
		if constexpr ( SchemaCopyable<T> )
		{
			if ( !( m_nDefaultFlags & TOOLATTR_DEFAULT_FLAG_CAPTURED ) )
				return false;
			T &value = m_pAccess->BeginEdit( handle, this, 0 );
			value = m_Default;
			m_pAccess->EndEdit( handle, this, 0 );
			return true;
		}
		else
		{
			return ApplyByParts( handle, source );
		}
	}

	void GetCustomCommands( HToolAttrTableInstance handle, CUtlVector<ToolAttrCustomCommand_t> *pCommands ) const override
	{
		if ( !GetOwner( handle ) )
			return;
		for ( const ToolAttrCommand_t<O> &command : m_Commands )
			pCommands->AddToTail( command.m_Descriptor );
	}
	int RunCommand( HToolAttrTableInstance handle, const char *pszCommand ) override
	{
		O *pOwner = GetOwner( handle );
		if ( !pOwner )
			return TOOLATTR_COMMAND_FAILED;
		static constexpr const char s_szPrefix[] = "_CustomCommand";
		if ( std::strncmp( pszCommand, s_szPrefix, sizeof( s_szPrefix ) - 1 ) == 0 )
		{
			char *pEnd = nullptr;
			long nIndex = std::strtol( pszCommand + sizeof( s_szPrefix ) - 1, &pEnd, 10 );
			if ( *pEnd == '\0' && nIndex >= 0 && nIndex < static_cast<long>( m_Commands.size() ) )
			{
				const ToolAttrCommand_t<O> &command = m_Commands[ nIndex ];
				bool bDone = false;
				if ( command.m_fnModify )
				{
					CToolAttrEditScope edit( handle, this, 0 );
					bDone = command.m_fnModify( pOwner );
				}
				else if ( command.m_fnConst )
				{
					bDone = command.m_fnConst( pOwner );
				}
				return bDone ? TOOLATTR_COMMAND_DONE : TOOLATTR_COMMAND_FAILED;
			}
		}
		if ( m_fnCommandModify )
		{
			int nResult;
			{
				CToolAttrEditScope edit( handle, this, 0 );
				nResult = m_fnCommandModify( pOwner, pszCommand );
			}
			if ( nResult != TOOLATTR_COMMAND_NOT_HANDLED )
				return nResult;
		}
		return m_fnCommandConst ? m_fnCommandConst( pOwner, pszCommand ) : TOOLATTR_COMMAND_NOT_HANDLED;
	}

	// Declaration code fills these; a null callback means the plain field applies.
	IToolAttrConcreteDataAccess<T> *m_pAccess;
	Default_t m_Default{};
	uint32_t m_nDefaultFlags = 0;
	bool m_bDevOnly = false; // suppressed on a customer machine
	std::function<bool( const O * )> m_fnWritable; // only further restricts
	std::function<bool( const O * )> m_fnHidden;
	std::function<bool( const O * )> m_fnSuppressed;
	std::function<bool( const O *, const IBaseToolAttr * )> m_fnSuppressedForAttr;
	std::function<int( const O * )> m_fnState; // ToolAttrState_t; both state functions are consulted
	std::function<int( const O * )> m_fnState2;
	std::function<void( const O *, CUtlString * )> m_fnFriendlyName;
	std::function<void( const O *, CUtlString * )> m_fnDescription;
	std::function<int( const O * )> m_fnGetOverrideState; // ToolAttrOverrideState_t
	std::function<void( O *, bool )> m_fnSetOverride;      // runs inside an edit bracket
	std::function<bool( const O * )> m_fnIsDefault;
	std::function<bool( const O *, Default_t * )> m_fnGetDefault; // false: the stored default applies
	std::function<bool( const O *, Color * )> m_fnDefaultColor;
	std::optional<Color> m_DefaultColor;
	std::function<void( O *, int )> m_fnPreChange;
	std::function<void( O *, int )> m_fnPostChange;
	std::vector<ToolAttrCommand_t<O>> m_Commands;
	std::function<int( O *, const char * )> m_fnCommandModify;
	std::function<int( const O *, const char * )> m_fnCommandConst;

protected:
	int StateOf( const O *pOwner ) const
	{
		for ( const std::function<int( const O * )> *pfn : { &m_fnState, &m_fnState2 } )
		{
			int nState = *pfn ? ( *pfn )( pOwner ) : TOOLATTR_STATE_NORMAL;
			if ( nState != TOOLATTR_STATE_NORMAL )
				return nState;
		}
		return TOOLATTR_STATE_NORMAL;
	}

	// Values that can't be copied (owned objects) compare, reset and capture through their parts.
	virtual bool IsAtDefaultByParts( HToolAttrTableInstance ) const { return true; }
	virtual bool ResetByParts( HToolAttrTableInstance ) { return false; }
	virtual bool CaptureByParts( HToolAttrTableInstance ) { return false; }
	virtual bool ApplyByParts( HToolAttrTableInstance, HToolAttrTableInstance ) { return false; }
};

// A value attribute: bool, numbers, enumerations, vectors, colours, strings.
template <typename T, typename O>
class CBaseConcreteToolAttrValue : public CBaseConcreteToolAttr<T, O>, public IToolAttr_TypedValue<T>
{
	using Base_t = CBaseConcreteToolAttr<T, O>;

public:
	using Base_t::Base_t;

	int GetAttrType() const override { return ToolAttrAttrTypeOf<T>(); }
	IToolAttr_Value *AsValue() override { return this; }
	int GetEditHint() const override
	{
		if ( this->m_nEditHint != TOOLATTR_EDIT_HINT_NONE )
			return this->m_nEditHint;
		if ( this->GetMetadata()->HasMember( "choice_name" ) || SchemaDeclaredEnum<T> )
			return TOOLATTR_EDIT_HINT_CHOICES;
		if ( this->GetMetadata()->HasMember( "suggestion_name" ) )
			return TOOLATTR_EDIT_HINT_SUGGESTIONS;
		return m_IntRange || m_FloatRange ? TOOLATTR_EDIT_HINT_RANGE : TOOLATTR_EDIT_HINT_NONE;
	}

	void SetTyped( HToolAttrTableInstance handle, const T &value, int nFlags ) override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanSet( handle ) )
			return;
		T &target = this->m_pAccess->BeginEdit( handle, this, nFlags );
		target = value;
		this->m_pAccess->EndEdit( handle, this, nFlags );
	}
	void GetTyped( HToolAttrTableInstance handle, T &out ) const override
	{
		if ( this->GetOwner( handle ) && this->m_pAccess->CanGet( handle ) )
			out = this->m_pAccess->Get( handle );
		else
			out = T{};
	}
	void GetTypedDefault( HToolAttrTableInstance, T &out ) const override { out = this->m_Default; }

	bool SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags ) override
	{
		T value{};
		if ( !this->GetOwner( handle ) || !ToolAttrValueTraits_t<T>::FromString( pszText ? pszText : "", &value ) )
			return false;
		SetTyped( handle, value, nFlags );
		return true;
	}
	void GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		T value{};
		GetTyped( handle, value );
		ToolAttrValueTraits_t<T>::ToString( value, pOut );
	}
	bool GetChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override
	{
		const KeyValues3 *pMetadata = this->GetMetadata();
		const char *pszProvider = pMetadata->GetMemberString( "choice_name", pMetadata->GetMemberString( "suggestion_name", "" ) );
		if ( *pszProvider )
		{
			const ToolAttrChoiceProviderFn_t &fn = ( pHost ? pHost : ToolAttrHost() )->FindChoiceProvider( pszProvider );
			if ( !fn )
				return false;
			fn( handle, this, pChoices );
			return true;
		}
		if constexpr ( SchemaDeclaredEnum<T> )
		{
			const SchemaEnumDesc_t &desc = SchemaDescribeEnum( static_cast<const T *>( nullptr ) );
			for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
			{
				if ( FindSchemaMetadata( enumerator.m_Metadata, "MPropertySuppressEnumerator" ) )
					continue;
				ToolAttrGenericChoice_t &choice = pChoices->Element( pChoices->AddToTail() );
				choice.m_Value = enumerator.m_pszName;
				const SchemaMetadataEntry_t *pFriendly = FindSchemaMetadata( enumerator.m_Metadata, "MPropertyFriendlyName" );
				choice.m_FriendlyName = pFriendly ? pFriendly->m_pszValue : enumerator.m_pszName;
				if ( const SchemaMetadataEntry_t *pDescription = FindSchemaMetadata( enumerator.m_Metadata, "MPropertyDescription" ) )
					choice.m_Description = pDescription->m_pszValue;
				choice.m_nValue = enumerator.m_nValue;
			}
			return true;
		}
		return false;
	}
	const ToolAttrRange_t<int64_t> *GetIntRange() const override { return m_IntRange ? &*m_IntRange : nullptr; }
	const ToolAttrRange_t<float> *GetFloatRange() const override { return m_FloatRange ? &*m_FloatRange : nullptr; }

	bool IsEmpty( HToolAttrTableInstance handle ) const override
	{
		CUtlString text;
		GetAsString( handle, &text );
		return this->m_bRequired && text.IsEmpty();
	}

	// "MPropertyAttributeRange": "min max" or "biased min max".
	void SetRangeFromText( const char *pszRange )
	{
		ToolAttrRange_t<float> range{};
		char szFirst[ 32 ] = {};
		float flA = 0.0f, flB = 0.0f;
		if ( sscanf( pszRange, "%31s %f %f", szFirst, &flA, &flB ) == 3 && std::strcmp( szFirst, "biased" ) == 0 )
			range = { flA, flB, true, 0 };
		else if ( sscanf( pszRange, "%f %f", &flA, &flB ) == 2 )
			range = { flA, flB, false, 0 };
		else
			return;
		m_FloatRange = range;
		m_IntRange = ToolAttrRange_t<int64_t>{ static_cast<int64_t>( range.m_Min ), static_cast<int64_t>( range.m_Max ), range.m_bBiased, 0 };
	}

	std::optional<ToolAttrRange_t<int64_t>> m_IntRange;
	std::optional<ToolAttrRange_t<float>> m_FloatRange;
};

// The attribute of a value field reached by reference, and the layer that accessor-based
// attributes build on. The last parameter is left for partial specialisations that pick
// value types by a condition (std::enable_if_t<...>); plain values use this one.
template <typename T, typename O, typename = void>
class CConcreteToolAttr : public CBaseConcreteToolAttrValue<T, O>
{
public:
	using CBaseConcreteToolAttrValue<T, O>::CBaseConcreteToolAttrValue;
};

// A KV3 subtree: a value (without text form) that custom editors change in place.
template <typename O>
class CConcreteToolAttrKV3 : public CBaseConcreteToolAttrValue<KeyValues3, O>, public IToolAttr_KV3
{
public:
	using CBaseConcreteToolAttrValue<KeyValues3, O>::CBaseConcreteToolAttrValue;
	IToolAttr_KV3 *AsKV3() override { return this; }
	const KeyValues3 *GetKV3( HToolAttrTableInstance handle ) const override
	{
		static const KeyValues3 s_Null;
		return this->GetOwner( handle ) ? &this->m_pAccess->Get( handle ) : &s_Null;
	}
	KeyValues3 *GetKV3ForModify( HToolAttrTableInstance handle, int nFlags ) override
	{
		if ( !this->GetOwner( handle ) )
			return nullptr;
		return &this->m_pAccess->BeginEdit( handle, this, nFlags );
	}
	void EndKV3Modify( HToolAttrTableInstance handle, int nFlags ) override
	{
		if ( this->GetOwner( handle ) )
			this->m_pAccess->EndEdit( handle, this, nFlags );
	}
};

// Helpers over a table handle's attributes.
bool ToolAttrTableIsAtDefault( HToolAttrTableInstance handle );
bool ToolAttrTableResetToDefault( HToolAttrTableInstance handle );
// Over every attribute of the table, nested tables included; false when one of them refused.
bool ToolAttrTableCaptureAsDefault( HToolAttrTableInstance handle );
bool ToolAttrTableApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source );

// A nested structure: the field is a table instance of its own class.
template <SchemaDeclaredClass S, typename O>
class CConcreteToolAttrTable : public CBaseConcreteToolAttr<S, O>
{
public:
	using CBaseConcreteToolAttr<S, O>::CBaseConcreteToolAttr;
	int GetAttrType() const override { return TOOLATTR_TYPE_TABLE; }
	HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance handle ) override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanGet( handle ) )
			return {};
		HToolAttrTableInstance nested;
		nested.m_pNotifyRoot = handle.m_pNotifyRoot;
		nested.m_pszClassName = S::SchemaClassName();
		nested.m_nTypeTag = ToolAttrTypeTag( S::SchemaClassName() );
		nested.m_pInstance = const_cast<S *>( &this->m_pAccess->Get( handle ) );
		nested.m_pTable = ToolAttrTableFor<S>();
		return nested;
	}
	bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const override
	{
		*pHasDefault = true;
		if ( !this->GetOwner( handle ) )
		{
			*pHasDefault = false;
			return true;
		}
		return ToolAttrTableIsAtDefault( const_cast<CConcreteToolAttrTable *>( this )->GetTableInstance( handle ) );
	}
	bool ResetToDefault( HToolAttrTableInstance handle ) override
	{
		return this->GetOwner( handle ) && ToolAttrTableResetToDefault( GetTableInstance( handle ) );
	}
	bool CaptureAsDefault( HToolAttrTableInstance handle ) override { return ToolAttrTableCaptureAsDefault( GetTableInstance( handle ) ); }
	bool ApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source ) override
	{
		HToolAttrTableInstance nestedSource = source.m_pInstance ? GetTableInstance( source ) : HToolAttrTableInstance{};
		return ToolAttrTableApplyCapturedDefault( GetTableInstance( handle ), nestedSource );
	}
};

// An owned polymorphic object: a table of the object's real class, or nothing when null.
template <SchemaDeclaredClass C, typename O>
class CConcreteToolAttrPtr : public CBaseConcreteToolAttr<std::unique_ptr<C>, O>
{
public:
	using CBaseConcreteToolAttr<std::unique_ptr<C>, O>::CBaseConcreteToolAttr;
	int GetAttrType() const override { return TOOLATTR_TYPE_TABLE; }
	HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance handle ) override
	{
		if ( !this->GetOwner( handle ) )
			return {};
		const std::unique_ptr<C> &pObject = this->m_pAccess->Get( handle );
		if ( !pObject )
			return {};
		const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( *pObject ) );
		if ( !pClass || !pClass->GetBinding().m_pfnGetAttributeTable )
			return {};
		HToolAttrTableInstance nested;
		nested.m_pNotifyRoot = handle.m_pNotifyRoot;
		nested.m_pszClassName = pClass->GetName();
		nested.m_nTypeTag = ToolAttrTypeTag( pClass->GetName() );
		nested.m_pInstance = dynamic_cast<void *>( pObject.get() );
		nested.m_pTable = pClass->GetBinding().m_pfnGetAttributeTable();
		return nested;
	}

protected:
	bool IsAtDefaultByParts( HToolAttrTableInstance handle ) const override
	{
		return !this->m_pAccess->Get( handle ); // the declared default of an owned object is none
	}
	bool ResetByParts( HToolAttrTableInstance handle ) override
	{
		std::unique_ptr<C> &pObject = this->m_pAccess->BeginEdit( handle, this, 0 );
		pObject.reset();
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}
	// The object itself can't become a default; its members can, in its real class.
	bool CaptureByParts( HToolAttrTableInstance handle ) override { return ToolAttrTableCaptureAsDefault( GetTableInstance( handle ) ); }
	bool ApplyByParts( HToolAttrTableInstance handle, HToolAttrTableInstance source ) override
	{
		HToolAttrTableInstance nestedSource = source.m_pInstance ? GetTableInstance( source ) : HToolAttrTableInstance{};
		return ToolAttrTableApplyCapturedDefault( GetTableInstance( handle ), nestedSource );
	}
};

// Element access: reads and writes go through the array's access, so the edit bracket is
// the array attribute's.
template <typename V, typename E>
class CArrayElementAccess : public IToolAttrConcreteDataAccess<E>
{
public:
	CArrayElementAccess( IToolAttrConcreteDataAccess<V> *pArrayAccess, IBaseToolAttr *pArrayAttr, int nIndex )
		: m_pArrayAccess( pArrayAccess ), m_pArrayAttr( pArrayAttr ), m_nIndex( nIndex )
	{
	}
	const E &Get( HToolAttrTableInstance handle ) const override
	{
		const V &vector = m_pArrayAccess->Get( handle );
		return InRange( vector ) ? vector[ m_nIndex ] : Empty();
	}
	bool CanGet( HToolAttrTableInstance handle ) const override { return m_pArrayAccess->CanGet( handle ) && InRange( m_pArrayAccess->Get( handle ) ); }
	bool CanSet( HToolAttrTableInstance handle ) const override { return CanGet( handle ) && m_pArrayAccess->CanSet( handle ); }
	E &BeginEdit( HToolAttrTableInstance handle, IBaseToolAttr *, int nFlags ) override
	{
		V &vector = m_pArrayAccess->BeginEdit( handle, m_pArrayAttr, nFlags );
		if ( InRange( vector ) )
			return vector[ m_nIndex ];
		static E s_Discard{}; // an element removed meanwhile: the write goes nowhere
		return s_Discard;
	}
	void EndEdit( HToolAttrTableInstance handle, IBaseToolAttr *, int nFlags ) override { m_pArrayAccess->EndEdit( handle, m_pArrayAttr, nFlags ); }

private:
	bool InRange( const V &vector ) const { return m_nIndex >= 0 && m_nIndex < static_cast<int>( std::size( vector ) ); }
	static const E &Empty()
	{
		static const E s_Empty{};
		return s_Empty;
	}
	IToolAttrConcreteDataAccess<V> *m_pArrayAccess;
	IBaseToolAttr *m_pArrayAttr;
	int m_nIndex;
};

template <typename T> struct ToolAttrIsVector_t : std::false_type {};
template <typename E> struct ToolAttrIsVector_t<std::vector<E>> : std::true_type {};
template <typename T> struct ToolAttrIsOwnedPtr_t : std::false_type {};
template <typename C> struct ToolAttrIsOwnedPtr_t<std::unique_ptr<C>> : std::true_type {};
template <typename T> struct ToolAttrIsMap_t : std::false_type {};
template <typename K, typename V> struct ToolAttrIsMap_t<std::map<K, V>> : std::true_type {};

// A growable list. Element attributes are made on first request and kept for the process.
template <typename E, typename O>
class CConcreteToolAttrArray : public CBaseConcreteToolAttr<std::vector<E>, O>, public IToolAttr_Array
{
	using V = std::vector<E>;

public:
	using CBaseConcreteToolAttr<V, O>::CBaseConcreteToolAttr;

	int GetAttrType() const override { return TOOLATTR_TYPE_ARRAY; }
	IToolAttr_Array *AsArray() override { return this; }

	int GetCount( HToolAttrTableInstance handle ) const override { return this->GetOwner( handle ) ? static_cast<int>( this->m_pAccess->Get( handle ).size() ) : 0; }
	IBaseToolAttr *GetElement( HToolAttrTableInstance, int nIndex ) override
	{
		if ( nIndex < 0 )
			return nullptr;
		while ( static_cast<int>( m_Elements.size() ) <= nIndex )
		{
			Element_t &element = m_Elements.emplace_back();
			element.m_pAccess = std::make_unique<CArrayElementAccess<V, E>>( this->m_pAccess, this, static_cast<int>( m_Elements.size() ) - 1 );
			element.m_pAttr = ToolAttrMakeAttribute<E, O>( this->GetName(), this->GetHelpContext(), element.m_pAccess.get() );
		}
		return m_Elements[ nIndex ].m_pAttr.get();
	}
	IBaseToolAttr *InsertElement( HToolAttrTableInstance handle, int nIndex ) override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanSet( handle ) )
			return nullptr;
		V &vector = this->m_pAccess->BeginEdit( handle, this, 0 );
		nIndex = std::clamp( nIndex, 0, static_cast<int>( vector.size() ) );
		vector.insert( vector.begin() + nIndex, m_fnDefaultElement ? m_fnDefaultElement() : E{} );
		this->m_pAccess->EndEdit( handle, this, 0 );
		return GetElement( handle, nIndex );
	}
	void RemoveElements( HToolAttrTableInstance handle, int nIndex, int nCount ) override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanSet( handle ) || nCount <= 0 )
			return;
		V &vector = this->m_pAccess->BeginEdit( handle, this, 0 );
		int nEnd = std::min( nIndex + nCount, static_cast<int>( vector.size() ) );
		for ( int i = nEnd - 1; i >= std::max( nIndex, 0 ); --i ) // highest index first
			vector.erase( vector.begin() + i );
		this->m_pAccess->EndEdit( handle, this, 0 );
	}
	void SwapElements( HToolAttrTableInstance handle, int nA, int nB ) override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanSet( handle ) )
			return;
		int nCount = GetCount( handle );
		if ( nA < 0 || nB < 0 || nA >= nCount || nB >= nCount )
			return;
		V &vector = this->m_pAccess->BeginEdit( handle, this, 0 );
		std::swap( vector[ nA ], vector[ nB ] );
		this->m_pAccess->EndEdit( handle, this, 0 );
	}
	bool GetElementChoices( IToolAttrHost *, HToolAttrTableInstance, CUtlVector<ToolAttrGenericChoice_t> * ) const override { return false; }
	bool CanResize() const override { return true; }
	const ToolAttrRange_t<int64_t> *GetElementIntRange() const override { return nullptr; }
	const ToolAttrRange_t<float> *GetElementFloatRange() const override { return nullptr; }
	bool GetElementTypes( HToolAttrTableInstance, CUtlVector<ToolAttrElementType_t> *pTypes ) const override
	{
		if constexpr ( ToolAttrIsOwnedPtr_t<E>::value )
		{
			const CSchemaClassInfo *pBase = SchemaSystem()->FindClassByTypeInfo( typeid( typename E::element_type ) );
			if ( !pBase )
				return false;
			AddCreatableTypes( pBase, pTypes );
			return true;
		}
		return false;
	}
	IBaseToolAttr *InsertElementOfType( HToolAttrTableInstance handle, int nIndex, const ToolAttrElementType_t &type ) override
	{
		if constexpr ( ToolAttrIsOwnedPtr_t<E>::value )
		{
			using C = typename E::element_type;
			const CSchemaClassInfo *pBase = SchemaSystem()->FindClassByTypeInfo( typeid( C ) );
			const CSchemaClassInfo *pClass = pBase ? pBase->GetTypeScope()->FindDeclaredClass( type.m_Value.Get() ) : nullptr;
			if ( !pClass || !pClass->IsA( pBase ) || !pClass->CanCreate() || !this->GetOwner( handle ) || !this->m_pAccess->CanSet( handle ) )
				return nullptr;
			void *pInstance = pClass->CreateInstance();
			V &vector = this->m_pAccess->BeginEdit( handle, this, 0 );
			nIndex = std::clamp( nIndex, 0, static_cast<int>( vector.size() ) );
			vector.insert( vector.begin() + nIndex, E( static_cast<C *>( pClass->CastTo( pInstance, pBase ) ) ) );
			this->m_pAccess->EndEdit( handle, this, 0 );
			return GetElement( handle, nIndex );
		}
		else
		{
			return InsertElement( handle, nIndex );
		}
	}
	int GetElementTypeMode() const override { return ToolAttrIsOwnedPtr_t<E>::value ? 2 : 0; }

	std::function<E()> m_fnDefaultElement;

protected:
	// A list of owned objects can't be copied; its default is the empty list.
	bool IsAtDefaultByParts( HToolAttrTableInstance handle ) const override { return this->m_pAccess->Get( handle ).empty(); }
	bool ResetByParts( HToolAttrTableInstance handle ) override
	{
		this->m_pAccess->BeginEdit( handle, this, 0 ).clear();
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}

private:
	static void AddCreatableTypes( const CSchemaClassInfo *pClass, CUtlVector<ToolAttrElementType_t> *pTypes )
	{
		if ( pClass->CanCreate() && !pClass->HasMetadata( "MHideInPolymorphicClassList" ) )
		{
			ToolAttrElementType_t &type = pTypes->Element( pTypes->AddToTail() );
			type.m_Value = pClass->GetName();
			const SchemaMetadataEntry_t *pFriendly = pClass->FindMetadata( "MPropertyFriendlyName" );
			type.m_FriendlyName = pFriendly ? pFriendly->m_pszValue : pClass->GetName();
			if ( const SchemaMetadataEntry_t *pDescription = pClass->FindMetadata( "MPropertyDescription" ) )
				type.m_Description = pDescription->m_pszValue;
		}
		for ( int i = 0; i < pClass->GetDerivedClassCount(); ++i )
			AddCreatableTypes( pClass->GetDerivedClass( i ), pTypes );
	}

	struct Element_t
	{
		std::unique_ptr<IToolAttrConcreteDataAccess<E>> m_pAccess;
		std::unique_ptr<IBaseToolAttr> m_pAttr;
	};
	std::vector<Element_t> m_Elements;
};

// Picks the attribute class for a field type.
template <typename T, typename O>
std::unique_ptr<IBaseToolAttr> ToolAttrMakeAttribute( const char *pszName, const char *pszHelpContext, IToolAttrConcreteDataAccess<T> *pAccess )
{
	if constexpr ( std::is_same_v<T, KeyValues3> )
		return std::make_unique<CConcreteToolAttrKV3<O>>( pszName, pszHelpContext, pAccess );
	else if constexpr ( SchemaDeclaredClass<T> )
		return std::make_unique<CConcreteToolAttrTable<T, O>>( pszName, pszHelpContext, pAccess );
	else if constexpr ( ToolAttrIsOwnedPtr_t<T>::value )
		return std::make_unique<CConcreteToolAttrPtr<typename T::element_type, O>>( pszName, pszHelpContext, pAccess );
	else if constexpr ( ToolAttrIsVector_t<T>::value )
		return std::make_unique<CConcreteToolAttrArray<typename T::value_type, O>>( pszName, pszHelpContext, pAccess );
	else if constexpr ( ToolAttrIsMap_t<T>::value )
		return std::make_unique<CConcreteToolAttrMap<typename T::key_type, typename T::mapped_type, O>>( pszName, pszHelpContext, pAccess );
	else
		return std::make_unique<CConcreteToolAttr<T, O>>( pszName, pszHelpContext, pAccess );
}

#include "tools/toolutils2/toolattr/concretetoolattrmap.h"
