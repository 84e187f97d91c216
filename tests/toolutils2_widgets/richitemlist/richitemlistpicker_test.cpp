// The list picker driven as a user drives it: typing into the filter, walking with the
// arrow keys, Enter and Esc through the shipped key bindings.

#include <gtest/gtest.h>

#include <QApplication>
#include <QTreeWidget>
#include <QtTest/QTest>
#include <fstream>
#include <memory>
#include <string>

#include "core/host/helpsystem.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/richitemlist/arrowkeywidgets.h"
#include "tools/toolutils2/widgets/richitemlist/richitemlistpicker.h"

namespace
{
// The shipped bindings of every tool, once per process, as the editor loads them.
void LoadSharedBindings()
{
	static bool s_bLoaded = false;
	if ( s_bLoaded )
		return;
	s_bLoaded = true;
	std::ifstream file( std::string( ZOL_SOURCE_DIR ) + "/content/game/tools/keybindings/shared_tool_key_bindings.txt" );
	const std::string text( ( std::istreambuf_iterator<char>( file ) ), std::istreambuf_iterator<char>() );
	CUtlString strError;
	CInputBindEngine &engine = CQInputBindManager::Get()->GetEngine();
	ASSERT_EQ( engine.GetBindingList().LoadFromText( text.c_str(), text.size(), "shared_tool_key_bindings.txt", &strError ), BINDING_LOAD_OK ) << strError.Get();
	engine.MarkDirty();
	CQInputBindManager::Get()->OnBindingsChanged();
}

class RichItemListPickerTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		LoadSharedBindings();
		m_pPreviousHelp = GetHelpSystem();
		SetHelpSystem( &m_Help );
		m_Help.AddEntry( "particles", "Element.C_OP_Decay", "Lifespan Decay", "Kills particles when their lifetime runs out." );
		m_pPicker = std::make_unique<CQRichItemListPicker>();
		m_pPicker->SetScope( "particles" );
		m_nDecay = m_pPicker->AddChoiceWithHelpKey( "Element.C_OP_Decay", "Operator" );
		m_nFade = m_pPicker->AddChoice( "Alpha Fade Out Simple", "Fades particles out.", "Operator" );
		m_nLifetime = m_pPicker->AddChoice( "Random Lifetime", "A random lifetime.", "Initializer" );
		m_nSprites = m_pPicker->AddChoice( "Render Sprites", "Camera-facing quads.", "Renderer" );
		for ( int i = 0; i < m_pPicker->GetChoiceCount(); ++i )
			m_pPicker->SetUserData( i, 100 + i );
		m_pPicker->SetSecondText( m_nSprites, "C_OP_RenderSprites" );
		m_pPicker->SetDisabled( m_nFade, true );
		m_pPicker->show();
		QApplication::setActiveWindow( m_pPicker.get() );
		m_pPicker->GetFilterLine()->setFocus();
		QApplication::processEvents();
	}
	void TearDown() override
	{
		m_pPicker.reset();
		SetHelpSystem( m_pPreviousHelp );
	}

	void Type( const char *pText ) { QTest::keyClicks( m_pPicker->GetFilterLine(), QString::fromUtf8( pText ) ); }
	void Key( Qt::Key eKey ) { QTest::keyClick( QApplication::focusWidget(), eKey ); }

	CHelpSystem m_Help;
	IHelpSystem *m_pPreviousHelp = nullptr;
	std::unique_ptr<CQRichItemListPicker> m_pPicker;
	int m_nDecay = -1;
	int m_nFade = -1;
	int m_nLifetime = -1;
	int m_nSprites = -1;
};
} // namespace

TEST_F( RichItemListPickerTest, TypingKeepsTheMatchesMakesTheBestCurrentAndEnterAcceptsIt )
{
	EXPECT_EQ( m_pPicker->GetChoiceName( m_nDecay ), QStringLiteral( "Lifespan Decay" ) ) << "the help's title names the choice";
	Type( "rand" );
	EXPECT_EQ( m_pPicker->GetVisibleChoices(), QVector<int>{ m_nLifetime } );
	EXPECT_FALSE( m_pPicker->IsGroupVisible( "Operator" ) );
	EXPECT_TRUE( m_pPicker->IsGroupVisible( "Initializer" ) );
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nLifetime );
	Key( Qt::Key_Return );
	EXPECT_EQ( m_pPicker->result(), int( QDialog::Accepted ) );
	EXPECT_FALSE( m_pPicker->isVisible() );
	EXPECT_EQ( m_pPicker->GetSelectedUserData().toInt(), 100 + m_nLifetime );
}

TEST_F( RichItemListPickerTest, AHelpTextHitShowsTheMarkerAndTheDescription )
{
	Type( "runs out" );
	EXPECT_EQ( m_pPicker->GetVisibleChoices(), QVector<int>{ m_nDecay } );
	EXPECT_TRUE( m_pPicker->ShowsDescriptionMarker( m_nDecay ) );
	// No name hit makes a best match, but the only one left is picked.
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nDecay );
	EXPECT_TRUE( m_pPicker->GetDescriptionText().contains( QStringLiteral( "lifetime runs out" ) ) );
	m_pPicker->GetFilterLine()->clear();
	EXPECT_EQ( m_pPicker->GetVisibleChoices().size(), 4 );
	EXPECT_FALSE( m_pPicker->ShowsDescriptionMarker( m_nDecay ) );
}

TEST_F( RichItemListPickerTest, ArrowsWalkTheVisibleChoicesFromTheFilterWithoutWrapping )
{
	// Up with nothing current starts at the end.
	Key( Qt::Key_Up );
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nSprites );
	Key( Qt::Key_Down );
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nSprites );
	for ( int i = 0; i < 5; ++i )
		Key( Qt::Key_Up );
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nDecay );
	Key( Qt::Key_Down );
	EXPECT_EQ( m_pPicker->GetSelectedChoice(), m_nFade );
	EXPECT_EQ( QApplication::focusWidget(), m_pPicker->GetFilterLine() ) << "the filter keeps the keyboard";
	// A disabled choice can be picked; whoever adds decides what it means.
	Key( Qt::Key_Return );
	EXPECT_EQ( m_pPicker->result(), int( QDialog::Accepted ) );
	EXPECT_FALSE( m_pPicker->IsSelectedChoiceEnabled() );
}

TEST_F( RichItemListPickerTest, EnterWithNothingPickedStaysAndEscapeRejects )
{
	Type( "zebra" );
	EXPECT_TRUE( m_pPicker->GetVisibleChoices().isEmpty() );
	Key( Qt::Key_Return );
	EXPECT_TRUE( m_pPicker->isVisible() );
	Key( Qt::Key_Escape );
	EXPECT_FALSE( m_pPicker->isVisible() );
	EXPECT_EQ( m_pPicker->result(), int( QDialog::Rejected ) );
}
