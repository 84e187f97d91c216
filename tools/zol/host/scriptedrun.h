#pragma once
// A run of the editor that a script drives instead of a user: the tools host's options
//
//   --do STEP              a step, run on its own frame once the files named on the
//                          command line are open; steps run in the order given
//   --answer TITLE=BUTTON  the answer to the next question of that title ("Yes", "No",
//                          "Cancel", ...); answers are taken in the order given
//
// Steps: the application's own (CBaseEditorApp::RunScriptStep and the tool's: "new",
// "set KEY VALUE", "get KEY", "autosave", "report"), and two of the host's: "quit", and
// "stop-before-rename [PATTERN]", after which the next file written whose name matches
// the wildcard pattern (default "*") stops the process (SIGSTOP) once its temporary file
// is complete and before the rename, so a crash test can kill it at that moment. Each
// step prints "zol: STEP: WHAT HAPPENED" on the standard output.
//
// A scripted run never waits for a user: every question and dialog goes to the scripted
// prompt, and one that no --answer was meant for is answered as harmlessly as possible,
// printed on the standard error and fails the run (exit status 3), as a failed step or an
// answer never asked for does.

#include <memory>
#include <vector>

#include "core/text/utlstring.h"

class CBaseEditorApp;
class CScriptedPrompt;
class IPrompt;

class CScriptedRun
{
public:
	CScriptedRun();
	~CScriptedRun();

	// Takes the option at argv[i] when it is one of the two above: answers how many
	// arguments it used, 0 when it isn't one of them, -1 (with a message) for a bad one.
	int ParseOption( int argc, char **argv, int i );
	bool IsScripted() const { return !m_Steps.empty() || m_nAnswers > 0; }
	IPrompt *GetPrompt();

	// Runs the next step, if any is left.
	void RunNextStep( CBaseEditorApp *pTool );
	// At the end of the run: 0, or 3 when a step failed, the prompt met something
	// unscripted or an answer was never asked for.
	int Finish();

private:
	std::vector<CUtlString> m_Steps;
	size_t m_nNextStep = 0;
	int m_nAnswers = 0;
	bool m_bFailed = false;
	std::unique_ptr<CScriptedPrompt> m_pPrompt;
};
