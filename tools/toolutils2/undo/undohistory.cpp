#include "tools/toolutils2/undo/undohistory.h"

#include <algorithm>
#include <iterator>

#include "tools/toolutils2/undo/undoable.h"
#include "tools/toolutils2/undo/undoobjecthost.h"

static bool s_bUndoRecordingEnabled = true;

void CUndoHistory::SetRecordingEnabled( bool bEnabled )
{
	s_bUndoRecordingEnabled = bEnabled;
}

bool CUndoHistory::IsRecordingEnabled()
{
	return s_bUndoRecordingEnabled;
}

CUndoHistory::CUndoHistory( int nStepLimit, IUndoObjectHost *pObjectHost )
	: m_nStepLimit( std::clamp( nStepLimit, MIN_STEP_LIMIT, MAX_STEP_LIMIT ) ), m_pObjectHost( pObjectHost )
{
}

CUndoHistory::~CUndoHistory()
{
	DestroyAllSteps();
	if ( m_pPartner && m_pPartner->m_pPartner == this )
		m_pPartner->m_pPartner = nullptr;
}

void CUndoHistory::SetPartner( bool bPrimary, CUndoHistory *pPartner )
{
	if ( pPartner == this )
		pPartner = nullptr;
	if ( m_pPartner && m_pPartner != pPartner && m_pPartner->m_pPartner == this )
		m_pPartner->m_pPartner = nullptr;
	m_bPrimary = bPrimary;
	m_pPartner = pPartner;
	if ( pPartner )
	{
		pPartner->m_pPartner = this;
		pPartner->m_bPrimary = !bPrimary;
	}
}

void CUndoHistory::AddListener( IUndoListener *pListener )
{
	m_Listeners.push_back( pListener );
}

void CUndoHistory::RemoveListener( IUndoListener *pListener )
{
	auto it = std::find( m_Listeners.begin(), m_Listeners.end(), pListener );
	if ( it != m_Listeners.end() )
		m_Listeners.erase( it );
}

bool CUndoHistory::PassesGuard() const
{
	return s_bUndoRecordingEnabled && m_nState == STATE_IDLE && m_bEnabled;
}

CUndoHistory *CUndoHistory::GetMapOwner()
{
	return ( m_bPrimary || !m_pPartner ) ? this : m_pPartner;
}

bool CUndoHistory::BeginStep( const char *pName, const UndoMergeInfo_t *pMerge )
{
	// While either side of the pair applies a step, a new step would catch the records
	// that the undo or redo still has to make.
	if ( m_bOpeningStep || !PassesGuard() || ( m_pPartner && m_pPartner->IsBusy() ) )
		return false;
	m_bOpeningStep = true;
	OpenStep( pName, false, pMerge );
	SendEvent( UNDO_EVENT_STEP_OPENED );
	m_bOpeningStep = false;
	return true;
}

void CUndoHistory::OpenStep( const char *pName, bool bFromUndo, const UndoMergeInfo_t *pMerge )
{
	// A new edit makes the redo list meaningless; the step that an undo opens on the
	// other side must not clear it.
	if ( !bFromUndo && m_bPrimary && m_pPartner )
		m_pPartner->DestroyAllSteps();

	if ( TryMerge( pName, pMerge ) )
		return;

	auto pStep = std::make_unique<CUndoStep>( this, pName );
	if ( pMerge && !pMerge->m_MergeKey.IsEmpty() )
		pStep->SetMerge( pMerge->m_MergeKey, pMerge->m_MergeData );
	m_Steps.push_back( std::move( pStep ) );
	Trim();
}

bool CUndoHistory::TryMerge( const char *pName, const UndoMergeInfo_t *pMerge )
{
	if ( !pMerge || pMerge->m_MergeKey.IsEmpty() || m_Steps.empty() )
		return false;
	CUndoStep *pLast = m_Steps.back().get();
	if ( !( pLast->GetMergeKey() == pMerge->m_MergeKey ) )
		return false;

	UndoMergeResult_t result;
	result.m_MergeKey = pMerge->m_MergeKey;
	if ( pMerge->m_pMergeFunc )
	{
		result.m_Name = pName;
		result.m_MergeData.CopyFrom( pMerge->m_MergeData );
		pMerge->m_pMergeFunc->Merge( &result, pLast->GetMergeData(), pMerge->m_MergeKey );
	}
	else
	{
		result.m_bMerge = true;
		result.m_Name = pLast->GetName();
		result.m_MergeData.CopyFrom( pLast->GetMergeData() );
	}
	if ( !result.m_bMerge )
		return false;

	if ( !result.m_Name.IsEmpty() )
		pLast->SetName( result.m_Name );
	if ( result.m_MergeKey.IsEmpty() )
		pLast->ClearMerge();
	else
		pLast->SetMerge( result.m_MergeKey, result.m_MergeData );
	return true;
}

void CUndoHistory::Trim()
{
	int nCount = GetStepCount();
	int nExcess = std::min( nCount - m_nStepLimit, nCount - 1 );
	if ( nExcess <= 0 )
		return;
	std::vector<std::unique_ptr<CUndoStep>> cut( std::make_move_iterator( m_Steps.begin() ),
												  std::make_move_iterator( m_Steps.begin() + nExcess ) );
	m_Steps.erase( m_Steps.begin(), m_Steps.begin() + nExcess );
	for ( std::unique_ptr<CUndoStep> &pStep : cut )
		pStep.reset();
}

void CUndoHistory::DestroyAllSteps()
{
	// Taken out first, so that whatever a released object does sees an empty list.
	std::vector<std::unique_ptr<CUndoStep>> steps;
	steps.swap( m_Steps );
	for ( std::unique_ptr<CUndoStep> &pStep : steps )
		pStep.reset();
}

CUndoStep *CUndoHistory::GetRecordingStep( IUndoable *pObject )
{
	if ( !pObject || !PassesGuard() )
		return nullptr;
	if ( m_Steps.empty() )
	{
		if ( m_bOpeningStep )
			return nullptr;
		OpenStep( nullptr, false, nullptr );
		SendEvent( UNDO_EVENT_STEP_OPENED );
		if ( m_Steps.empty() )
			return nullptr;
	}
	CUndoStep *pStep = m_Steps.back().get();
	if ( !pStep->GetHistory()->PassesGuard() || !pObject->IsUndoTracked() )
		return nullptr;
	return pStep;
}

bool CUndoHistory::IsDuplicate( IUndoable *pObject, const CUndoStep *pStep, UndoRecordKind_t eKind )
{
	CUndoHistory *pOwner = GetMapOwner();
	uint32_t nBit = 1u << eKind;
	auto it = pOwner->m_ObjectStepIds.find( pObject );
	if ( it != pOwner->m_ObjectStepIds.end() && it->second == pStep->GetId() )
	{
		uint32_t &nKinds = pOwner->m_ObjectKinds[ pObject ];
		if ( nKinds & nBit )
			return true;
		nKinds |= nBit;
		return false;
	}
	pOwner->m_ObjectStepIds[ pObject ] = pStep->GetId();
	pOwner->m_ObjectKinds[ pObject ] = nBit;
	return false;
}

void CUndoHistory::NoteModified( IUndoable *pObject )
{
	CUndoStep *pStep = GetRecordingStep( pObject );
	if ( !pStep || IsDuplicate( pObject, pStep, UNDO_RECORD_MODIFIED ) )
		return;

	// Whatever taking the snapshot sets off must not record.
	m_nState = STATE_BUSY;
	pObject->AddUndoRef();
	IUndoable *pState = pObject->CreateUndoState();
	if ( !pState )
	{
		pObject->ReleaseUndoRef();
		m_nState = STATE_IDLE;
		return;
	}
	auto pRecord = std::make_unique<CUndoRecord>( UNDO_RECORD_MODIFIED );
	pRecord->m_pModifiedObject = pObject;
	pRecord->m_pState = pState;
	pState->AddUndoRef();
	pRecord->m_pModifiedParent = pObject->GetUndoParent();
	pRecord->m_nModifiedIndex = pObject->GetUndoIndexInParent();
	if ( pRecord->m_pModifiedParent )
		pRecord->m_pModifiedParent->AddUndoRef();
	pState->SetHeldByHistory( true );
	pObject->OnUndoRecorded( pRecord.get() );
	pStep->AddRecord( std::move( pRecord ) );
	m_nState = STATE_IDLE;
}

UndoNoteResult_t CUndoHistory::NoteRemoved( IUndoable *pObject )
{
	CUndoStep *pStep = GetRecordingStep( pObject );
	if ( !pStep )
		return UNDO_NOTE_NOT_RECORDED;
	if ( IsDuplicate( pObject, pStep, UNDO_RECORD_REMOVED ) )
		return UNDO_NOTE_ALREADY_RECORDED;

	m_nState = STATE_BUSY;
	auto pRecord = std::make_unique<CUndoRecord>( UNDO_RECORD_REMOVED );
	pRecord->m_pRemovedObject = pObject;
	pRecord->m_pRemovedParent = pObject->GetUndoParent();
	pRecord->m_nRemovedIndex = pObject->GetUndoIndexInParent();
	pObject->AddUndoRef();
	pObject->SetHeldByHistory( true );
	pObject->OnUndoRecorded( pRecord.get() );
	pStep->AddRecord( std::move( pRecord ) );
	m_nState = STATE_IDLE;
	return UNDO_NOTE_RECORDED;
}

void CUndoHistory::NoteAdded( IUndoable *pObject )
{
	CUndoStep *pStep = GetRecordingStep( pObject );
	if ( !pStep )
		return;
	// An object may be added, removed and added again within one step; every addition
	// is recorded so that undo takes it out as often as it went in.
	IsDuplicate( pObject, pStep, UNDO_RECORD_ADDED );

	m_nState = STATE_BUSY;
	auto pRecord = std::make_unique<CUndoRecord>( UNDO_RECORD_ADDED );
	pRecord->m_pAddedObject = pObject;
	pObject->AddUndoRef();
	pObject->OnUndoRecorded( pRecord.get() );
	pStep->AddRecord( std::move( pRecord ) );
	m_nState = STATE_IDLE;
}

void CUndoHistory::PerformUndo()
{
	if ( !PassesGuard() || m_Steps.empty() )
		return;
	SendEvent( UNDO_EVENT_BEFORE_UNDO );
	if ( !PassesGuard() || m_Steps.empty() )
		return;

	if ( m_pPartner )
	{
		m_pPartner->OpenStep( m_Steps.back()->GetName(), true, nullptr );
		if ( m_pPartner->m_pObjectHost )
			m_pPartner->m_pObjectHost->OnRedoStepOpened( m_pPartner );
	}

	std::unique_ptr<CUndoStep> pStep = std::move( m_Steps.back() );
	m_Steps.pop_back();
	m_nState = STATE_BUSY;

	for ( int i = pStep->GetRecordCount() - 1; i >= 0; --i )
		ApplyRecord( pStep->GetRecord( i ) );
	for ( int i = pStep->GetRecordCount() - 1; i >= 0; --i )
	{
		CUndoRecord *pRecord = pStep->GetRecord( i );
		if ( pRecord->m_eKind == UNDO_RECORD_MODIFIED )
			pRecord->m_pModifiedObject->OnUndoStateApplied();
	}

	m_nState = STATE_IDLE;
	pStep.reset();
	SendEvent( UNDO_EVENT_AFTER_UNDO );
}

void CUndoHistory::ApplyRecord( CUndoRecord *pRecord )
{
	switch ( pRecord->m_eKind )
	{
	case UNDO_RECORD_MODIFIED:
	{
		IUndoable *pObject = pRecord->m_pModifiedObject;
		IUndoable *pState = pRecord->m_pState;
		if ( m_pPartner )
			m_pPartner->NoteModified( pObject );
		pObject->ApplyUndoState( pState );
		if ( pObject->GetUndoParent() != pRecord->m_pModifiedParent )
			pObject->SetUndoParent( pRecord->m_pModifiedParent );
		pState->SetHeldByHistory( false );
		pObject->ReleaseUndoRef();
		pState->ReleaseUndoRef();
		pState->DestroyUndoState( false );
		if ( pRecord->m_pModifiedParent )
			pRecord->m_pModifiedParent->ReleaseUndoRef();
		break;
	}
	case UNDO_RECORD_REMOVED:
	{
		IUndoable *pObject = pRecord->m_pRemovedObject;
		pObject->SetUndoParent( pRecord->m_pRemovedParent );
		if ( m_pPartner )
			m_pPartner->NoteAdded( pObject );
		pObject->SetHeldByHistory( false );
		if ( m_pObjectHost )
			m_pObjectHost->RestoreUndoObject( pObject, pRecord->m_pRemovedParent, pRecord->m_nRemovedIndex );
		pObject->ReleaseUndoRef();
		break;
	}
	case UNDO_RECORD_ADDED:
	{
		IUndoable *pObject = pRecord->m_pAddedObject;
		if ( m_pPartner )
			m_pPartner->NoteRemoved( pObject );
		if ( m_pObjectHost )
			m_pObjectHost->RemoveUndoObject( pObject );
		pObject->SetUndoParent( nullptr );
		pObject->ReleaseUndoRef();
		break;
	}
	}
	pRecord->m_bApplied = true;
}

bool CUndoHistory::CanUndo() const
{
	return !m_Steps.empty() && m_bEnabled;
}

const CUndoStep *CUndoHistory::GetStep( int n ) const
{
	if ( n < 0 || n >= GetStepCount() )
		return nullptr;
	return m_Steps[ m_Steps.size() - 1 - size_t( n ) ].get();
}

const char *CUndoHistory::GetStepName( int n ) const
{
	const CUndoStep *pStep = GetStep( n );
	return pStep ? pStep->GetName() : "";
}

const char *CUndoHistory::GetUndoName() const
{
	return GetStepName( 0 );
}

void CUndoHistory::SendEvent( UndoEvent_t eEvent )
{
	// By index: a listener may remove itself while it hears the event.
	for ( size_t i = 0; i < m_Listeners.size(); ++i )
		m_Listeners[ i ]->OnUndoEvent( eEvent );
	if ( m_pPartner )
	{
		for ( size_t i = 0; i < m_pPartner->m_Listeners.size(); ++i )
			m_pPartner->m_Listeners[ i ]->OnUndoEvent( eEvent );
	}
}
