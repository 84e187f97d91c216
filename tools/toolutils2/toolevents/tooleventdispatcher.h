#pragma once
// Synchronous event dispatch by event type. A listener is an object with a member
// function taking the event's payload; the same pair registered twice is one listener.
// Dispatch copies the listener list first, so a listener may add or remove listeners
// (its own included) while it runs. Main thread only.

#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

#include "tools/toolutils2/toolevents/tooleventtype.h"

class CToolEventDispatcher;

// Told when a dispatcher dies, so whoever holds a pointer to it can let go.
class IToolEventDispatcherLifetimeListener
{
public:
	virtual void OnDispatcherDestroyed( CToolEventDispatcher *pDispatcher ) = 0;

protected:
	~IToolEventDispatcherLifetimeListener() = default;
};

class CToolEventDispatcher
{
public:
	CToolEventDispatcher() = default;
	CToolEventDispatcher( const CToolEventDispatcher & ) = delete;
	CToolEventDispatcher &operator=( const CToolEventDispatcher & ) = delete;
	~CToolEventDispatcher();

	template <typename Event, typename T>
	void AddListener( T *pObject, void ( T::*pfnHandler )( const Event & ) )
	{
		AddListenerRecord( Event::EventType(), MakeListener( pObject, pfnHandler ) );
	}

	template <typename Event, typename T>
	void RemoveListener( T *pObject, void ( T::*pfnHandler )( const Event & ) )
	{
		RemoveListenerRecord( Event::EventType(), MakeListener( pObject, pfnHandler ) );
	}

	// Removes every listener whose object is pObject, of every event type.
	void RemoveListenersOf( const void *pObject );

	template <typename Event> void Dispatch( const Event &event ) { DispatchRecord( Event::EventType(), &event ); }

	template <typename Event> int GetListenerCount() const { return GetListenerCount( Event::EventType().m_nId ); }
	int GetListenerCount( uint32_t nEventId ) const;

	// Every dispatch here goes on in each child after this dispatcher's own listeners.
	void AddChildDispatcher( CToolEventDispatcher *pChild );
	void RemoveChildDispatcher( CToolEventDispatcher *pChild );

	void AddLifetimeListener( IToolEventDispatcherLifetimeListener *pListener );
	void RemoveLifetimeListener( IToolEventDispatcherLifetimeListener *pListener );

private:
	// A member function pointer is kept as raw bytes so listeners of any class compare equal
	// exactly when object and function are the same.
	struct Listener_t
	{
		void *m_pObject;
		unsigned char m_Handler[ 2 * sizeof( void * ) ];
		void ( *m_pfnInvoke )( void *pObject, const unsigned char *pHandler, const void *pPayload );

		bool operator==( const Listener_t &other ) const
		{
			return m_pObject == other.m_pObject && !memcmp( m_Handler, other.m_Handler, sizeof( m_Handler ) );
		}
	};

	struct EventRecord_t
	{
		const char *m_pName = nullptr;
		std::vector<Listener_t> m_Listeners;
		bool m_bDispatching = false;
	};

	template <typename Event, typename T>
	static Listener_t MakeListener( T *pObject, void ( T::*pfnHandler )( const Event & ) )
	{
		using Handler_t = void ( T::* )( const Event & );
		static_assert( sizeof( Handler_t ) <= sizeof( Listener_t::m_Handler ), "member function pointer too large" );
		Listener_t listener{};
		listener.m_pObject = pObject;
		memcpy( listener.m_Handler, &pfnHandler, sizeof( Handler_t ) );
		listener.m_pfnInvoke = []( void *pObj, const unsigned char *pHandler, const void *pPayload ) {
			Handler_t pfn;
			memcpy( &pfn, pHandler, sizeof( Handler_t ) );
			( static_cast<T *>( pObj )->*pfn )( *static_cast<const Event *>( pPayload ) );
		};
		return listener;
	}

	void AddListenerRecord( const ToolEventType_t &type, const Listener_t &listener );
	void RemoveListenerRecord( const ToolEventType_t &type, const Listener_t &listener );
	void DispatchRecord( const ToolEventType_t &type, const void *pPayload );

	std::map<uint32_t, EventRecord_t> m_Events;
	std::vector<CToolEventDispatcher *> m_Children;
	std::vector<CToolEventDispatcher *> m_Parents; // so a dying child leaves its parents
	std::vector<IToolEventDispatcherLifetimeListener *> m_LifetimeListeners;
};
