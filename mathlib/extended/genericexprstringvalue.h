#pragma once
// The value of a string token's text: the quotes go, backslash pairs are read ("\n" a
// line feed, "\t" a tab, any other escaped character stands for itself), and a text in
// three double quotes at both ends keeps its inside with line ends made plain.

class CUtlString;

void GenericExprStringTokenValue( const char *pTokenText, CUtlString *pOut );
