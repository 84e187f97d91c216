// The OpenGL tests run under a virtual X server (CTest starts each under xvfb-run). One
// QApplication serves the whole binary; it is never destroyed, as the display's plugin
// keeps state until exit.

#include <gtest/gtest.h>

#include <QApplication>

namespace
{
class CGLApplicationEnvironment : public ::testing::Environment
{
public:
	void SetUp() override
	{
		static int s_nArgc = 1;
		static char s_szName[] = "gl_tests";
		static char *s_pArgv[] = { s_szName, nullptr };
		if ( !QApplication::instance() )
			new QApplication( s_nArgc, s_pArgv );
	}
};

const ::testing::Environment *const s_pEnvironment = ::testing::AddGlobalTestEnvironment( new CGLApplicationEnvironment );
} // namespace

// The system's OpenGL driver, display libraries and font cache keep allocations for the
// life of the process; they are not ours, and would fail every sanitizer run.
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig.so\nleak:swrast_dri.so\nleak:libLLVM\nleak:libGLX_mesa.so\nleak:libglapi.so\nleak:libxcb\nleak:libX11\n"
		   "leak:libQt5XcbQpa.so\nleak:libqxcb.so\nleak:libdbus-1.so\nleak:libqoffscreen.so\nleak:libEGL_mesa.so\nleak:libgallium\n";
}
