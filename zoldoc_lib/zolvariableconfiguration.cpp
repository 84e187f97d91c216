#include "zoldoc_lib/zolvariableconfiguration.h"

#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "tools/toolutils2/toolattr/basetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattredit.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "tools/toolutils2/toolattr/toolattrtable.h"
#include "tools/toolutils2/toolattr/toolattrvaluetext.h"
#include "zoldoc_lib/izolnodevariablecontext.h"
#include "zoldoc_lib/zoleditabletype.h"
#include "zoldoc_lib/zolnamedvalue.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
constexpr const char *RECORD_CLASS = "ParticleNamedValueConfiguration_t";

CPulseValueFullType TypeOf( const CZolVariableConfiguration *pConfig )
{
	return pConfig && pConfig->GetValueType() ? pConfig->GetValueType()->Get() : CPulseValueFullType();
}

CZolVariableConfiguration *ConfigOf( HToolAttrTableInstance handle )
{
	static const uint32_t s_nTag = ToolAttrTypeTag( RECORD_CLASS );
	if ( !handle.m_pInstance || handle.m_nTypeTag != s_nTag || handle.m_pTable != CZolVariableConfiguration::GetAttributeTable() )
		return nullptr;
	return static_cast<CZolVariableConfiguration *>( static_cast<ParticleNamedValueConfiguration_t *>( handle.m_pInstance ) );
}

// How one kind of value travels between its KV3 form, the typed interface and text.
// A float and a vector both travel as a point: the float is its x.
template <typename T, int AttrType>
struct PointCodec_t
{
	using Value_t = T;
	static constexpr int s_nAttrType = AttrType;
	static constexpr bool s_bWritable = true;
	static Value_t Read( const CPulseValueFullType &type, const KeyValues3 &value )
	{
		Vector vPosition;
		QAngle angles;
		ZolNamedValue_ToTransform( type, value, &vPosition, &angles );
		if constexpr ( std::is_same_v<T, float> )
			return vPosition.x;
		else
			return vPosition;
	}
	static void Write( const CPulseValueFullType &type, const Value_t &value, KeyValues3 *pOut )
	{
		if constexpr ( std::is_same_v<T, float> )
			ZolNamedValue_FromTransform( type, Vector( value, 0, 0 ), QAngle(), pOut );
		else
			ZolNamedValue_FromTransform( type, value, QAngle(), pOut );
	}
	static void ToString( const Value_t &value, CUtlString *pOut ) { ToolAttrValueTraits_t<T>::ToString( value, pOut ); }
	static bool FromString( const char *pText, Value_t *pOut ) { return ToolAttrValueTraits_t<T>::FromString( pText, pOut ); }
};
using FloatCodec_t = PointCodec_t<float, TOOLATTR_TYPE_FLOAT>;
using VectorCodec_t = PointCodec_t<Vector, TOOLATTR_TYPE_VECTOR3>;

// Position and angles, as six numbers in text.
struct TransformCodec_t
{
	using Value_t = ZolTransformValue_t;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRUCTURED;
	static constexpr bool s_bWritable = true;
	static Value_t Read( const CPulseValueFullType &type, const KeyValues3 &value )
	{
		Value_t out;
		ZolNamedValue_ToTransform( type, value, &out.m_vPosition, &out.m_Angles );
		return out;
	}
	static void Write( const CPulseValueFullType &type, const Value_t &value, KeyValues3 *pOut ) { ZolNamedValue_FromTransform( type, value.m_vPosition, value.m_Angles, pOut ); }
	// Six significant digits: the orientation is stored as a quaternion, and its angles
	// come back a hair off what was typed.
	static void ToString( const Value_t &value, CUtlString *pOut )
	{
		pOut->Format( "%g %g %g %g %g %g", value.m_vPosition.x, value.m_vPosition.y, value.m_vPosition.z, value.m_Angles.x, value.m_Angles.y, value.m_Angles.z );
	}
	static bool FromString( const char *pText, Value_t *pOut )
	{
		float values[ 6 ];
		const char *pCursor = pText ? pText : "";
		for ( float &flValue : values )
		{
			char *pEnd = nullptr;
			flValue = std::strtof( pCursor, &pEnd );
			if ( pEnd == pCursor )
				return false;
			pCursor = pEnd;
		}
		while ( *pCursor == ' ' || *pCursor == '\t' )
			++pCursor;
		if ( *pCursor )
			return false;
		*pOut = Value_t{ Vector( values[ 0 ], values[ 1 ], values[ 2 ] ), QAngle( values[ 3 ], values[ 4 ], values[ 5 ] ) };
		return true;
	}
};

// A model or other resource, by resource name.
struct ResourceCodec_t
{
	using Value_t = CUtlString;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRING;
	static constexpr bool s_bWritable = true;
	static Value_t Read( const CPulseValueFullType &, const KeyValues3 &value ) { return CUtlString( value.IsString() ? value.GetString() : "" ); }
	static void Write( const CPulseValueFullType &type, const Value_t &value, KeyValues3 *pOut )
	{
		KeyValues3 text;
		text.SetString( value.Get() );
		ZolNamedValue_Convert( type, text, pOut );
	}
	static void ToString( const Value_t &value, CUtlString *pOut ) { *pOut = value; }
	static bool FromString( const char *pText, Value_t *pOut )
	{
		*pOut = pText ? pText : "";
		return true;
	}
};

// Entity handles exist only in a running game: a file holds none to edit.
struct HandleCodec_t
{
	using Value_t = uint64_t;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_UINT;
	static constexpr bool s_bWritable = false;
	static Value_t Read( const CPulseValueFullType &type, const KeyValues3 &value )
	{
		KeyValues3 converted;
		ZolNamedValue_Convert( type, value, &converted );
		return converted.GetUInt64();
	}
	static void Write( const CPulseValueFullType &type, const Value_t &value, KeyValues3 *pOut )
	{
		KeyValues3 number;
		number.SetUInt64( value );
		ZolNamedValue_Convert( type, number, pOut );
	}
	static void ToString( const Value_t &value, CUtlString *pOut ) { pOut->Format( "%" PRIu64, value ); }
	static bool FromString( const char *, Value_t * ) { return false; }
};

// Any other type: its KV3 form as text.
struct KV3Codec_t
{
	using Value_t = KeyValues3;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_KV3;
	static constexpr bool s_bWritable = true;
	static Value_t Read( const CPulseValueFullType &, const KeyValues3 &value ) { return value; }
	static void Write( const CPulseValueFullType &type, const Value_t &value, KeyValues3 *pOut ) { ZolNamedValue_Convert( type, value, pOut ); }
	static void ToString( const Value_t &value, CUtlString *pOut ) { ToolAttrValueTraits_t<KeyValues3>::ToString( value, pOut ); }
	static bool FromString( const char *pText, Value_t *pOut ) { return ToolAttrValueTraits_t<KeyValues3>::FromString( pText, pOut ); }
};

// "Value": the configuration's value, typed by the variable's type.
template <typename Codec>
class CZolConfigValueAttr final : public CBaseToolAttr, public IToolAttr_TypedValue<typename Codec::Value_t>
{
public:
	using Value_t = typename Codec::Value_t;

	CZolConfigValueAttr() : CBaseToolAttr( "m_ConfigValue", RECORD_CLASS, "particles" )
	{
		m_FriendlyName = "Value";
		m_bReadOnly = !Codec::s_bWritable;
		if constexpr ( std::is_same_v<Codec, ResourceCodec_t> )
			m_nEditHint = TOOLATTR_EDIT_HINT_RESOURCE;
	}

	int GetAttrType() const override { return Codec::s_nAttrType; }
	IToolAttr_Value *AsValue() override { return this; }
	bool IsWritable( HToolAttrTableInstance handle ) const override { return ConfigOf( handle ) && Codec::s_bWritable; }
	// A resource's editor picks assets of the variable's resource type.
	const char *GetEditHintParam() const override { return nullptr; }

	bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const override
	{
		*pHasDefault = true;
		const CZolVariableConfiguration *pConfig = ConfigOf( handle );
		if ( !pConfig )
			return true;
		KeyValues3 value, defaultValue;
		pConfig->GetValue( &value );
		ZolNamedValue_GetDefault( TypeOf( pConfig ), &defaultValue );
		return value.IsEqual( defaultValue );
	}
	bool ResetToDefault( HToolAttrTableInstance handle ) override
	{
		CZolVariableConfiguration *pConfig = ConfigOf( handle );
		if ( !pConfig || !Codec::s_bWritable )
			return false;
		CToolAttrEditScope edit( handle, this, 0 );
		pConfig->m_ConfigValue.SetToNull();
		return true;
	}

	// IToolAttr_TypedValue
	void SetTyped( HToolAttrTableInstance handle, const Value_t &value, int nFlags ) override
	{
		CZolVariableConfiguration *pConfig = ConfigOf( handle );
		if ( !pConfig || !Codec::s_bWritable )
			return;
		KeyValues3 kv;
		Codec::Write( TypeOf( pConfig ), value, &kv );
		CToolAttrEditScope edit( handle, this, nFlags );
		pConfig->m_ConfigValue = kv;
	}
	void GetTyped( HToolAttrTableInstance handle, Value_t &out ) const override
	{
		const CZolVariableConfiguration *pConfig = ConfigOf( handle );
		KeyValues3 value;
		if ( pConfig )
			pConfig->GetValue( &value );
		out = Codec::Read( TypeOf( pConfig ), value );
	}
	void GetTypedDefault( HToolAttrTableInstance handle, Value_t &out ) const override
	{
		KeyValues3 defaultValue;
		ZolNamedValue_GetDefault( TypeOf( ConfigOf( handle ) ), &defaultValue );
		out = Codec::Read( TypeOf( ConfigOf( handle ) ), defaultValue );
	}

	// IToolAttr_Value
	bool SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags ) override
	{
		Value_t value{};
		if ( !ConfigOf( handle ) || !Codec::FromString( pszText, &value ) )
			return false;
		SetTyped( handle, value, nFlags );
		return Codec::s_bWritable;
	}
	void GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const override
	{
		Value_t value{};
		GetTyped( handle, value );
		Codec::ToString( value, pOut );
	}
	bool GetChoices( IToolAttrHost *, HToolAttrTableInstance, CUtlVector<ToolAttrGenericChoice_t> * ) const override { return false; }
	const ToolAttrRange_t<int64_t> *GetIntRange() const override { return nullptr; }
	const ToolAttrRange_t<float> *GetFloatRange() const override { return nullptr; }
};

IBaseToolAttr *ValueAttributeFor( const CPulseValueFullType &type )
{
	static CZolConfigValueAttr<FloatCodec_t> s_Float;
	static CZolConfigValueAttr<VectorCodec_t> s_Vector;
	static CZolConfigValueAttr<TransformCodec_t> s_Transform;
	static CZolConfigValueAttr<ResourceCodec_t> s_Resource;
	static CZolConfigValueAttr<HandleCodec_t> s_Handle;
	static CZolConfigValueAttr<KV3Codec_t> s_KV3;
	switch ( type.GetBaseType() )
	{
	case PVAL_FLOAT: return &s_Float;
	case PVAL_VEC3: return &s_Vector;
	case PVAL_TRANSFORM: return &s_Transform;
	case PVAL_RESOURCE:
	case PVAL_RESOURCE_NAME: return &s_Resource;
	case PVAL_EHANDLE:
	case PVAL_PARTICLE_EHANDLE: return &s_Handle;
	default: return &s_KV3;
	}
}

class CZolVariableConfigurationTable final : public IToolAttr_Table
{
public:
	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override
	{
		const CZolVariableConfiguration *pConfig = ConfigOf( handle );
		for ( IBaseToolAttr *pAttr : ToolAttrAttributesOf<ParticleNamedValueConfiguration_t>() )
			pAttributes->AddToTail( std::strcmp( pAttr->GetName(), "m_ConfigValue" ) ? pAttr : ValueAttributeFor( TypeOf( pConfig ) ) );
	}
	bool GetHelpInfo( HToolAttrTableInstance, CUtlString *pContext, CUtlString *pId ) const override { return GetElementHelpInfo( pContext, pId ); }
	bool GetElementHelpInfo( CUtlString *pContext, CUtlString *pId ) const override
	{
		pContext->Set( "particles" );
		pId->Format( "Element.%s", RECORD_CLASS );
		return true;
	}
	bool GetDisplayName( HToolAttrTableInstance, CUtlString *pOut ) const override
	{
		pOut->Set( "Default Config" );
		return true;
	}
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override { return false; }
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override { return handle; }
	IBaseToolAttr *FindAttribute( HToolAttrTableInstance handle, const char *pszName ) override
	{
		CUtlVector<IBaseToolAttr *> attributes;
		GetAttributes( handle, &attributes );
		for ( IBaseToolAttr *pAttr : attributes )
		{
			if ( !std::strcmp( pAttr->GetName(), pszName ) )
				return pAttr;
		}
		return nullptr;
	}
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base * ) const override {}
};

// The context of the variable that the edited record belongs to.
IZolNodeVariableContext *ContextOf( HToolAttrTableInstance handle )
{
	const CZolVariableConfiguration *pConfig = ConfigOf( handle );
	return pConfig && pConfig->GetNode() ? pConfig->GetNode()->GetVariableContext() : nullptr;
}
} // namespace

void CZolVariableConfiguration::GetValue( KeyValues3 *pOut ) const
{
	CPulseValueFullType type = TypeOf( this );
	if ( m_ConfigValue.IsNull() )
		ZolNamedValue_GetDefault( type, pOut );
	else
		ZolNamedValue_Convert( type, m_ConfigValue, pOut );
}

void CZolVariableConfiguration::SetValue( const KeyValues3 &value )
{
	ZolNamedValue_Convert( TypeOf( this ), value, &m_ConfigValue );
}

HToolAttrTableInstance CZolVariableConfiguration::GetTableInstance()
{
	HToolAttrTableInstance handle;
	handle.m_pNotifyRoot = m_pNode;
	handle.m_pszClassName = RECORD_CLASS;
	handle.m_nTypeTag = ToolAttrTypeTag( RECORD_CLASS );
	handle.m_pInstance = static_cast<ParticleNamedValueConfiguration_t *>( this );
	handle.m_pTable = GetAttributeTable();
	return handle;
}

IToolAttr_Table *CZolVariableConfiguration::GetAttributeTable()
{
	static CZolVariableConfigurationTable s_Table;
	return &s_Table;
}

void RegisterZolVariableChoiceProviders( CToolAttrHost *pHost )
{
	pHost->RegisterChoiceProvider( "particle_variable_configuration", []( HToolAttrTableInstance handle, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) {
		if ( IZolNodeVariableContext *pContext = ContextOf( handle ) )
			pContext->GetConfigurationNames( pChoices );
	} );
	pHost->RegisterChoiceProvider( "particle_variable_attachment", []( HToolAttrTableInstance handle, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) {
		if ( IZolNodeVariableContext *pContext = ContextOf( handle ) )
			pContext->GetAttachmentNames( ConfigOf( handle )->m_strEntityScope.Get(), pChoices );
	} );
	pHost->RegisterChoiceProvider( "particle_variable_domain", []( HToolAttrTableInstance handle, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) {
		if ( IZolNodeVariableContext *pContext = ContextOf( handle ) )
			pContext->GetDomainValues( TypeOf( ConfigOf( handle ) ), pChoices );
	} );
}
