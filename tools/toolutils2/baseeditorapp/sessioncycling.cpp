#include "tools/toolutils2/baseeditorapp/sessioncycling.h"

int StepSessionCycle( int nCurrent, int nCount, bool bForward )
{
	if ( nCount <= 0 )
		return -1;
	if ( nCurrent < 0 || nCurrent >= nCount )
		return bForward ? 0 : nCount - 1;
	int nStep = bForward ? 1 : -1;
	// The sum is never below -1, so adding nCount keeps the remainder non-negative.
	return ( nCurrent + nStep + nCount ) % nCount;
}
