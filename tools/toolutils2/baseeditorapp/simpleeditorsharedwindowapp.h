#pragma once
// The application base of a tool whose sessions all share one main window: it makes and
// frees sessions of the tool's class and hands out the window.

#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"

class CBaseEditorSharedWindowApp : public CBaseEditorApp
{
public:
	using CBaseEditorApp::CBaseEditorApp;
};

template <typename Session, typename Window>
class CSimpleEditorSharedWindowApp : public CBaseEditorSharedWindowApp
{
public:
	CBaseEditorSession *CreateSession() override { return new Session( this ); }
	void DestroySession( CBaseEditorSession *pSession ) override { delete pSession; }
};
