#include "tools/toolutils2/widgets/baseeditorwnd/gameimagepaths.h"

#include <QDir>
#include <QStringList>

#include "core/host/hostpaths.h"
#include "core/host/ifilesystem.h"

void RegisterGameImageSearchPaths()
{
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem )
		return;
	CUtlVector<CUtlString> paths;
	pFileSystem->GetSearchPaths( "GAME", &paths );
	QStringList searchPaths;
	for ( int i = 0; i < paths.Count(); ++i )
		searchPaths << QString::fromUtf8( Host_DiskPath( paths[ i ] ).Get() );
	QDir::setSearchPaths( "game", searchPaths );
}
