#pragma once
// The editor settings every tool of the family shares, stored in the "General" table of
// the tool settings. Absent keys keep their defaults.

class KeyValues3;

struct CEditorSettings
{
	bool m_bClosedCorrectly = true;
	bool m_bPerforceIntegration = true;
	bool m_bCustomChangelist = false;
	int m_nTimeBetweenSaves = 15;    // minutes
	int m_nMaxAutosaveSpace = 2000;  // megabytes for one directory
	int m_nMaxSavesPerMap = 5;
	bool m_bLoadAutosaveOnCrash = true;
	bool m_bAutosavesEnabled = true;

	void Read( const KeyValues3 *pTable );
	void Write( KeyValues3 *pTable ) const;
};
