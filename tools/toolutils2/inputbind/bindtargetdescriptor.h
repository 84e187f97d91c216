#pragma once
// The commands of one class of bind target, built once as a static object. Each
// descriptor puts itself on a list of pending descriptors when it is made; the input
// bind engine takes that list over whenever it asks for the known descriptors.

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/inputbind/bindablecommand.h"
#include "tools/toolutils2/inputbind/bindtarget.h"

class CBindTargetDescriptorBase
{
public:
	CBindTargetDescriptorBase( const char *pTargetName, const char *pClassName );
	virtual ~CBindTargetDescriptorBase();
	CBindTargetDescriptorBase( const CBindTargetDescriptorBase & ) = delete;
	CBindTargetDescriptorBase &operator=( const CBindTargetDescriptorBase & ) = delete;

	uint32_t GetNameToken() const { return m_nNameToken; }
	// The context name that binding files use.
	const char *GetTargetName() const { return m_strTargetName.Get(); }
	const char *GetClassName() const { return m_strClassName.Get(); }
	int GetCommandCount() const { return int( m_Commands.size() ); }
	const CBindableCommand *GetCommand( int nIndex ) const { return m_Commands[ size_t( nIndex ) ].get(); }
	// By token; null when the descriptor has no such command.
	const CBindableCommand *FindCommand( uint32_t nToken ) const;
	const CBindableCommand *FindCommand( const char *pName ) const { return FindCommand( BindToken( pName ) ); }

	// Hands over the descriptors made since the last call, in the order they were made.
	static std::vector<const CBindTargetDescriptorBase *> TakePendingDescriptors();
	// Every descriptor of the process: takes the pending ones over into one list first.
	static const std::vector<const CBindTargetDescriptorBase *> &GetKnownDescriptors();
	// By context token; null when no known descriptor has it.
	static const CBindTargetDescriptorBase *FindKnownDescriptor( uint32_t nNameToken );

protected:
	uint32_t m_nNameToken = 0;
	CUtlString m_strTargetName;
	CUtlString m_strClassName;
	std::vector<std::unique_ptr<CBindableCommand>> m_Commands;
};

template <class T>
class CBindTargetDescriptor final : public CBindTargetDescriptorBase
{
public:
	using Handler_t = std::function<void( T * )>;

	// A command whose handlers take the target as a T. The target must derive from
	// IBindTarget; a proxy hands its owner over.
	class CSpecificTargetBindableCommand final : public CBindableCommand
	{
	public:
		using CBindableCommand::CBindableCommand;

		void Invoke( IBindTarget *pTarget, BindStage_t eStage ) const override
		{
			if ( eStage < 0 || eStage >= BIND_STAGE_COUNT || !m_Handlers[ eStage ] || !pTarget )
				return;
			IBindTarget *pOwner = pTarget->GetBindTargetOwner();
			if ( pOwner )
				m_Handlers[ eStage ]( static_cast<T *>( pOwner ) );
		}
		bool HasHandler( BindStage_t eStage ) const override
		{
			return eStage >= 0 && eStage < BIND_STAGE_COUNT && bool( m_Handlers[ eStage ] );
		}

		CSpecificTargetBindableCommand &SetHandler( BindStage_t eStage, Handler_t fn )
		{
			m_Handlers[ eStage ] = std::move( fn );
			return *this;
		}

	private:
		Handler_t m_Handlers[ BIND_STAGE_COUNT ];
	};

	using BuildFn_t = void ( * )( CBindTargetDescriptor<T> &descriptor );

	CBindTargetDescriptor( const char *pTargetName, const char *pClassName, BuildFn_t fnBuild = nullptr )
		: CBindTargetDescriptorBase( pTargetName, pClassName )
	{
		if ( fnBuild )
			fnBuild( *this );
	}

	CSpecificTargetBindableCommand &AddCommand( const char *pName )
	{
		auto pCommand = std::make_unique<CSpecificTargetBindableCommand>( pName );
		CSpecificTargetBindableCommand &command = *pCommand;
		m_Commands.push_back( std::move( pCommand ) );
		return command;
	}
	// The common case: a command that does one thing when it clicks.
	CSpecificTargetBindableCommand &AddClickCommand( const char *pName, Handler_t fn )
	{
		return AddCommand( pName ).SetHandler( BIND_STAGE_CLICK, std::move( fn ) );
	}
};
