// The colour picker: HSV arithmetic over a table, the plane and strip picking by mode with
// the mouse, the channel fields, the remembered mode, and the colour grids read from and
// written to a scratch game root and settings store.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QtTest/QTest>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "core/host/filesystem.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "tools/widgets/color/colordialog.h"
#include "tools/widgets/color/colordialoggrid.h"
#include "tools/widgets/color/colordialogplane.h"

namespace fs = std::filesystem;

struct HSVCase_t
{
	int h, s, v;
	int r, g, b;
};

class HSVToRGBTable : public ::testing::TestWithParam<HSVCase_t>
{
};

TEST_P( HSVToRGBTable, GivesTheSectorsChannels )
{
	const HSVCase_t &c = GetParam();
	int r, g, b;
	HSVToRGB( c.h, c.s, c.v, &r, &g, &b );
	EXPECT_EQ( r, c.r );
	EXPECT_EQ( g, c.g );
	EXPECT_EQ( b, c.b );
	// Back again, a saturated colour keeps its hue within rounding.
	FatColor_t back = FatColor_t::FromRGB( r, g, b );
	if ( c.s == 255 && c.v == 255 )
		EXPECT_NEAR( back.h, c.h % 360, 1 );
}

INSTANTIATE_TEST_SUITE_P( Sectors, HSVToRGBTable,
						  ::testing::Values( HSVCase_t{ 0, 255, 255, 255, 0, 0 }, HSVCase_t{ 360, 255, 255, 255, 0, 0 }, HSVCase_t{ 120, 255, 255, 0, 255, 0 },
											 HSVCase_t{ 240, 255, 128, 0, 0, 128 }, HSVCase_t{ 60, 128, 200, 200, 200, 99 }, HSVCase_t{ 300, 255, 255, 255, 0, 255 },
											 HSVCase_t{ 200, 0, 77, 77, 77, 77 }, HSVCase_t{ 30, 255, 255, 255, 127, 0 } ) );

TEST( FatColor, AGreyKeepsItsHueThroughAnRGBChange )
{
	FatColor_t color = FatColor_t::FromHSV( 210, 200, 200 );
	color.r = color.g = color.b = 90;
	color.UpdateHSVFromRGB();
	EXPECT_EQ( color.h, 210 );
	EXPECT_EQ( color.s, 0 );
	EXPECT_EQ( color.v, 90 );
}

//-----------------------------------------------------------------------------
// Plane and strip
//-----------------------------------------------------------------------------

struct PickCase_t
{
	const char *m_pName;
	int m_nMode;
	// What the plane at (40, 200 upwards) and the strip at 77 give, from rgb(100, 150, 200).
	int m_nPlane[ 3 ]; // r, g, b for RGB modes, or h, s, v
	int m_nStrip[ 3 ];
};

class PlanePicking : public ::testing::TestWithParam<PickCase_t>
{
};

TEST_P( PlanePicking, ThePlaneAndStripPickTheirComponentsByMode )
{
	const PickCase_t &c = GetParam();
	CQColorDialog_ColorGradient plane;
	plane.SetMode( c.m_nMode );
	plane.SetColor( FatColor_t::FromRGB( 100, 150, 200 ) );
	plane.show();
	QList<FatColor_t> picked;
	QObject::connect( &plane, &CQColorDialog_ColorGradient::OnColorPicked, [ & ]( FatColor_t color ) { picked << color; } );
	const int x = CQColorDialog_ColorGradient::PLANE_LEFT + 40;
	const int y = CQColorDialog_ColorGradient::PLANE_TOP + 255 - 200;
	QTest::mouseClick( &plane, Qt::LeftButton, Qt::NoModifier, QPoint( x, y ) );
	ASSERT_EQ( picked.size(), 2 ) << "press and release";
	const bool bHSV = c.m_nMode <= COLOR_DIALOG_MODE_V;
	auto components = [ bHSV ]( const FatColor_t &f ) { return bHSV ? std::vector<int>{ f.h, f.s, f.v } : std::vector<int>{ f.r, f.g, f.b }; };
	EXPECT_EQ( components( picked.last() ), std::vector<int>( c.m_nPlane, c.m_nPlane + 3 ) );

	picked.clear();
	plane.SetColor( FatColor_t::FromRGB( 100, 150, 200 ) );
	const int sx = CQColorDialog_ColorGradient::STRIP_LEFT + 10;
	QTest::mouseClick( &plane, Qt::LeftButton, Qt::NoModifier, QPoint( sx, CQColorDialog_ColorGradient::PLANE_TOP + 77 ) );
	ASSERT_FALSE( picked.isEmpty() );
	EXPECT_EQ( components( picked.last() ), std::vector<int>( c.m_nStrip, c.m_nStrip + 3 ) );
	// Outside both areas (and their margins) nothing is picked.
	picked.clear();
	QTest::mouseClick( &plane, Qt::LeftButton, Qt::NoModifier, QPoint( 275, 140 ) );
	EXPECT_TRUE( picked.isEmpty() );
}

// rgb(100, 150, 200) is hsv(210, 128, 200).
INSTANTIATE_TEST_SUITE_P( Modes, PlanePicking,
						  ::testing::Values( PickCase_t{ "H", COLOR_DIALOG_MODE_H, { 210, 40, 200 }, { 108, 128, 200 } },
											 PickCase_t{ "S", COLOR_DIALOG_MODE_S, { 56, 128, 200 }, { 210, 77, 200 } },
											 PickCase_t{ "V", COLOR_DIALOG_MODE_V, { 56, 200, 200 }, { 210, 128, 77 } },
											 PickCase_t{ "R", COLOR_DIALOG_MODE_R, { 100, 40, 200 }, { 77, 150, 200 } },
											 PickCase_t{ "G", COLOR_DIALOG_MODE_G, { 40, 150, 200 }, { 100, 77, 200 } },
											 PickCase_t{ "B", COLOR_DIALOG_MODE_B, { 40, 200, 200 }, { 100, 150, 77 } } ),
						  []( const ::testing::TestParamInfo<PickCase_t> &info ) { return std::string( info.param.m_pName ); } );

//-----------------------------------------------------------------------------
// The dialog and its grids, on a scratch game root
//-----------------------------------------------------------------------------

namespace
{
class ColorDialogTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_Root = fs::temp_directory_path() / ( "zol_colordialog_" + std::to_string( getpid() ) );
		fs::remove_all( m_Root );
		fs::create_directories( m_Root / "game" / "tools" / "colors" );
		fs::create_directories( m_Root / "content" );
		fs::create_directories( m_Root / "settings" );
		fs::copy_file( fs::path( ZOL_SOURCE_DIR ) / "content" / "game" / "tools" / "colors" / "shared_colors.txt", SharedFile() );
		m_FileSystem.SetupFromRoots( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str() );
		SetFileSystem( &m_FileSystem );
		GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
	}
	void TearDown() override
	{
		GetToolSettingsStore().SetDirectory( "" );
		SetFileSystem( nullptr );
		fs::remove_all( m_Root );
	}
	fs::path SharedFile() const { return m_Root / "game" / "tools" / "colors" / "shared_colors.txt"; }
	std::string ReadShared() const
	{
		std::ifstream file( SharedFile() );
		std::stringstream text;
		text << file.rdbuf();
		return text.str();
	}

	fs::path m_Root;
	CFileSystem m_FileSystem;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};
} // namespace

TEST_F( ColorDialogTest, TheShippedSharedColoursLoadAndTheirCellsPickAndAccept )
{
	CQColorDialog dialog( QColor( 10, 20, 30 ), nullptr, QString(), false );
	EXPECT_EQ( dialog.windowTitle(), QStringLiteral( "Color Picker" ) );
	CQColorDialog_ColorGrid *pShared = dialog.GetSharedGrid();
	EXPECT_EQ( pShared->GetTitle(), QStringLiteral( "Shared Colors" ) );
	ASSERT_EQ( pShared->GetCount(), 24 );
	EXPECT_EQ( pShared->height(), CQColorDialog_ColorGrid::HeightForCount( 24 ) );
	EXPECT_EQ( pShared->height(), 2 * 20 + 22 );
	EXPECT_EQ( pShared->GetCellRect( 13 ), QRect( 4 + 24, 18 + 20, 20, 16 ) );
	dialog.show();
	QSignalSpy changed( &dialog, &CQColorDialog::CurrentColorChanged );
	// "Ember" is the seventh colour: first row, seventh cell.
	QTest::mouseClick( pShared, Qt::LeftButton, Qt::NoModifier, pShared->GetCellRect( 6 ).center() );
	EXPECT_EQ( dialog.GetColor(), QColor( 255, 96, 24 ) );
	EXPECT_EQ( changed.count(), 1 );
	EXPECT_EQ( dialog.GetChannelEdit( 3 )->text(), QStringLiteral( "255" ) );
	EXPECT_EQ( dialog.GetChannelEdit( 0 )->text(), QString::number( FatColor_t::FromRGB( 255, 96, 24 ).h ) );
	QTest::mouseDClick( pShared, Qt::LeftButton, Qt::NoModifier, pShared->GetCellRect( 12 ).center() );
	EXPECT_EQ( dialog.result(), int( QDialog::Accepted ) );
	EXPECT_EQ( dialog.GetColor(), QColor( 40, 120, 200 ) );
}

TEST_F( ColorDialogTest, AnUnreadableSharedFileGivesTheDefaultColours )
{
	std::ofstream( SharedFile() ) << "{ this is not kv3";
	CQColorDialog_ColorGrid grid( false );
	EXPECT_EQ( grid.GetTitle(), QStringLiteral( "Default Colors" ) );
	ASSERT_EQ( grid.GetCount(), 5 );
	EXPECT_EQ( grid.GetColorAt( 2 ), QColor( 255, 0, 0 ) );
	EXPECT_FALSE( grid.HasChanges() );
}

TEST_F( ColorDialogTest, AddedColoursAreSavedWhenThePickerClosesEitherWay )
{
	{
		CQColorDialog dialog( QColor( 12, 34, 56 ), nullptr, QStringLiteral( "Stop Colour" ), false );
		EXPECT_EQ( dialog.windowTitle(), QStringLiteral( "Stop Colour" ) );
		dialog.show();
		CQColorDialog_ColorGrid *pCustom = dialog.GetCustomGrid();
		EXPECT_EQ( pCustom->GetTitle(), QStringLiteral( "Custom Colors" ) );
		EXPECT_EQ( pCustom->GetCount(), 0 );
		QTest::mouseClick( pCustom, Qt::LeftButton, Qt::NoModifier, pCustom->GetAddButtonRect().center() );
		QTest::mouseClick( dialog.GetSharedGrid(), Qt::LeftButton, Qt::NoModifier, dialog.GetSharedGrid()->GetAddButtonRect().center() );
		EXPECT_EQ( pCustom->GetCount(), 1 );
		EXPECT_TRUE( dialog.GetSharedGrid()->HasChanges() );
		dialog.reject();
		EXPECT_FALSE( dialog.GetSharedGrid()->HasChanges() );
	}
	EXPECT_NE( ReadShared().find( "[ 12, 34, 56 ]" ), std::string::npos ) << ReadShared();
	CQColorDialog_ColorGrid custom( true );
	ASSERT_EQ( custom.GetCount(), 1 );
	EXPECT_EQ( custom.GetColorAt( 0 ), QColor( 12, 34, 56 ) );
	EXPECT_EQ( QString::fromUtf8( custom.GetData().m_Entries[ 0 ].m_strName.Get() ), QStringLiteral( "Custom Color" ) );
	EXPECT_EQ( m_Prompt.GetRecords().Count(), 0 );
}

TEST_F( ColorDialogTest, ASharedGridWithChangesAsksBeforeItGoesAndNoKeepsTheFile )
{
	const std::string before = ReadShared();
	{
		CQColorDialog_ColorGrid grid( false );
		grid.RemoveColor( 0 );
		m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save color changes?" );
	}
	EXPECT_EQ( ReadShared(), before );
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Save color changes?" );
	ASSERT_TRUE( pRecord );
	EXPECT_TRUE( QString::fromUtf8( pRecord->m_strText.Get() ).startsWith( QStringLiteral( "Save changes to \"Shared Colors\"?\n(" ) ) );
	{
		CQColorDialog_ColorGrid grid( false );
		grid.RenameColor( 0, QStringLiteral( "Paper" ) );
		m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Save color changes?" );
	}
	EXPECT_NE( ReadShared().find( "Paper" ), std::string::npos );
}

TEST_F( ColorDialogTest, ACellsMenuCopiesPastesOverwritesAndRemoves )
{
	CQColorDialog_ColorGrid grid( false );
	std::unique_ptr<QMenu> pMenu( grid.CreateCellMenu( 6, nullptr ) );
	QStringList texts;
	for ( QAction *pAction : pMenu->actions() )
		texts << pAction->text();
	EXPECT_EQ( texts, ( QStringList{ "Pick", "Copy", "Paste (Overwrite)", "Overwrite With Current", "Rename", "Remove", "Navigate To File" } ) );
	pMenu->actions()[ 1 ]->trigger();
	EXPECT_EQ( QApplication::clipboard()->text(), QStringLiteral( "RGBA\t1\t%1\t%2\t1" ).arg( 96 / 255.0, 0, 'g' ).arg( 24 / 255.0, 0, 'g' ) );
	EXPECT_TRUE( grid.PasteColor( 0 ) );
	EXPECT_EQ( grid.GetColorAt( 0 ), QColor( 255, 96, 24 ) );
	grid.SetCurrentColor( QColor( 1, 2, 3, 40 ) );
	grid.OverwriteColor( 1, QColor( 1, 2, 3, 40 ) );
	EXPECT_EQ( grid.GetColorAt( 1 ), QColor( 1, 2, 3, 255 ) ) << "grid colours are opaque";
	grid.RemoveColor( 1 );
	EXPECT_EQ( grid.GetCount(), 23 );
	QApplication::clipboard()->setText( QStringLiteral( "nothing" ) );
	EXPECT_FALSE( grid.PasteColor( 0 ) );
	EXPECT_EQ( grid.GetColorAt( 0 ), QColor( 255, 96, 24 ) );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save color changes?" );
}

TEST_F( ColorDialogTest, ChannelsModeAndAlpha )
{
	CQColorDialog dialog( QColor( 255, 0, 0, 100 ), nullptr, QString(), true );
	dialog.show();
	EXPECT_EQ( dialog.GetColor(), QColor( 255, 0, 0, 100 ) );
	EXPECT_TRUE( dialog.GetAlphaSlider()->isVisibleTo( &dialog ) );
	EXPECT_EQ( dialog.GetAlphaEdit()->text(), QStringLiteral( "100" ) );

	// Typing a hue turns the red around the wheel, keeping saturation and value.
	QLineEdit *pHue = dialog.GetChannelEdit( 0 );
	pHue->setFocus();
	pHue->selectAll();
	QTest::keyClicks( pHue, "120" );
	EXPECT_EQ( dialog.GetColor(), QColor( 0, 255, 0, 100 ) );
	EXPECT_EQ( dialog.GetChannelEdit( 4 )->text(), QStringLiteral( "255" ) );
	// The validator keeps numbers in range.
	QLineEdit *pBlue = dialog.GetChannelEdit( 5 );
	pBlue->setFocus();
	pBlue->selectAll();
	QTest::keyClicks( pBlue, "999" );
	EXPECT_LE( dialog.GetFatColor().b, 255 );

	dialog.GetAlphaSlider()->setValue( 30 );
	EXPECT_EQ( dialog.GetColor().alpha(), 30 );
	EXPECT_EQ( dialog.GetAlphaEdit()->text(), QStringLiteral( "30" ) );

	QRadioButton *pG = dialog.GetModeButton( COLOR_DIALOG_MODE_G );
	// On its round button: the rest of a stretched radio button takes no clicks.
	QTest::mouseClick( pG, Qt::LeftButton, Qt::NoModifier, QPoint( 5, pG->height() / 2 ) );
	EXPECT_EQ( dialog.GetMode(), int( COLOR_DIALOG_MODE_G ) );
	EXPECT_EQ( dialog.GetGradient()->GetMode(), int( COLOR_DIALOG_MODE_G ) );
	CQColorDialog next( Qt::white, nullptr, QString(), false );
	EXPECT_EQ( next.GetMode(), int( COLOR_DIALOG_MODE_G ) ) << "the mode stays for the next picker";
	EXPECT_TRUE( next.GetModeButton( COLOR_DIALOG_MODE_G )->isChecked() );
	EXPECT_FALSE( next.GetAlphaSlider()->isVisibleTo( &next ) );
	next.OnModeChanged( COLOR_DIALOG_MODE_H );
}
