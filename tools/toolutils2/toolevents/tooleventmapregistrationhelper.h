#pragma once
// One per listening object: the object's event map (which handler hears which event from
// which source) and the dispatchers it is attached to. Slots name the sources: 0 the
// application's hub, 1 a document, 2 a session. Attaching a slot detaches what stood
// there; a dying dispatcher empties its slot; the destructor detaches everything.

#include <functional>
#include <vector>

#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

enum ToolEventSlot_t
{
	TOOL_EVENT_SLOT_HUB = 0,
	TOOL_EVENT_SLOT_DOCUMENT = 1,
	TOOL_EVENT_SLOT_SESSION = 2,
	TOOL_EVENT_SLOT_COUNT
};

template <typename T>
class CToolEventMapRegistrationHelper : public IToolEventDispatcherLifetimeListener
{
public:
	explicit CToolEventMapRegistrationHelper( T *pOwner ) : m_pOwner( pOwner ) {}
	CToolEventMapRegistrationHelper( const CToolEventMapRegistrationHelper & ) = delete;
	CToolEventMapRegistrationHelper &operator=( const CToolEventMapRegistrationHelper & ) = delete;
	~CToolEventMapRegistrationHelper()
	{
		for ( int nSlot = 0; nSlot < TOOL_EVENT_SLOT_COUNT; ++nSlot )
			Detach( nSlot );
	}

	// Adds a handler to the map for a slot; if the slot is attached it hears at once.
	template <typename Event>
	void MapEvent( int nSlot, void ( T::*pfnHandler )( const Event & ) )
	{
		if ( nSlot < 0 || nSlot >= TOOL_EVENT_SLOT_COUNT )
			return;
		m_Entries[ nSlot ].push_back( { [ pfnHandler ]( CToolEventDispatcher *pDispatcher, T *pOwner, bool bAdd ) {
			if ( bAdd )
				pDispatcher->AddListener( pOwner, pfnHandler );
			else
				pDispatcher->RemoveListener( pOwner, pfnHandler );
		} } );
		if ( m_pAttached[ nSlot ] )
			m_Entries[ nSlot ].back().m_pfnApply( m_pAttached[ nSlot ], m_pOwner, true );
	}

	void Attach( int nSlot, CToolEventDispatcher *pDispatcher )
	{
		if ( nSlot < 0 || nSlot >= TOOL_EVENT_SLOT_COUNT )
			return;
		Detach( nSlot );
		if ( !pDispatcher )
			return;
		m_pAttached[ nSlot ] = pDispatcher;
		pDispatcher->AddLifetimeListener( this );
		for ( const Entry_t &entry : m_Entries[ nSlot ] )
			entry.m_pfnApply( pDispatcher, m_pOwner, true );
	}

	void Detach( int nSlot )
	{
		if ( nSlot < 0 || nSlot >= TOOL_EVENT_SLOT_COUNT || !m_pAttached[ nSlot ] )
			return;
		CToolEventDispatcher *pDispatcher = m_pAttached[ nSlot ];
		m_pAttached[ nSlot ] = nullptr;
		for ( const Entry_t &entry : m_Entries[ nSlot ] )
			entry.m_pfnApply( pDispatcher, m_pOwner, false );
		if ( !IsAttachedElsewhere( pDispatcher ) )
			pDispatcher->RemoveLifetimeListener( this );
	}

	CToolEventDispatcher *GetAttached( int nSlot ) const { return ( nSlot >= 0 && nSlot < TOOL_EVENT_SLOT_COUNT ) ? m_pAttached[ nSlot ] : nullptr; }

	void OnDispatcherDestroyed( CToolEventDispatcher *pDispatcher ) override
	{
		for ( CToolEventDispatcher *&pAttached : m_pAttached )
		{
			if ( pAttached == pDispatcher )
				pAttached = nullptr;
		}
	}

private:
	struct Entry_t
	{
		// Registers (true) or removes (false) this entry's handler on a dispatcher.
		std::function<void( CToolEventDispatcher *, T *, bool )> m_pfnApply;
	};

	bool IsAttachedElsewhere( const CToolEventDispatcher *pDispatcher ) const
	{
		for ( const CToolEventDispatcher *pAttached : m_pAttached )
		{
			if ( pAttached == pDispatcher )
				return true;
		}
		return false;
	}

	T *m_pOwner;
	CToolEventDispatcher *m_pAttached[ TOOL_EVENT_SLOT_COUNT ] = {};
	std::vector<Entry_t> m_Entries[ TOOL_EVENT_SLOT_COUNT ];
};
