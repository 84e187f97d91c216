// Widget test binaries link this file: they need one QApplication for the whole binary.
// It is made before the first test and never destroyed: tearing down the offscreen
// platform loses its screen, which the leak checker would then report against every run.

#include <gtest/gtest.h>

#include <QApplication>

namespace
{
QApplication *s_pApplication = nullptr;

class CQtApplicationEnvironment : public ::testing::Environment
{
public:
	void SetUp() override
	{
		static int s_nArgc = 1;
		static char s_szName[] = "zol_widget_tests";
		static char *s_pArgv[] = { s_szName, nullptr };
		if ( !QApplication::instance() )
			s_pApplication = new QApplication( s_nArgc, s_pArgv );
	}
};

const ::testing::Environment *const s_pQtEnvironment = ::testing::AddGlobalTestEnvironment( new CQtApplicationEnvironment );
} // namespace

// Font configuration keeps a cache for the life of the process that it never frees, and so
// do the OpenGL driver and the display libraries of the binaries that draw; that is not
// ours to fix, and would fail every sanitizer run of the widget tests.
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig.so\nleak:swrast_dri.so\nleak:libLLVM\nleak:libGLX_mesa.so\nleak:libglapi.so\nleak:libxcb\nleak:libX11\n"
		   "leak:libQt5XcbQpa.so\nleak:libqxcb.so\nleak:libdbus-1.so\nleak:libqoffscreen.so\n";
}
