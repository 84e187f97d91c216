// Feeds arbitrary text to the FGD reader: it must report errors, never crash, hang or leak.

#include <cstddef>
#include <cstdint>

#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	CGameData gameData;
	// No game root: includes can only fail, so the run stays inside the input.
	CFgdReader reader( &gameData, "" );
	reader.LoadGameDataFromText( "fuzz.fgd", reinterpret_cast<const char *>( pData ), nSize );
	return 0;
}
