#pragma once
// Which session the cycling popup selects: one step from a start, forwards or backwards,
// wrapping around the list.

// The index one step from nCurrent in a list of nCount, wrapping; -1 for an empty list.
// With no current entry (nCurrent outside the list), forwards starts at the first entry
// and backwards at the last.
int StepSessionCycle( int nCurrent, int nCount, bool bForward );
