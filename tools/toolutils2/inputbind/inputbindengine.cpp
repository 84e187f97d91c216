#include "tools/toolutils2/inputbind/inputbindengine.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <string>
#include <string_view>

#include "core/host/iprompt.h"
#include "core/logging/logging.h"
#include "core/platform/fatalerror.h"
#include "core/platform/platformtime.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"

LoggingChannelID_t LOG_INPUTBIND()
{
	static const LoggingChannelID_t s_nChannel = LoggingSystem_RegisterLoggingChannel( "InputBind" );
	return s_nChannel;
}

CInputBindEngine::CInputBindEngine( IInputBindEngineHost *pHost ) : m_pHost( pHost )
{
	BindTarget_AddDestructionListener( this );
}

CInputBindEngine::~CInputBindEngine()
{
	BindTarget_RemoveDestructionListener( this );
}

// ---------------------------------------------------------------------------------------
// Loading

bool CInputBindEngine::LoadBindings( const char *pPath, const char *pPathID )
{
	CUtlString strError;
	BindingLoadResult_t eResult = m_Bindings.LoadFromFile( pPath, pPathID, &strError );
	if ( eResult != BINDING_LOAD_OK )
	{
		CUtlString strDetail;
		strDetail.Format( "%s: %s", pPath, strError.Get() );
		Log_Warning( LOG_INPUTBIND(), "Failed to load bindings (%s)\n", strDetail.Get() );
		CUtlString strText;
		if ( eResult == BINDING_LOAD_CANNOT_READ )
			strText.Format( "ERROR: Failed to open file for key bindings:\n%s\n", pPath );
		else
			strText.Format( "ERROR: Failed to read key bindings from:\n%s\n", pPath );
		GetPrompt()->Warning( "Input Binding Error", strText );
		return false;
	}
	if ( m_pHost )
		m_pHost->OnBindingsChanged();
	MarkDirty();
	return true;
}

// ---------------------------------------------------------------------------------------
// Key state

void CInputBindEngine::SetKeyState( InputCode_t nCode, bool bDown )
{
	if ( nCode < INPUT_CODE_COUNT )
		m_KeyState[ nCode ] = bDown;
}

bool CInputBindEngine::IsKeyDown( InputCode_t nCode ) const
{
	return nCode < INPUT_CODE_COUNT && m_KeyState[ nCode ];
}

void CInputBindEngine::ForceRescanOfActiveKeys()
{
	TraceLine( "* ForceRescanOfActiveKeys\n" );
	if ( !m_pHost )
		return;
	for ( InputCode_t nCode = 1; nCode < INPUT_CODE_COUNT; ++nCode )
		m_KeyState[ nCode ] = m_pHost->IsCodePhysicallyDown( nCode );
}

// ---------------------------------------------------------------------------------------
// Active bindings

void CInputBindEngine::MarkDirty()
{
	m_bDirty = true;
	if ( m_nDepth == 0 )
		UpdateActiveBindings();
}

void CInputBindEngine::UpdateActiveBindings()
{
	if ( m_bDirty && m_nDepth == 0 )
		RebuildNow();
}

bool CInputBindEngine::IsTargetInChain( const IBindTarget *pTarget ) const
{
	for ( const BindChainLink_t &link : m_Chain )
	{
		if ( link.m_pTargets && link.m_pTargets->HasTarget( pTarget ) )
			return true;
	}
	return false;
}

void CInputBindEngine::RebuildNow()
{
	m_bDirty = false;
	++m_nRebuildCount;

	// Codes released while nobody listened (focus moved to another program) end now.
	if ( m_pHost )
	{
		std::vector<ActiveCode_t> active = m_ActiveCodes;
		for ( const ActiveCode_t &code : active )
		{
			if ( !m_pHost->IsCodePhysicallyDown( code.m_nCode ) )
			{
				SetKeyState( code.m_nCode, false );
				HandleInputCode( code.m_nCode, INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE );
			}
		}
	}

	m_Chain.clear();
	if ( m_pHost )
		m_pHost->BuildFocusChain( &m_Chain );

	for ( size_t i = 0; i < m_Gestures.size(); ++i )
	{
		BindGesture_t &gesture = *m_Gestures[ i ];
		// Gestures started from code (menus) have no widget and don't depend on focus.
		if ( !gesture.IsRunning() || gesture.m_nBinding < 0 || IsTargetInChain( gesture.m_pTarget ) )
			continue;
		Trace( "EXEC-INVALID-END", gesture );
		EndGesture( gesture, true );
	}

	RebuildMatchStates();

	if ( !m_ActiveCodes.empty() )
	{
		TraceLine( "* Rehandling active codes\n" );
		std::vector<ActiveCode_t> active = m_ActiveCodes;
		for ( const ActiveCode_t &code : active )
			StartModifiersOfCode( code.m_nCode );
	}
}

void CInputBindEngine::RebuildMatchStates()
{
	m_MatchStates.clear();
	const std::vector<InputBinding_t> &bindings = m_Bindings.GetBindings();
	for ( int nLink = 0; nLink < int( m_Chain.size() ); ++nLink )
	{
		const CBindTargetSet *pSet = m_Chain[ size_t( nLink ) ].m_pTargets;
		if ( !pSet )
			continue;
		for ( IBindTarget *pTarget : pSet->GetTargets() )
		{
			const CBindTargetDescriptorBase *pDescriptor = pTarget->GetBindTargetDescriptor();
			if ( !pDescriptor )
				continue;
			for ( int nCommand = 0; nCommand < pDescriptor->GetCommandCount(); ++nCommand )
			{
				const CBindableCommand *pCommand = pDescriptor->GetCommand( nCommand );
				for ( int nBinding = 0; nBinding < int( bindings.size() ); ++nBinding )
				{
					const InputBinding_t &binding = bindings[ size_t( nBinding ) ];
					if ( binding.m_nContextToken == pDescriptor->GetNameToken() && binding.m_nCommandToken == pCommand->GetToken() && !binding.m_Sequence.empty() )
						m_MatchStates.push_back( { nBinding, pCommand, pTarget, nLink, pDescriptor } );
				}
			}
		}
	}
}

// ---------------------------------------------------------------------------------------
// Input events

bool CInputBindEngine::MatchesCode( const InputBinding_t &binding, InputCode_t nCode ) const
{
	if ( binding.m_Sequence.empty() || binding.m_Sequence.back() != nCode )
		return false;
	for ( size_t i = 0; i + 1 < binding.m_Sequence.size(); ++i )
	{
		if ( !IsKeyDown( binding.m_Sequence[ i ] ) )
			return false;
	}
	return true;
}

bool CInputBindEngine::IsBindingRunning( int nBinding, const IBindTarget *pTarget ) const
{
	for ( const auto &pGesture : m_Gestures )
	{
		if ( pGesture->IsRunning() && pGesture->m_nBinding == nBinding && pGesture->m_pTarget == pTarget )
			return true;
	}
	return false;
}

BindGesture_t *CInputBindEngine::FindGesture( const CBindableCommand *pCommand, const IBindTarget *pTarget )
{
	for ( const auto &pGesture : m_Gestures )
	{
		if ( pGesture->IsRunning() && pGesture->m_pCommand == pCommand && pGesture->m_pTarget == pTarget )
			return pGesture.get();
	}
	return nullptr;
}

namespace
{
// Keeps the depth of nested input handling right on every way out.
struct CDepthGuard
{
	explicit CDepthGuard( int &nDepth ) : m_nDepth( nDepth ) { ++m_nDepth; }
	~CDepthGuard() { --m_nDepth; }
	int &m_nDepth;
};
} // namespace

void CInputBindEngine::HandleInputCode( InputCode_t nCode, int nKind, unsigned nFlags )
{
	if ( nCode >= INPUT_CODE_COUNT )
		return;
	if ( m_nDepth >= BIND_MAX_INPUT_RECURSION )
		Plat_FatalError( "CInputBindManager::HandleInputCode recursion depth got too deep.\n" );
	CDepthGuard guard( m_nDepth );
	if ( m_pTraceListener )
		m_pTraceListener->OnInputCode( nCode, nKind );
	if ( m_nDepth == 1 && m_bDirty )
		RebuildNow();

	if ( nFlags & INPUT_EVENT_TRACK_ACTIVE )
	{
		if ( nKind == INPUT_EVENT_RELEASE )
		{
			TraceLine( "- Remove Active Code: %s\n", InputCodeName( nCode ) );
			m_ActiveCodes.erase( std::remove_if( m_ActiveCodes.begin(), m_ActiveCodes.end(), [ nCode ]( const ActiveCode_t &code ) { return code.m_nCode == nCode; } ), m_ActiveCodes.end() );
		}
		else if ( nKind == INPUT_EVENT_PRESS )
		{
			TraceLine( "- Add Active Code: %s\n", InputCodeName( nCode ) );
			m_ActiveCodes.push_back( { nCode, nKind } );
		}
	}

	if ( nKind == INPUT_EVENT_RELEASE )
	{
		EndGesturesOfCode( nCode );
		return;
	}

	// Copies: handlers may change focus and so the match states.
	const std::vector<InputBinding_t> &bindings = m_Bindings.GetBindings();
	std::vector<MatchState_t> matches;
	for ( const MatchState_t &match : m_MatchStates )
	{
		if ( MatchesCode( bindings[ size_t( match.m_nBinding ) ], nCode ) )
			matches.push_back( match );
	}

	if ( nKind == INPUT_EVENT_REPEAT )
	{
		for ( const MatchState_t &match : matches )
		{
			BindGesture_t *pGesture = FindGesture( match.m_pCommand, match.m_pTarget );
			if ( pGesture && !pGesture->m_bSuppressed )
				RunStage( *pGesture, BIND_STAGE_REPEAT );
		}
		return;
	}

	std::vector<MatchState_t> candidates;
	size_t nLongest = 0;
	for ( const MatchState_t &match : matches )
	{
		if ( IsBindingRunning( match.m_nBinding, match.m_pTarget ) )
			continue;
		uint32_t nRequired = match.m_pCommand->GetRequiredModifiers();
		if ( nRequired && ( match.m_pTarget->GetActiveModifiers() & nRequired ) != nRequired )
			continue;
		if ( match.m_pCommand->IsModifierCommand() )
		{
			StartGesture( match, nCode, "EXEC-BEGIN-MODIFIER" );
			continue;
		}
		size_t nLength = bindings[ size_t( match.m_nBinding ) ].m_Sequence.size();
		if ( nLength > nLongest )
		{
			candidates.clear();
			nLongest = nLength;
		}
		if ( nLength == nLongest )
			candidates.push_back( match );
	}

	bool bDragTried = false;
	bool bOtherTried = false;
	const int nRebuildCount = m_nRebuildCount;
	for ( const MatchState_t &match : candidates )
	{
		bool &bTried = match.m_pCommand->IsDragCommand() ? bDragTried : bOtherTried;
		if ( bTried )
			continue;
		bTried = true;
		StartGesture( match, nCode, nullptr );
		if ( m_nRebuildCount != nRebuildCount )
			break;
	}
}

void CInputBindEngine::StartModifiersOfCode( InputCode_t nCode )
{
	const std::vector<InputBinding_t> &bindings = m_Bindings.GetBindings();
	std::vector<MatchState_t> modifiers;
	for ( const MatchState_t &match : m_MatchStates )
	{
		if ( match.m_pCommand->IsModifierCommand() && MatchesCode( bindings[ size_t( match.m_nBinding ) ], nCode ) && !IsBindingRunning( match.m_nBinding, match.m_pTarget ) )
			modifiers.push_back( match );
	}
	for ( const MatchState_t &match : modifiers )
		StartGesture( match, nCode, "EXEC-BEGIN-MODIFIER" );
}

// ---------------------------------------------------------------------------------------
// Gestures

bool CInputBindEngine::AnyDragging( const BindGesture_t *pExcept ) const
{
	for ( const auto &pGesture : m_Gestures )
	{
		if ( pGesture.get() != pExcept && pGesture->IsRunning() && pGesture->m_bDragged )
			return true;
	}
	return false;
}

BindGesture_t *CInputBindEngine::StartGesture( const MatchState_t &match, InputCode_t nCode, const char *pTraceEvent )
{
	auto pGesture = std::make_unique<BindGesture_t>();
	BindGesture_t &gesture = *pGesture;
	gesture.m_nBinding = match.m_nBinding;
	gesture.m_pCommand = match.m_pCommand;
	gesture.m_pTarget = match.m_pTarget;
	gesture.m_pWidget = match.m_nLink >= 0 && match.m_nLink < int( m_Chain.size() ) ? m_Chain[ size_t( match.m_nLink ) ].m_pWidget : nullptr;
	gesture.m_pDescriptor = match.m_pDescriptor;
	gesture.m_nCode = nCode;
	gesture.m_bWaitsForRelease = InputCodeIsMouse( nCode ) || ( match.m_pCommand->GetFlags() & BIND_FLAGS_WAIT_FOR_RELEASE );
	if ( match.m_pCommand->IsDragCommand() )
	{
		gesture.m_eState = BIND_GESTURE_BEFORE_DRAG;
	}
	else
	{
		gesture.m_eState = BIND_GESTURE_ACTIVE;
		gesture.m_bDragPending = true;
		gesture.m_flHeldTime = Plat_FloatTime() + BIND_HELD_DELAY_SECONDS;
	}
	if ( match.m_pCommand->CapturesMouse() )
	{
		for ( const auto &pOther : m_Gestures )
		{
			if ( pOther->IsRunning() && pOther->m_pCommand->IsDragCommand() )
			{
				gesture.m_bSuppressed = true;
				break;
			}
		}
	}
	if ( !pTraceEvent )
		pTraceEvent = gesture.m_bSuppressed ? "EXEC-BEGIN_SUPPRESSED" : "EXEC-BEGIN";
	Trace( pTraceEvent, gesture );
	m_Gestures.push_back( std::move( pGesture ) );
	if ( !gesture.m_bSuppressed )
		BeginGesture( gesture );
	return &gesture;
}

void CInputBindEngine::BeginGesture( BindGesture_t &gesture )
{
	if ( gesture.m_pCommand->CapturesMouse() )
		BeginCapture( gesture );
	RunStage( gesture, BIND_STAGE_PRESS );
	if ( !gesture.m_bWaitsForRelease && gesture.IsRunning() )
		RunStage( gesture, BIND_STAGE_CLICK );
}

void CInputBindEngine::EndGesturesOfCode( InputCode_t nCode )
{
	// By index: a handler may start gestures while these end.
	for ( size_t i = 0; i < m_Gestures.size(); ++i )
	{
		BindGesture_t &gesture = *m_Gestures[ i ];
		if ( gesture.m_nCode == nCode )
			EndGesture( gesture, true );
	}
}

void CInputBindEngine::EndGesture( BindGesture_t &gesture, bool bRunStages )
{
	if ( gesture.m_eState == BIND_GESTURE_CANCELLED )
	{
		gesture.m_eState = BIND_GESTURE_ENDED;
		return;
	}
	if ( !gesture.IsRunning() )
		return;
	Trace( gesture.m_bSuppressed ? "EXEC-END_SUPPRESSED" : "EXEC-END", gesture );
	const bool bWasDrag = gesture.m_bDragged;
	// Ended first, so a handler that reaches back here finds it gone.
	gesture.m_eState = BIND_GESTURE_ENDED;
	if ( bRunStages && !gesture.m_bSuppressed && gesture.m_pTarget )
	{
		if ( gesture.m_bWaitsForRelease && !gesture.m_bDragged && !AnyDragging( &gesture ) )
			RunStage( gesture, BIND_STAGE_CLICK );
		if ( gesture.m_pCommand->CapturesMouse() )
			EndCapture( gesture );
		RunStage( gesture, BIND_STAGE_RELEASE );
	}
	else if ( !gesture.m_bSuppressed && gesture.m_pCommand->CapturesMouse() )
	{
		EndCapture( gesture );
	}
	if ( !bWasDrag )
		return;
	for ( size_t i = 0; i < m_Gestures.size(); ++i )
	{
		BindGesture_t &waiting = *m_Gestures[ i ];
		if ( waiting.IsRunning() && waiting.m_bSuppressed )
		{
			Trace( "EXEC-BEGIN (UNSUPRESSED)", waiting );
			waiting.m_bSuppressed = false;
			BeginGesture( waiting );
			break;
		}
	}
}

void CInputBindEngine::RunStage( const BindGesture_t &gesture, BindStage_t eStage )
{
	if ( gesture.m_pCommand && gesture.m_pTarget )
		gesture.m_pCommand->Invoke( gesture.m_pTarget, eStage );
}

int CInputBindEngine::GetRunningGestureCount() const
{
	int nCount = 0;
	for ( const auto &pGesture : m_Gestures )
		nCount += pGesture->IsRunning() ? 1 : 0;
	return nCount;
}

// ---------------------------------------------------------------------------------------
// Frames

void CInputBindEngine::RunMouseFrame( float flDeltaX, float flDeltaY )
{
	if ( flDeltaX != 0.0f || flDeltaY != 0.0f )
	{
		const int nPixels = int( std::sqrt( flDeltaX * flDeltaX + flDeltaY * flDeltaY ) );
		const double flNow = Plat_FloatTime();
		BindGesture_t *pFirstDrag = nullptr;
		for ( size_t i = 0; i < m_Gestures.size(); ++i )
		{
			BindGesture_t &gesture = *m_Gestures[ i ];
			if ( !gesture.IsRunning() || gesture.m_bSuppressed )
				continue;
			gesture.m_nDistance += nPixels;
			if ( gesture.m_eState == BIND_GESTURE_BEFORE_DRAG && gesture.m_nDistance >= BIND_DRAG_THRESHOLD_PIXELS )
			{
				gesture.m_eState = BIND_GESTURE_ACTIVE;
				gesture.m_bDragPending = true;
				gesture.m_flHeldTime = flNow + BIND_HELD_DELAY_SECONDS;
			}
			if ( gesture.m_eState < BIND_GESTURE_ACTIVE || !gesture.m_pCommand->HasHandler( BIND_STAGE_DRAG ) )
				continue;
			if ( gesture.m_bDragPending )
			{
				gesture.m_bDragPending = false;
				RunStage( gesture, BIND_STAGE_DRAG_START );
			}
			RunStage( gesture, BIND_STAGE_DRAG );
			if ( gesture.m_pCommand->IsDragCommand() )
			{
				gesture.m_bDragged = true;
				if ( !pFirstDrag )
					pFirstDrag = &gesture;
			}
		}
		if ( pFirstDrag )
		{
			// A real drag takes over: clicks that wait for their release would fire wrongly.
			for ( size_t i = 0; i < m_Gestures.size(); ++i )
			{
				BindGesture_t &other = *m_Gestures[ i ];
				if ( &other == pFirstDrag || !other.IsRunning() || !other.m_bWaitsForRelease || other.m_pCommand->IsModifierCommand() || other.m_pCommand->IsDragCommand() )
					continue;
				other.m_eState = BIND_GESTURE_CANCELLED;
				if ( !other.m_bSuppressed )
				{
					Trace( "Binding removed due to active drag", other );
					RunStage( other, BIND_STAGE_CANCELLED );
				}
			}
		}
	}

	std::vector<IBindTarget *> framed;
	for ( const BindChainLink_t &link : m_Chain )
	{
		if ( !link.m_bVisible || !link.m_pTargets )
			continue;
		for ( IBindTarget *pTarget : link.m_pTargets->GetTargets() )
		{
			if ( std::find( framed.begin(), framed.end(), pTarget ) == framed.end() )
				framed.push_back( pTarget );
		}
	}
	for ( IBindTarget *pTarget : framed )
		pTarget->OnInputFrame();

	if ( !m_CaptureStack.empty() && ( m_nCaptureFlags & BIND_FLAG_CAPTURE_MODE_1 ) && m_pHost )
		m_pHost->PinCapturedCursor();
}

void CInputBindEngine::RunPostFrame()
{
	m_Gestures.erase( std::remove_if( m_Gestures.begin(), m_Gestures.end(), []( const std::unique_ptr<BindGesture_t> &pGesture ) { return !pGesture->IsRunning(); } ), m_Gestures.end() );
	const double flNow = Plat_FloatTime();
	for ( size_t i = 0; i < m_Gestures.size(); ++i )
	{
		BindGesture_t &gesture = *m_Gestures[ i ];
		if ( !gesture.IsRunning() )
			continue;
		if ( gesture.m_flHeldTime >= 0.0 && flNow >= gesture.m_flHeldTime )
		{
			Trace( "EXEC-HELD", gesture );
			gesture.m_flHeldTime = -1.0;
			gesture.m_eState = BIND_GESTURE_HELD;
			if ( !gesture.m_bSuppressed )
				RunStage( gesture, BIND_STAGE_HELD );
		}
		else if ( gesture.m_eState == BIND_GESTURE_ACTIVE )
		{
			gesture.m_eState = BIND_GESTURE_RUNNING;
		}
	}
}

// ---------------------------------------------------------------------------------------
// Commands from code, targets and widgets that go

bool CInputBindEngine::InvokeCommand( IBindTarget *pTarget, uint32_t nCommandToken )
{
	if ( !pTarget )
		return false;
	UpdateActiveBindings();
	const CBindTargetDescriptorBase *pDescriptor = pTarget->GetBindTargetDescriptor();
	const CBindableCommand *pCommand = pDescriptor ? pDescriptor->FindCommand( nCommandToken ) : nullptr;
	if ( !pCommand )
		return false;
	MatchState_t match = { -1, pCommand, pTarget, -1, pDescriptor };
	for ( int nLink = 0; nLink < int( m_Chain.size() ); ++nLink )
	{
		if ( m_Chain[ size_t( nLink ) ].m_pTargets && m_Chain[ size_t( nLink ) ].m_pTargets->HasTarget( pTarget ) )
		{
			match.m_nLink = nLink;
			break;
		}
	}
	CDepthGuard guard( m_nDepth );
	BindGesture_t *pGesture = StartGesture( match, INPUT_CODE_NONE, nullptr );
	// No key will be released: the gesture ends as it began, clicking if it waited.
	if ( pGesture->IsRunning() && !pGesture->m_bSuppressed )
		EndGesture( *pGesture, true );
	return true;
}

void CInputBindEngine::UnregisterTarget( IBindTarget *pTarget )
{
	for ( size_t i = 0; i < m_Gestures.size(); ++i )
	{
		BindGesture_t &gesture = *m_Gestures[ i ];
		if ( gesture.m_pTarget == pTarget )
			EndGesture( gesture, true );
	}
	m_MatchStates.erase( std::remove_if( m_MatchStates.begin(), m_MatchStates.end(), [ pTarget ]( const MatchState_t &match ) { return match.m_pTarget == pTarget; } ), m_MatchStates.end() );
	MarkDirty();
}

void CInputBindEngine::OnBindTargetDestroyed( IBindTarget *pTarget )
{
	// Nothing may run on a target that is being destroyed.
	for ( const auto &pGesture : m_Gestures )
	{
		if ( pGesture->m_pTarget == pTarget )
		{
			if ( pGesture->IsRunning() && pGesture->m_pCommand->CapturesMouse() && !pGesture->m_bSuppressed )
				EndCapture( *pGesture );
			pGesture->m_pTarget = nullptr;
			pGesture->m_eState = BIND_GESTURE_ENDED;
		}
	}
	m_MatchStates.erase( std::remove_if( m_MatchStates.begin(), m_MatchStates.end(), [ pTarget ]( const MatchState_t &match ) { return match.m_pTarget == pTarget; } ), m_MatchStates.end() );
	m_bDirty = true;
}

void CInputBindEngine::ForgetWidget( void *pWidget )
{
	if ( !pWidget )
		return;
	for ( const auto &pGesture : m_Gestures )
	{
		if ( pGesture->m_pWidget == pWidget && pGesture->IsRunning() )
		{
			pGesture->m_eState = BIND_GESTURE_ENDED;
			pGesture->m_pWidget = nullptr;
		}
	}
	if ( std::find( m_CaptureStack.begin(), m_CaptureStack.end(), pWidget ) != m_CaptureStack.end() )
	{
		TraceLine( "End mouse capture [%i] due to hidden widget\n", int( m_CaptureStack.size() ) );
		m_CaptureStack.erase( std::remove( m_CaptureStack.begin(), m_CaptureStack.end(), pWidget ), m_CaptureStack.end() );
		if ( m_CaptureStack.empty() && m_pHost )
			m_pHost->OnMouseCaptureStop( pWidget, m_nCaptureFlags );
	}
	m_Chain.erase( std::remove_if( m_Chain.begin(), m_Chain.end(), [ pWidget ]( const BindChainLink_t &link ) { return link.m_pWidget == pWidget; } ), m_Chain.end() );
	RebuildMatchStates();
	MarkDirty();
}

// ---------------------------------------------------------------------------------------
// Capture

void CInputBindEngine::BeginCapture( const BindGesture_t &gesture )
{
	CUtlString strName;
	DescribeGesture( gesture, &strName );
	TraceLine( "Begin mouse capture [%i]: %s\n", int( m_CaptureStack.size() ), strName.Get() );
	if ( m_CaptureStack.empty() )
	{
		m_nCaptureFlags = gesture.m_pCommand->GetFlags();
		if ( m_pHost )
			m_pHost->OnMouseCaptureStart( gesture.m_pWidget, m_nCaptureFlags );
		for ( const BindChainLink_t &link : m_Chain )
		{
			if ( link.m_pWidget == gesture.m_pWidget && link.m_pTargets )
			{
				for ( IBindTarget *pTarget : link.m_pTargets->GetTargets() )
					pTarget->OnCaptureBegin();
				break;
			}
		}
	}
	m_CaptureStack.push_back( gesture.m_pWidget );
}

void CInputBindEngine::EndCapture( const BindGesture_t &gesture )
{
	if ( m_CaptureStack.empty() )
		return;
	CUtlString strName;
	DescribeGesture( gesture, &strName );
	m_CaptureStack.pop_back();
	TraceLine( "End mouse capture [%i]: %s\n", int( m_CaptureStack.size() ), strName.Get() );
	if ( !m_CaptureStack.empty() )
		return;
	for ( const BindChainLink_t &link : m_Chain )
	{
		if ( link.m_pWidget == gesture.m_pWidget && link.m_pTargets )
		{
			for ( IBindTarget *pTarget : link.m_pTargets->GetTargets() )
				pTarget->OnCaptureEnd();
			break;
		}
	}
	if ( m_pHost )
		m_pHost->OnMouseCaptureStop( gesture.m_pWidget, m_nCaptureFlags );
}

// ---------------------------------------------------------------------------------------
// Texts

void CInputBindEngine::GetBindingText( IBindTarget *pTarget, uint32_t nCommandToken, CUtlString *pText ) const
{
	pText->Clear();
	const CBindTargetDescriptorBase *pDescriptor = pTarget ? pTarget->GetBindTargetDescriptor() : nullptr;
	if ( !pDescriptor )
		return;
	if ( const InputBinding_t *pBinding = m_Bindings.FindBinding( pDescriptor->GetNameToken(), nCommandToken ) )
		CInputBindingList::FormatSequence( pBinding->m_Sequence, pText );
}

void CInputBindEngine::DescribeGesture( const BindGesture_t &gesture, CUtlString *pText ) const
{
	pText->Format( "%s.%s", gesture.m_pDescriptor ? gesture.m_pDescriptor->GetTargetName() : "?", gesture.m_pCommand ? gesture.m_pCommand->GetName() : "?" );
}

void CInputBindEngine::Trace( const char *pEvent, const BindGesture_t &gesture ) const
{
	if ( !IsTracing() )
		return;
	CUtlString strName;
	DescribeGesture( gesture, &strName );
	TraceLine( "%s: %s\n", pEvent, strName.Get() );
}

bool CInputBindEngine::IsTracing() const
{
	return m_pTraceListener || LoggingSystem_IsChannelEnabled( LOG_INPUTBIND(), LS_DETAILED );
}

void CInputBindEngine::TraceLine( const char *pFormat, ... ) const
{
	if ( !IsTracing() )
		return;
	CUtlString strLine;
	va_list args;
	va_start( args, pFormat );
	strLine.FormatV( pFormat, args );
	va_end( args );
	LoggingSystem_Log( LOG_INPUTBIND(), LS_DETAILED, "%s", strLine.Get() );
	if ( m_pTraceListener )
	{
		std::string_view line( strLine.Get() );
		while ( !line.empty() && line.back() == '\n' )
			line.remove_suffix( 1 );
		m_pTraceListener->OnTraceLine( std::string( line ).c_str() );
	}
}
