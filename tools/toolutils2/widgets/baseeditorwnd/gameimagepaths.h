#pragma once
// Images of the tools are named "game:tools/images/...": the prefix resolves through the
// file system's "GAME" search paths, in their order.

// Points Qt's "game" file prefix at the current "GAME" search paths. Call again after
// the search paths change; without a file system it leaves the prefix as it was.
void RegisterGameImageSearchPaths();
