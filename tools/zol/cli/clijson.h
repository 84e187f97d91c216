#pragma once
// JSON text for the commands that print it (--json): strings with their escapes.

#include <string>

// The text as a JSON string, quotes included; control characters are escaped.
void AppendJsonString( std::string *pOut, const char *pText );
