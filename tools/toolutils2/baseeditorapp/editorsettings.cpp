#include "tools/toolutils2/baseeditorapp/editorsettings.h"

#include "core/kv3/keyvalues3.h"

void CEditorSettings::Read( const KeyValues3 *pTable )
{
	if ( !pTable || !pTable->IsTable() )
		return;
	m_bClosedCorrectly = pTable->GetMemberBool( "Closed Correctly", m_bClosedCorrectly );
	m_bPerforceIntegration = pTable->GetMemberBool( "Perforce Integration", m_bPerforceIntegration );
	m_bCustomChangelist = pTable->GetMemberBool( "Custom Changelist", m_bCustomChangelist );
	m_nTimeBetweenSaves = pTable->GetMemberInt( "Time Between Saves", m_nTimeBetweenSaves );
	m_nMaxAutosaveSpace = pTable->GetMemberInt( "Max Autosave Space 2", m_nMaxAutosaveSpace );
	m_nMaxSavesPerMap = pTable->GetMemberInt( "Max Saves Per Map", m_nMaxSavesPerMap );
	m_bLoadAutosaveOnCrash = pTable->GetMemberBool( "Load Autosave On Crash", m_bLoadAutosaveOnCrash );
	m_bAutosavesEnabled = pTable->GetMemberBool( "Autosaves Enabled", m_bAutosavesEnabled );
}

void CEditorSettings::Write( KeyValues3 *pTable ) const
{
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	pTable->SetMemberBool( "Closed Correctly", m_bClosedCorrectly );
	pTable->SetMemberBool( "Perforce Integration", m_bPerforceIntegration );
	pTable->SetMemberBool( "Custom Changelist", m_bCustomChangelist );
	pTable->SetMemberInt( "Time Between Saves", m_nTimeBetweenSaves );
	pTable->SetMemberInt( "Max Autosave Space 2", m_nMaxAutosaveSpace );
	pTable->SetMemberInt( "Max Saves Per Map", m_nMaxSavesPerMap );
	pTable->SetMemberBool( "Load Autosave On Crash", m_bLoadAutosaveOnCrash );
	pTable->SetMemberBool( "Autosaves Enabled", m_bAutosavesEnabled );
}
