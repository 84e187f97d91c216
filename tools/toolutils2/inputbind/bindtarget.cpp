#include "tools/toolutils2/inputbind/bindtarget.h"

#include <algorithm>
#include <atomic>
#include <vector>

static std::vector<IBindTargetDestructionListener *> &DestructionListeners()
{
	static std::vector<IBindTargetDestructionListener *> s_Listeners;
	return s_Listeners;
}

void BindTarget_AddDestructionListener( IBindTargetDestructionListener *pListener )
{
	auto &listeners = DestructionListeners();
	if ( std::find( listeners.begin(), listeners.end(), pListener ) == listeners.end() )
		listeners.push_back( pListener );
}

void BindTarget_RemoveDestructionListener( IBindTargetDestructionListener *pListener )
{
	auto &listeners = DestructionListeners();
	listeners.erase( std::remove( listeners.begin(), listeners.end(), pListener ), listeners.end() );
}

IBindTarget::~IBindTarget()
{
	// A copy: a listener may remove itself while it hears of the target.
	std::vector<IBindTargetDestructionListener *> listeners = DestructionListeners();
	for ( IBindTargetDestructionListener *pListener : listeners )
		pListener->OnBindTargetDestroyed( this );
}

int IBindTarget::GetBindInstanceId()
{
	static std::atomic<int> s_nNextId{ 0 };
	if ( m_nBindInstanceId < 0 )
		m_nBindInstanceId = s_nNextId++;
	return m_nBindInstanceId;
}

void CBindTargetProxy::OnInputFrame()
{
	if ( m_pTarget )
		m_pTarget->OnInputFrame();
}

void CBindTargetProxy::OnCaptureBegin()
{
	if ( m_pTarget )
		m_pTarget->OnCaptureBegin();
}

void CBindTargetProxy::OnCaptureEnd()
{
	if ( m_pTarget )
		m_pTarget->OnCaptureEnd();
}

uint32_t CBindTargetProxy::GetActiveModifiers()
{
	return m_pTarget ? m_pTarget->GetActiveModifiers() : 0;
}

const CBindTargetDescriptorBase *CBindTargetProxy::GetBindTargetDescriptor() const
{
	return m_pTarget ? m_pTarget->GetBindTargetDescriptor() : nullptr;
}

IBindTarget *CBindTargetProxy::GetBindTargetOwner()
{
	return m_pTarget ? m_pTarget->GetBindTargetOwner() : nullptr;
}

IBindTarget *CBindTargetProxy::GetBindTargetIdentity()
{
	return m_pTarget ? m_pTarget->GetBindTargetIdentity() : nullptr;
}

int CBindTargetProxy::GetBindInstanceId()
{
	return m_pTarget ? m_pTarget->GetBindInstanceId() : -1;
}
