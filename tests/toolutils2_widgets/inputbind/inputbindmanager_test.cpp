// The bind manager between Qt and the engine: real key events sent to real widgets run
// the commands that the focus chain reaches, and menu actions run and show them.

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

namespace
{
// Records "<command>.<stage>" for each stage that runs.
class CQtBindTestTarget final : public IBindTarget
{
public:
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	std::vector<std::string> m_Calls;
};

using TestCommand_t = CBindTargetDescriptor<CQtBindTestTarget>::CSpecificTargetBindableCommand;

void RecordStages( TestCommand_t &command, const char *pName )
{
	for ( BindStage_t eStage : { BIND_STAGE_PRESS, BIND_STAGE_CLICK, BIND_STAGE_RELEASE } )
		command.SetHandler( eStage, [ pName, eStage ]( CQtBindTestTarget *pTarget ) {
			pTarget->m_Calls.push_back( std::string( pName ) + "." + std::to_string( int( eStage ) ) );
		} );
}

void BuildTestCommands( CBindTargetDescriptor<CQtBindTestTarget> &d )
{
	RecordStages( d.AddCommand( "QtSave" ), "QtSave" );
	RecordStages( d.AddCommand( "QtSaveAll" ), "QtSaveAll" );
	RecordStages( d.AddCommand( "QtSelectAll" ), "QtSelectAll" );
}

CBindTargetDescriptor<CQtBindTestTarget> s_Descriptor( "QtBindTest", "CQtBindTestTarget", &BuildTestCommands );

const CBindTargetDescriptorBase *CQtBindTestTarget::GetBindTargetDescriptor() const
{
	return &s_Descriptor;
}

// Binding files are loaded once per process: this test's bindings stay for all cases.
void LoadTestBindings()
{
	static bool s_bLoaded = false;
	if ( s_bLoaded )
		return;
	s_bLoaded = true;
	const char *pText = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
						"{\n"
						"\tm_InputMacros = [ { m_Name = \"SaveKey\" m_Input = \"Ctrl+F7\" } ]\n"
						"\tm_Bindings =\n\t[\n"
						"\t\t{ m_Input = \"SaveKey\" m_Context = \"QtBindTest\" m_Command = \"QtSave\" },\n"
						"\t\t{ m_Input = \"Ctrl+Shift+F7\" m_Context = \"QtBindTest\" m_Command = \"QtSaveAll\" },\n"
						"\t\t{ m_Input = \"F8\" m_Context = \"QtBindTest\" m_Command = \"QtSelectAll\" },\n"
						"\t]\n}\n";
	CUtlString strError;
	CInputBindEngine &engine = CQInputBindManager::Get()->GetEngine();
	ASSERT_EQ( engine.GetBindingList().LoadFromText( pText, strlen( pText ), "qtbindtest", &strError ), BINDING_LOAD_OK ) << strError.Get();
	engine.MarkDirty();
	CQInputBindManager::Get()->OnBindingsChanged();
}

class QtInputBindManager : public ::testing::Test
{
protected:
	void SetUp() override
	{
		LoadTestBindings();
		m_pWindow = std::make_unique<QWidget>();
		m_pWindow->resize( 200, 100 );
		m_pEdit = new QLineEdit( m_pWindow.get() );
		m_pWindow->show();
		QApplication::setActiveWindow( m_pWindow.get() );
	}
	void TearDown() override
	{
		CQInputBindManager::Get()->UnregisterTarget( &m_WindowTarget );
		CQInputBindManager::Get()->UnregisterTarget( &m_EditTarget );
		m_pWindow.reset();
	}

	static void SendKey( QWidget *pWidget, QEvent::Type eType, int nKey, Qt::KeyboardModifiers modifiers )
	{
		QKeyEvent event( eType, nKey, modifiers );
		QApplication::sendEvent( pWidget, &event );
	}
	// Ctrl (+Shift) then F7, released in reverse, as a keyboard sends them.
	static void TypeChord( QWidget *pWidget, bool bShift )
	{
		Qt::KeyboardModifiers modifiers = Qt::ControlModifier;
		SendKey( pWidget, QEvent::KeyPress, Qt::Key_Control, modifiers );
		if ( bShift )
		{
			modifiers |= Qt::ShiftModifier;
			SendKey( pWidget, QEvent::KeyPress, Qt::Key_Shift, modifiers );
		}
		SendKey( pWidget, QEvent::KeyPress, Qt::Key_F7, modifiers );
		SendKey( pWidget, QEvent::KeyRelease, Qt::Key_F7, modifiers );
		if ( bShift )
			SendKey( pWidget, QEvent::KeyRelease, Qt::Key_Shift, Qt::ControlModifier );
		SendKey( pWidget, QEvent::KeyRelease, Qt::Key_Control, Qt::NoModifier );
	}

	std::unique_ptr<QWidget> m_pWindow;
	QLineEdit *m_pEdit = nullptr;
	CQtBindTestTarget m_WindowTarget;
	CQtBindTestTarget m_EditTarget;
};

TEST_F( QtInputBindManager, KeyChordThroughAMacroRunsTheCommandOnce )
{
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &m_WindowTarget );
	m_pWindow->setFocus();
	TypeChord( m_pWindow.get(), false );
	std::vector<std::string> expected = { "QtSave.0", "QtSave.5", "QtSave.6" };
	EXPECT_EQ( m_WindowTarget.m_Calls, expected );
}

TEST_F( QtInputBindManager, LongerChordWinsOverItsOwnEnding )
{
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &m_WindowTarget );
	m_pWindow->setFocus();
	TypeChord( m_pWindow.get(), true );
	std::vector<std::string> expected = { "QtSaveAll.0", "QtSaveAll.5", "QtSaveAll.6" };
	EXPECT_EQ( m_WindowTarget.m_Calls, expected );
}

TEST_F( QtInputBindManager, FocusedChildCommandComesBeforeItsWindowAndRunsOnce )
{
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &m_WindowTarget );
	CQInputBindManager::Get()->RegisterTarget( m_pEdit, &m_EditTarget );
	m_pEdit->setFocus();
	ASSERT_EQ( QApplication::focusWidget(), m_pEdit );
	// The edit ignores F8, so Qt hands the key to the window as well; it must count once.
	SendKey( m_pEdit, QEvent::KeyPress, Qt::Key_F8, Qt::NoModifier );
	SendKey( m_pEdit, QEvent::KeyRelease, Qt::Key_F8, Qt::NoModifier );
	std::vector<std::string> expected = { "QtSelectAll.0", "QtSelectAll.5", "QtSelectAll.6" };
	EXPECT_EQ( m_EditTarget.m_Calls, expected );
	EXPECT_TRUE( m_WindowTarget.m_Calls.empty() );
}

TEST_F( QtInputBindManager, KeysOfAWidgetWithoutTargetsRunNothing )
{
	m_pWindow->setFocus();
	TypeChord( m_pWindow.get(), false );
	EXPECT_TRUE( m_WindowTarget.m_Calls.empty() );
}

TEST_F( QtInputBindManager, MenuActionShowsItsKeyAndRunsTheCommand )
{
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &m_WindowTarget );
	CQBindableCommandAction action( &m_WindowTarget, "QtSave", "&Save", nullptr );
	EXPECT_EQ( action.GetBindingText(), QStringLiteral( "Ctrl+F7" ) );
	EXPECT_EQ( action.text(), QStringLiteral( "&Save\tCtrl+F7" ) );
	// Not a Qt shortcut: the manager runs the key, a shortcut would run it twice.
	EXPECT_TRUE( action.shortcut().isEmpty() );
	action.trigger();
	std::vector<std::string> expected = { "QtSave.0", "QtSave.5", "QtSave.6" };
	EXPECT_EQ( m_WindowTarget.m_Calls, expected );

	CQBindableCommandAction unbound( &m_WindowTarget, "NoSuchCommand", "&Nothing", nullptr );
	EXPECT_EQ( unbound.text(), QStringLiteral( "&Nothing" ) );
}
} // namespace
