#pragma once
// The windowed tools host: `zol` without a subcommand. Starts Qt, loads the editor module
// from beside the executable, connects it to the host's services, opens the files named
// on the command line and drives frames from a timer.

// argv as main got it; returns the process exit status.
int RunToolsHost( int argc, char **argv );
