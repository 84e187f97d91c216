#pragma once
// Compiling a definition file from the command line, the same way for every command:
// children are found inside the content root, then the game root (see cliargs.h), and
// every file is read with the size limit of file reads.

#include "core/particles/sim/particleruntimedefinition.h"

// Null with a text naming the file and the reason when the definition is refused; the
// warnings of the compile ("FILE: text" lines) go to pWarnings.
ParticleDefinitionPtr_t ZolCliCompileDefinition( const char *pFile, CUtlString *pError, CUtlString *pWarnings );
