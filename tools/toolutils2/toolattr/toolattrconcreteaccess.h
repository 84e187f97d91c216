#pragma once
// The access objects of the concrete family: how one attribute, shared by all instances,
// reaches its field in the instance that a handle names.

#include <functional>
#include <type_traits>

#include "tools/toolutils2/toolattr/itoolattrconcretedataaccess.h"
#include "tools/toolutils2/toolattr/toolattredit.h"

// A field reached by reference: writes go in place, inside the edit bracket.
template <typename T, typename O>
class CToolAttrGetForModifyAccess : public IToolAttrConcreteDataAccess<T>
{
public:
	template <typename Base>
	explicit CToolAttrGetForModifyAccess( T Base::*pMember ) : m_pMember( static_cast<T O::*>( pMember ) ) {}

	const T &Get( HToolAttrTableInstance handle ) const override { return static_cast<const O *>( handle.m_pInstance )->*m_pMember; }
	bool CanGet( HToolAttrTableInstance handle ) const override { return handle.m_pInstance != nullptr; }
	bool CanSet( HToolAttrTableInstance handle ) const override { return handle.m_pInstance != nullptr; }
	T &BeginEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) override
	{
		BeginAttrEdit( handle, pAttr, nFlags );
		return static_cast<O *>( handle.m_pInstance )->*m_pMember;
	}
	void EndEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) override
	{
		if ( m_fnPostModify )
			m_fnPostModify( static_cast<O *>( handle.m_pInstance ) );
		EndAttrEdit( handle, pAttr, nFlags );
	}

	std::function<void( O * )> m_fnPostModify; // the owner's optional post-modify step

private:
	T O::*m_pMember;
};

// A value reached through the owner's getter and setter. An edit copies the value into a
// cache, the caller writes the cache, and the setter sees the complete value. The cache is
// shared, so one such edit may be open per attribute at a time (the UI thread guarantees it).
template <typename T, typename O>
class CToolAttrGetSetAccess : public IToolAttrConcreteDataAccess<T>
{
public:
	using Getter_t = T ( O::* )() const;
	using Setter_t = void ( O::* )( const T & );
	CToolAttrGetSetAccess( Getter_t pfnGet, Setter_t pfnSet ) : m_pfnGet( pfnGet ), m_pfnSet( pfnSet ) {}

	const T &Get( HToolAttrTableInstance handle ) const override
	{
		m_Read = ( static_cast<const O *>( handle.m_pInstance )->*m_pfnGet )();
		return m_Read;
	}
	bool CanGet( HToolAttrTableInstance handle ) const override { return handle.m_pInstance != nullptr; }
	bool CanSet( HToolAttrTableInstance handle ) const override { return handle.m_pInstance != nullptr && m_pfnSet != nullptr; }
	T &BeginEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) override
	{
		m_nToken = BeginAttrEditWithToken( handle, pAttr, nFlags );
		m_Cache = ( static_cast<const O *>( handle.m_pInstance )->*m_pfnGet )();
		return m_Cache;
	}
	void EndEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) override
	{
		ClearAttrEditToken( handle, pAttr );
		m_nToken = -1;
		if ( m_pfnSet )
			( static_cast<O *>( handle.m_pInstance )->*m_pfnSet )( m_Cache );
		EndAttrEdit( handle, pAttr, nFlags );
	}

private:
	Getter_t m_pfnGet;
	Setter_t m_pfnSet;
	int64_t m_nToken = -1;
	T m_Cache{};
	mutable T m_Read{};
};
