#pragma once
// A keyed collection of a declared class (std::map). Keys travel as text: strings as they
// are, integers in decimal, enumerations by enumerator name. Each key has an element
// attribute of its own, made on first request and kept for the process; reads and writes
// of an element go through the map's access, so every edit is bracketed on the map
// attribute and the root hears of the map changing.

#include <map>
#include <memory>
#include <type_traits>
#include <utility>

#include "tools/toolutils2/toolattr/concretetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrmap.h"

template <typename M>
class CMapElementAccess : public IToolAttrConcreteDataAccess<typename M::mapped_type>
{
	using K = typename M::key_type;
	using V = typename M::mapped_type;

public:
	CMapElementAccess( IToolAttrConcreteDataAccess<M> *pMapAccess, IBaseToolAttr *pMapAttr, const K &key )
		: m_pMapAccess( pMapAccess ), m_pMapAttr( pMapAttr ), m_Key( key )
	{
	}
	const V &Get( HToolAttrTableInstance handle ) const override
	{
		const M &map = m_pMapAccess->Get( handle );
		auto it = map.find( m_Key );
		return it != map.end() ? it->second : Empty();
	}
	bool CanGet( HToolAttrTableInstance handle ) const override { return m_pMapAccess->CanGet( handle ) && m_pMapAccess->Get( handle ).contains( m_Key ); }
	bool CanSet( HToolAttrTableInstance handle ) const override { return CanGet( handle ) && m_pMapAccess->CanSet( handle ); }
	V &BeginEdit( HToolAttrTableInstance handle, IBaseToolAttr *, int nFlags ) override
	{
		M &map = m_pMapAccess->BeginEdit( handle, m_pMapAttr, nFlags );
		if ( auto it = map.find( m_Key ); it != map.end() )
			return it->second;
		static V s_Discard{}; // a key removed meanwhile: the write goes nowhere
		return s_Discard;
	}
	void EndEdit( HToolAttrTableInstance handle, IBaseToolAttr *, int nFlags ) override { m_pMapAccess->EndEdit( handle, m_pMapAttr, nFlags ); }

private:
	static const V &Empty()
	{
		static const V s_Empty{};
		return s_Empty;
	}
	IToolAttrConcreteDataAccess<M> *m_pMapAccess;
	IBaseToolAttr *m_pMapAttr;
	K m_Key;
};

template <typename K, typename V, typename O>
class CConcreteToolAttrMap : public CBaseConcreteToolAttr<std::map<K, V>, O>, public IToolAttr_Map
{
	using M = std::map<K, V>;
	using KeyTraits_t = ToolAttrValueTraits_t<K>;
	static_assert( KeyTraits_t::s_bHasText, "map keys must have a text form" );

public:
	using CBaseConcreteToolAttr<M, O>::CBaseConcreteToolAttr;

	int GetAttrType() const override { return TOOLATTR_TYPE_MAP; }
	IToolAttr_Map *AsMap() override { return this; }

	bool HasIntegerKeys() const override { return std::is_integral_v<K>; }

	// The element of an existing key; with bCreate, a missing key is added first.
	IBaseToolAttr *GetElement( HToolAttrTableInstance handle, const char *pszKey, bool bCreate ) override
	{
		K key{};
		if ( !this->GetOwner( handle ) || !KeyFromText( pszKey, &key ) )
			return nullptr;
		if ( !this->m_pAccess->Get( handle ).contains( key ) && ( !bCreate || !AddKey( handle, pszKey ) ) )
			return nullptr;
		return ElementFor( key );
	}
	void GetKeys( HToolAttrTableInstance handle, CUtlVector<CUtlString> *pKeys ) const override
	{
		if ( !this->GetOwner( handle ) || !this->m_pAccess->CanGet( handle ) )
			return;
		for ( const auto &entry : this->m_pAccess->Get( handle ) )
			KeyTraits_t::ToString( entry.first, &pKeys->Element( pKeys->AddToTail() ) );
	}
	bool AddKey( HToolAttrTableInstance handle, const char *pszKey ) override
	{
		K key{};
		if ( !CanEdit( handle ) || !KeyFromText( pszKey, &key ) || this->m_pAccess->Get( handle ).contains( key ) )
			return false;
		M &map = this->m_pAccess->BeginEdit( handle, this, 0 );
		map.emplace( key, m_fnDefaultElement ? m_fnDefaultElement() : V{} );
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}
	bool RemoveKey( HToolAttrTableInstance handle, const char *pszKey ) override
	{
		K key{};
		if ( !CanEdit( handle ) || !KeyFromText( pszKey, &key ) || !this->m_pAccess->Get( handle ).contains( key ) )
			return false;
		M &map = this->m_pAccess->BeginEdit( handle, this, 0 );
		map.erase( key );
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}
	// The value moves to the new key; an existing new key is never overwritten.
	bool RenameKey( HToolAttrTableInstance handle, const char *pszOldKey, const char *pszNewKey ) override
	{
		K oldKey{}, newKey{};
		if ( !CanEdit( handle ) || !KeyFromText( pszOldKey, &oldKey ) || !KeyFromText( pszNewKey, &newKey ) )
			return false;
		const M &current = this->m_pAccess->Get( handle );
		if ( !current.contains( oldKey ) )
			return false;
		if ( oldKey == newKey )
			return true;
		if ( current.contains( newKey ) )
			return false;
		M &map = this->m_pAccess->BeginEdit( handle, this, 0 );
		auto node = map.extract( oldKey );
		if ( !node.empty() )
		{
			node.key() = newKey;
			map.insert( std::move( node ) );
		}
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}
	// "mapkeys_choice_name" gives a closed list, "mapkeys_suggestion_name" a suggested one;
	// enumeration keys are closed to their enumerators.
	bool GetKeyChoices( HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override
	{
		const KeyValues3 *pMetadata = this->GetMetadata();
		for ( const auto &[ pszMetadataKey, bClosed ] : { std::pair( "mapkeys_choice_name", true ), std::pair( "mapkeys_suggestion_name", false ) } )
		{
			const char *pszProvider = pMetadata->GetMemberString( pszMetadataKey, "" );
			if ( !*pszProvider )
				continue;
			if ( const ToolAttrChoiceProviderFn_t &fn = ToolAttrHost()->FindChoiceProvider( pszProvider ) )
				fn( handle, this, pChoices );
			return bClosed;
		}
		if constexpr ( SchemaDeclaredEnum<K> )
		{
			for ( const SchemaEnumeratorDesc_t &enumerator : SchemaDescribeEnum( static_cast<const K *>( nullptr ) ).m_Enumerators )
			{
				if ( FindSchemaMetadata( enumerator.m_Metadata, "MPropertySuppressEnumerator" ) )
					continue;
				ToolAttrGenericChoice_t &choice = pChoices->Element( pChoices->AddToTail() );
				choice.m_Value = enumerator.m_pszName;
				const SchemaMetadataEntry_t *pFriendly = FindSchemaMetadata( enumerator.m_Metadata, "MPropertyFriendlyName" );
				choice.m_FriendlyName = pFriendly ? pFriendly->m_pszValue : enumerator.m_pszName;
				choice.m_nValue = enumerator.m_nValue;
			}
			return true;
		}
		return false;
	}

	std::function<V()> m_fnDefaultElement; // the value of a new key; V{} without it

protected:
	bool IsAtDefaultByParts( HToolAttrTableInstance handle ) const override { return this->m_pAccess->Get( handle ).empty(); }
	bool ResetByParts( HToolAttrTableInstance handle ) override
	{
		this->m_pAccess->BeginEdit( handle, this, 0 ).clear();
		this->m_pAccess->EndEdit( handle, this, 0 );
		return true;
	}

private:
	bool CanEdit( HToolAttrTableInstance handle ) const { return this->GetOwner( handle ) && this->m_pAccess->CanSet( handle ); }

	// Only the canonical text of a key is accepted, so "007" can't stand for key 7 and
	// two texts never name one entry.
	static bool KeyFromText( const char *pszText, K *pKey )
	{
		if ( !pszText || !KeyTraits_t::FromString( pszText, pKey ) )
			return false;
		if constexpr ( std::is_integral_v<K> )
		{
			CUtlString canonical;
			KeyTraits_t::ToString( *pKey, &canonical );
			return canonical == pszText;
		}
		return true;
	}

	IBaseToolAttr *ElementFor( const K &key )
	{
		auto it = m_Elements.find( key );
		if ( it == m_Elements.end() )
		{
			Element_t element;
			element.m_pAccess = std::make_unique<CMapElementAccess<M>>( this->m_pAccess, this, key );
			CUtlString text;
			KeyTraits_t::ToString( key, &text );
			element.m_pAttr = ToolAttrMakeAttribute<V, O>( text.Get(), this->GetHelpContext(), element.m_pAccess.get() );
			// Rows show the key; help is the map's.
			static_cast<CBaseToolAttr *>( element.m_pAttr.get() )->m_HelpId = this->GetHelpId();
			it = m_Elements.emplace( key, std::move( element ) ).first;
		}
		return it->second.m_pAttr.get();
	}

	struct Element_t
	{
		std::unique_ptr<IToolAttrConcreteDataAccess<V>> m_pAccess;
		std::unique_ptr<IBaseToolAttr> m_pAttr;
	};
	std::map<K, Element_t> m_Elements;
};
