#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"

#include <algorithm>

// Both lists outlive every descriptor: descriptors are statics of several shared
// libraries, and a list destroyed at exit before one of them would be read after free
// when that descriptor leaves it.
static std::vector<const CBindTargetDescriptorBase *> &PendingDescriptors()
{
	static auto *s_pPending = new std::vector<const CBindTargetDescriptorBase *>();
	return *s_pPending;
}

static std::vector<const CBindTargetDescriptorBase *> &KnownDescriptors()
{
	static auto *s_pKnown = new std::vector<const CBindTargetDescriptorBase *>();
	return *s_pKnown;
}

CBindTargetDescriptorBase::CBindTargetDescriptorBase( const char *pTargetName, const char *pClassName )
	: m_nNameToken( BindToken( pTargetName ) ), m_strTargetName( pTargetName ), m_strClassName( pClassName )
{
	PendingDescriptors().push_back( this );
}

CBindTargetDescriptorBase::~CBindTargetDescriptorBase()
{
	auto &pending = PendingDescriptors();
	pending.erase( std::remove( pending.begin(), pending.end(), this ), pending.end() );
	auto &known = KnownDescriptors();
	known.erase( std::remove( known.begin(), known.end(), this ), known.end() );
}

const CBindableCommand *CBindTargetDescriptorBase::FindCommand( uint32_t nToken ) const
{
	for ( const auto &pCommand : m_Commands )
	{
		if ( pCommand->GetToken() == nToken )
			return pCommand.get();
	}
	return nullptr;
}

std::vector<const CBindTargetDescriptorBase *> CBindTargetDescriptorBase::TakePendingDescriptors()
{
	std::vector<const CBindTargetDescriptorBase *> taken;
	taken.swap( PendingDescriptors() );
	return taken;
}

const std::vector<const CBindTargetDescriptorBase *> &CBindTargetDescriptorBase::GetKnownDescriptors()
{
	auto &known = KnownDescriptors();
	for ( const CBindTargetDescriptorBase *pDescriptor : TakePendingDescriptors() )
		known.push_back( pDescriptor );
	return known;
}

const CBindTargetDescriptorBase *CBindTargetDescriptorBase::FindKnownDescriptor( uint32_t nNameToken )
{
	for ( const CBindTargetDescriptorBase *pDescriptor : GetKnownDescriptors() )
	{
		if ( pDescriptor->GetNameToken() == nNameToken )
			return pDescriptor;
	}
	return nullptr;
}
