#pragma once

#include <QApplication>

// The one QApplication of the test binary, made by the first test that shows a window and
// never destroyed.
inline void EnsureTestQApplication()
{
	static int s_nArgc = 1;
	static char s_szName[] = "zoltool_tests";
	static char *s_pArgv[] = { s_szName, nullptr };
	if ( !QApplication::instance() )
		new QApplication( s_nArgc, s_pArgv );
}
