// The property panel on a class description made for the test, through real events:
// rows grouped and sorted, the plain editor's forms, typing and dragging as undo steps,
// text that is no number refused, several targets with their common value, nested
// tables, arrays, maps and KV3 values, row buttons, a read-only domain, editors from a
// registered factory, and rebuilds on a zero timer that reuse pooled editors.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSet>
#include <QToolButton>
#include <QtTest/QTest>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/host/propertyeditorsystem.h"
#include "core/host/scriptedprompt.h"
#include "core/kv3/keyvalues3.h"
#include "tests/support/userinput.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr_propertydomain/itoolattrdomainlistener.h"
#include "tools/toolutils2/toolattr_propertydomain/toolattrpropertydomain.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorcurve.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditordomainagnostic.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h"
#include "tools/toolutils2/widgets/propertyeditor/poolablewidget.h"
#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"
#include "tools/widgets/curveeditorwidget.h"
#include "tools/widgets/slider.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"

namespace
{
constexpr const char *s_pszClasses = R"fgd(
@Struct = Range [
	m_flMin(float) : "Min" : "0"
	m_flMax(float) : "Max" : "1"
]
@PointClass = PanelTestRow [
	m_flRate(float) { min = "0" max = "10" } : "Rate" : "1"
	m_nCount(integer) : "Count" : "5"
	m_bEnabled(boolean) : "Enabled" : "1"
	m_Name(string) { group = "Naming" } : "Name" : "flame"
	m_Tint(color255) { group = "Look" } : "Tint" : "255 128 0"
	m_vOffset(vector) { group = "Look" } : "Offset" : "0 0 0"
	m_Shape(choices) : "Shape" : "sphere" = [ "sphere" : "Sphere" "box" : "Box" ]
	m_Range(struct(Range)) : "Range"
	m_Names(array(string)) : "Names"
	m_Weights(stringmap(float)) : "Weights"
	m_Extra(kv3) : "Extra"
	m_Locked(string) { readonly = true } : "Locked" : "x"
	m_First(float) { sort_priority = 10 } : "First" : "0"
	m_Reset(string) { reset_to_default_icon = true } : "Reset" : "abc"
	m_Custom(string) { editor = "PanelTestEditor( big )" } : "Custom" : "c"
	m_Fade(curve) : "Fade"
]
)fgd";

// Hears the edits as the document would: each begin or one-shot opens a step.
class CStepListener : public IToolAttrDomainListener
{
public:
	void OnBeforeChange( const ZolPropertyBeforeChange_t &record ) override
	{
		m_Types.push_back( record.m_eModifyType );
		if ( record.m_eModifyType <= PROPED_MODIFY_BEGIN )
			++m_nSteps;
	}
	void OnAfterChange( const ZolPropertyAfterChange_t & ) override { ++m_nAfters; }
	void OnPropertyRebuild( HToolAttrTableInstance, IBaseToolAttr * ) override {}
	std::vector<int> m_Types;
	int m_nSteps = 0;
	int m_nAfters = 0;
};

// An editor from a factory: a label that shows the value and the argument its editor text names.
class CQPanelTestEditor : public CQAttributeEditor_Base
{
public:
	explicit CQPanelTestEditor( QWidget *pParent ) : CQAttributeEditor_Base( pParent ), m_pLabel( new QLabel( this ) ) { ++s_nMade; }
	void Initialize( const PropertyEditorInit_t &init ) override
	{
		CQAttributeEditor_Base::Initialize( init );
		m_Argument = init.m_Argument;
	}
	void ReadFromAttribute() override
	{
		CUtlString text;
		bool bDiffer = false;
		GetHost()->ReadCommonValueText( GetTargets(), GetRowInfo(), &text, false, &bDiffer );
		m_pLabel->setText( QString::fromUtf8( text.Get() ) );
	}
	void WriteToAttribute() override {}
	QString m_Argument;
	QLabel *m_pLabel;
	static int s_nMade;
};
int CQPanelTestEditor::s_nMade = 0;

class PropertyPanelTest : public testing::Test
{
protected:
	void SetUp() override
	{
		m_pPreviousSystem = GetPropertyEditorSystem();
		SetPropertyEditorSystem( &m_System );
		static CPropertyAttributeEditorFactory<CQPanelTestEditor, CPropertyAttributeEditorFactoryBaseFixedHeight> s_Factory( "PanelTestEditor" );
		m_System.RegisterAttributeEditorFactory( "PanelTestEditor", &s_Factory );

		CFgdReader reader( &m_GameData, "" );
		ASSERT_TRUE( reader.LoadGameDataFromText( "panel.fgd", s_pszClasses, strlen( s_pszClasses ) ) );
		ASSERT_TRUE( m_GameData.GetErrors().IsEmpty() ) << m_GameData.GetErrors()[ 0 ].m_Text.Get();
		for ( auto &pData : m_Data )
			pData = std::make_unique<CKV3DataWithFGDClass>( &m_GameData, m_GameData.FindClass( "PanelTestRow" ) );

		m_pPanel = CQPropertyPanel::CreateFromPropertyEditorSystem( nullptr );
		ASSERT_NE( m_pPanel, nullptr );
		m_pPanel->resize( 500, 900 );
		m_pPanel->SetDomain( &m_Domain );
		Show( { 0 } );
		m_pPanel->show();
		QApplication::setActiveWindow( m_pPanel );
	}
	void TearDown() override
	{
		delete m_pPanel;
		SetPropertyEditorSystem( m_pPreviousSystem );
	}

	void Show( std::initializer_list<int> indices )
	{
		CUtlVector<ZolPropertyTarget> targets;
		for ( int i : indices )
			targets.AddToTail( ZolPropertyTarget{ m_Data[ i ]->GetHandle(), nullptr } );
		m_pPanel->SetTargets( targets );
		QApplication::processEvents();
	}
	IToolAttr_Value *Attr( int nData, const char *pKey )
	{
		IBaseToolAttr *pAttr = m_Data[ nData ]->FindAttribute( m_Data[ nData ]->GetHandle(), pKey );
		return pAttr ? pAttr->AsValue() : nullptr;
	}
	// The value as its attribute reads it (its default when not stored).
	std::string Value( int nData, const char *pKey )
	{
		CUtlString text;
		Attr( nData, pKey )->GetAsString( m_Data[ nData ]->GetHandle(), &text );
		return text.Get();
	}
	// The same, or "(absent)" when the table doesn't hold the key.
	std::string Stored( int nData, const char *pKey ) { return m_Data[ nData ]->GetKV3()->HasMember( pKey ) ? Value( nData, pKey ) : "(absent)"; }
	void Set( int nData, const char *pKey, const char *pText ) { Attr( nData, pKey )->SetFromString( m_Data[ nData ]->GetHandle(), pText, 0 ); }
	CQAttributeEditor_DomainAgnostic *Plain( const char *pKey )
	{
		return dynamic_cast<CQAttributeEditor_DomainAgnostic *>( m_pPanel->FindEditor( QString::fromUtf8( pKey ) ) );
	}
	void Type( QLineEdit *pEdit, const char *pText )
	{
		ASSERT_NE( pEdit, nullptr );
		TypeInto( pEdit, pText );
	}
	QToolButton *Button( const char *pRowKey, const char *pName )
	{
		CQPropertyRowWidget *pRow = m_pPanel->FindRowWidget( QString::fromUtf8( pRowKey ) );
		return pRow ? pRow->findChild<QToolButton *>( QString::fromUtf8( pName ) ) : nullptr;
	}

	IPropertyEditorSystem *m_pPreviousSystem = nullptr;
	CPropertyEditorSystem m_System;
	CGameData m_GameData;
	std::unique_ptr<CKV3DataWithFGDClass> m_Data[ 2 ];
	CStepListener m_Listener;
	CToolAttrPropertyDomain m_Domain{ &m_Listener };
	CQPropertyPanel *m_pPanel = nullptr;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};

TEST_F( PropertyPanelTest, RowsAreGroupedSortedAndTakeTheirEditorsFromTheirKind )
{
	QStringList keys = m_pPanel->GetRowKeys();
	// Priority first, then table order; grouped rows under a heading where their group
	// first stood; nested rows under their table.
	ASSERT_GE( keys.size(), 10 );
	EXPECT_EQ( keys[ 0 ], QStringLiteral( "m_First" ) );
	EXPECT_EQ( keys[ 1 ], QStringLiteral( "m_flRate" ) );
	EXPECT_LT( keys.indexOf( "@Naming" ), keys.indexOf( "m_Name" ) );
	EXPECT_EQ( keys.indexOf( "m_Tint" ), keys.indexOf( "@Look" ) + 1 );
	EXPECT_EQ( keys.indexOf( "m_vOffset" ), keys.indexOf( "m_Tint" ) + 1 );
	EXPECT_EQ( keys.indexOf( "m_Range/m_flMin" ), keys.indexOf( "m_Range" ) + 1 );

	EXPECT_EQ( Plain( "m_flRate" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_SLIDER );
	EXPECT_EQ( Plain( "m_nCount" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_LINE_EDIT );
	EXPECT_EQ( Plain( "m_nCount" )->GetLineEdit()->GetNumberKind(), CQSmartLineEdit::NUMBER_KIND_INTEGER );
	EXPECT_EQ( Plain( "m_bEnabled" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_CHECK_BOX );
	EXPECT_EQ( Plain( "m_Shape" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_COMBO );
	EXPECT_EQ( Plain( "m_Tint" )->GetComponentEdits().size(), 3 );
	EXPECT_EQ( Plain( "m_vOffset" )->GetComponentEdits().size(), 3 );
	EXPECT_EQ( Plain( "m_Extra" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_KV3_TEXT );
	EXPECT_EQ( m_pPanel->FindEditor( "m_Range" ), nullptr ) << "a table's fields are its editors";
	EXPECT_TRUE( Plain( "m_Locked" )->GetLineEdit()->isReadOnly() );

	// A name from a factory gets the factory's editor, with the argument of its editor text.
	auto *pCustom = dynamic_cast<CQPanelTestEditor *>( m_pPanel->FindEditor( "m_Custom" ) );
	ASSERT_NE( pCustom, nullptr );
	EXPECT_EQ( pCustom->m_Argument, QStringLiteral( "big" ) );
	EXPECT_EQ( pCustom->m_pLabel->text(), QStringLiteral( "c" ) );
	EXPECT_EQ( pCustom->height(), CPropertyAttributeEditorFactoryBaseFixedHeight::ROW_HEIGHT );
}

TEST_F( PropertyPanelTest, TypingWritesOneStepAndTextThatIsNoNumberIsRefused )
{
	CQSmartLineEdit *pCount = Plain( "m_nCount" )->GetLineEdit();
	Type( pCount, "12" );
	EXPECT_EQ( Value( 0, "m_nCount" ), "12" );
	EXPECT_EQ( m_Listener.m_nSteps, 1 );
	EXPECT_EQ( m_Listener.m_nAfters, 1 );
	EXPECT_EQ( m_Listener.m_Types, std::vector<int>{ PROPED_MODIFY_ONE_SHOT } );

	Type( pCount, "twelve" );
	EXPECT_EQ( Value( 0, "m_nCount" ), "12" ) << "nothing else changed";
	EXPECT_EQ( pCount->text(), QStringLiteral( "12" ) );
	EXPECT_EQ( m_Listener.m_nSteps, 1 );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 1 );

	// Escape puts back what the user typed but didn't give.
	pCount->setFocus();
	pCount->selectAll();
	QTest::keyClicks( pCount, "40" );
	QTest::keyClick( pCount, Qt::Key_Escape );
	EXPECT_EQ( pCount->text(), QStringLiteral( "12" ) );
	EXPECT_EQ( m_Listener.m_nSteps, 1 );

	// The slider's field refuses alike; a number goes through, one step.
	CQSmartLineEdit *pRate = Plain( "m_flRate" )->GetSlider()->GetLineEdit();
	Type( pRate, "hot" );
	EXPECT_EQ( Stored( 0, "m_flRate" ), "(absent)" );
	Type( pRate, "2.5" );
	EXPECT_EQ( Value( 0, "m_flRate" ), "2.5" );
	EXPECT_EQ( m_Listener.m_nSteps, 2 );

	// The label marks a value that differs from its default.
	QApplication::processEvents();
	EXPECT_TRUE( m_pPanel->FindRowWidget( "m_nCount" )->GetLabel()->text().contains( "<b>" ) );
	EXPECT_FALSE( m_pPanel->FindRowWidget( "m_bEnabled" )->GetLabel()->text().contains( "<b>" ) );
}

// A label longer than its column ends in dots, the whole label in its tool tip; with room
// again it is whole, and the column is measured from whole labels, never cut ones.
TEST_F( PropertyPanelTest, ALabelTooLongForItsColumnEndsInDots )
{
	CQPropertyRowWidget *pEnabled = m_pPanel->FindRowWidget( "m_bEnabled" );
	ASSERT_NE( pEnabled, nullptr );
	const int nWholeHint = pEnabled->GetLabelHint();
	EXPECT_FALSE( pEnabled->GetLabel()->text().contains( QChar( 0x2026 ) ) );

	pEnabled->SetLabelWidth( nWholeHint - 20 );
	EXPECT_TRUE( pEnabled->GetLabel()->text().contains( QChar( 0x2026 ) ) ) << pEnabled->GetLabel()->text().toStdString();
	EXPECT_TRUE( pEnabled->GetLabel()->text().startsWith( QStringLiteral( "En" ) ) ) << pEnabled->GetLabel()->text().toStdString();
	EXPECT_EQ( pEnabled->GetLabel()->toolTip(), QStringLiteral( "Enabled" ) );
	EXPECT_EQ( pEnabled->GetLabelHint(), nWholeHint );

	// A mark that follows the label (bold for a changed value) is kept while it is cut.
	Type( Plain( "m_nCount" )->GetLineEdit(), "40" );
	QApplication::processEvents();
	CQPropertyRowWidget *pCount = m_pPanel->FindRowWidget( "m_nCount" );
	pCount->SetLabelWidth( pCount->GetLabelHint() - 12 );
	EXPECT_TRUE( pCount->GetLabel()->text().contains( "<b>" ) );
	EXPECT_TRUE( pCount->GetLabel()->text().contains( QChar( 0x2026 ) ) );

	pEnabled->SetLabelWidth( nWholeHint + 40 );
	EXPECT_EQ( pEnabled->GetLabel()->text(), QStringLiteral( "Enabled" ) );
	EXPECT_TRUE( pEnabled->GetLabel()->toolTip().isEmpty() );
}

TEST_F( PropertyPanelTest, ASliderDragIsOneStepWithOrWithoutShift )
{
	CQSlider *pSlider = Plain( "m_flRate" )->GetSlider()->GetSlider();
	const int nTrack = pSlider->width() - 3;
	const int nRebuilds = m_pPanel->GetRebuildCount();
	QPointer<CQAttributeEditor_Base> pEditor = m_pPanel->FindEditor( "m_flRate" );
	// The press puts the value under the pointer on the soft range 0..10; the drag goes on
	// by a pixel's worth of the range per pixel.
	DragMouse( pSlider, QPoint( 1 + nTrack / 2, 6 ), QPoint( 1 + nTrack / 2 + 40, 6 ) );
	QApplication::processEvents();
	double flAfterPlain = std::stod( Value( 0, "m_flRate" ) );
	EXPECT_NEAR( flAfterPlain, ( nTrack / 2 + 40 ) * 10.0 / nTrack, 1e-3 );
	EXPECT_EQ( m_Listener.m_nSteps, 1 ) << "a drag is one step";
	EXPECT_EQ( m_Listener.m_Types.front(), PROPED_MODIFY_BEGIN );
	EXPECT_EQ( m_Listener.m_Types.back(), PROPED_MODIFY_END );
	// With Shift the same motion goes a quarter as far, from where the value is.
	DragMouse( pSlider, QPoint( 10, 6 ), QPoint( 50, 6 ), Qt::LeftButton, Qt::ShiftModifier );
	QApplication::processEvents();
	EXPECT_NEAR( std::stod( Value( 0, "m_flRate" ) ) - flAfterPlain, 40.0 * 10.0 / nTrack * 0.25, 1e-3 );
	EXPECT_EQ( m_Listener.m_nSteps, 2 );
	EXPECT_EQ( pEditor.data(), m_pPanel->FindEditor( "m_flRate" ) ) << "value edits keep the rows";
	EXPECT_EQ( m_pPanel->GetRebuildCount(), nRebuilds );
}

TEST_F( PropertyPanelTest, CheckBoxComboAndVectorWriteTheirValues )
{
	Plain( "m_bEnabled" )->GetCheckBox()->click();
	EXPECT_EQ( Value( 0, "m_bEnabled" ), "0" );
	QComboBox *pShape = Plain( "m_Shape" )->GetComboBox();
	EXPECT_EQ( pShape->currentText(), QStringLiteral( "Sphere" ) );
	pShape->setFocus();
	QTest::keyClick( pShape, Qt::Key_Down );
	EXPECT_EQ( Value( 0, "m_Shape" ), "box" );
	Type( Plain( "m_vOffset" )->GetComponentEdits()[ 2 ], "40" );
	EXPECT_EQ( Value( 0, "m_vOffset" ), "0 0 40" );
	Type( Plain( "m_vOffset" )->GetComponentEdits()[ 0 ], "up" );
	EXPECT_EQ( Value( 0, "m_vOffset" ), "0 0 40" );
	EXPECT_EQ( m_Listener.m_nSteps, 3 );
	// A colour's component stops at its limit.
	Type( Plain( "m_Tint" )->GetComponentEdits()[ 1 ], "300" );
	EXPECT_EQ( Value( 0, "m_Tint" ), "255 255 0" );
	EXPECT_EQ( Plain( "m_Tint" )->GetComponentEdits()[ 1 ]->text(), QStringLiteral( "255" ) );
}

TEST_F( PropertyPanelTest, SeveralTargetsShowWhatTheyShareAndWriteAll )
{
	Set( 1, "m_nCount", "9" );
	Show( { 0, 1 } );
	CQSmartLineEdit *pCount = Plain( "m_nCount" )->GetLineEdit();
	EXPECT_TRUE( pCount->text().isEmpty() );
	EXPECT_EQ( pCount->placeholderText(), QStringLiteral( "(several values)" ) );
	EXPECT_EQ( Plain( "m_Name" )->GetLineEdit()->text(), QStringLiteral( "flame" ) );
	EXPECT_EQ( Plain( "m_bEnabled" )->GetCheckBox()->checkState(), Qt::Checked );
	Type( pCount, "3" );
	EXPECT_EQ( Value( 0, "m_nCount" ), "3" );
	EXPECT_EQ( Value( 1, "m_nCount" ), "3" );
	EXPECT_EQ( m_Listener.m_nSteps, 1 ) << "both in one step";
	EXPECT_EQ( pCount->text(), QStringLiteral( "3" ) );
	// A vector component written keeps each target's other components.
	Set( 1, "m_vOffset", "1 2 3" );
	m_pPanel->RequestRefresh();
	QApplication::processEvents();
	Type( Plain( "m_vOffset" )->GetComponentEdits()[ 1 ], "7" );
	EXPECT_EQ( Value( 0, "m_vOffset" ), "0 7 0" );
	EXPECT_EQ( Value( 1, "m_vOffset" ), "1 7 3" );
	EXPECT_TRUE( m_pPanel->GetTitleLabel()->text().startsWith( "2 selected" ) );
}

TEST_F( PropertyPanelTest, ArraysGrowAndShrinkByTheirButtonsOnAZeroTimer )
{
	QToolButton *pAdd = m_pPanel->FindRowWidget( "m_Names" )->findChild<QToolButton *>( "AddElement" );
	ASSERT_NE( pAdd, nullptr );
	pAdd->click();
	EXPECT_EQ( m_Listener.m_nSteps, 1 );
	EXPECT_EQ( m_pPanel->FindRow( "m_Names/[0]" ), nullptr ) << "rows are made anew on the next turn, not in the click";
	QApplication::processEvents();
	ASSERT_NE( m_pPanel->FindRow( "m_Names/[0]" ), nullptr );
	Type( Plain( "m_Names/[0]" )->GetLineEdit(), "smoke" );
	Button( "m_Names/[0]", "InsertElement" )->click();
	QApplication::processEvents();
	Type( Plain( "m_Names/[0]" )->GetLineEdit(), "ember" );
	const KeyValues3 *pNames = m_Data[ 0 ]->GetKV3()->FindMember( "m_Names" );
	ASSERT_NE( pNames, nullptr );
	ASSERT_EQ( pNames->GetArrayElementCount(), 2 );
	EXPECT_STREQ( pNames->GetArrayElement( 0 )->GetString(), "ember" );
	EXPECT_STREQ( pNames->GetArrayElement( 1 )->GetString(), "smoke" );
	Button( "m_Names/[0]", "RemoveElement" )->click();
	QApplication::processEvents();
	ASSERT_EQ( pNames->GetArrayElementCount(), 1 );
	EXPECT_STREQ( pNames->GetArrayElement( 0 )->GetString(), "smoke" );
	EXPECT_EQ( m_pPanel->FindRow( "m_Names/[1]" ), nullptr );
	EXPECT_EQ( m_Listener.m_nSteps, 5 );
}

TEST_F( PropertyPanelTest, MapsTakeNewKeysAndLoseThem )
{
	CQPropertyRowWidget *pRow = m_pPanel->FindRowWidget( "m_Weights" );
	QLineEdit *pKey = pRow->findChild<QLineEdit *>( "NewKey" );
	ASSERT_NE( pKey, nullptr );
	Type( pKey, "fire" );
	QApplication::processEvents();
	ASSERT_NE( m_pPanel->FindRow( "m_Weights/{fire}" ), nullptr );
	Type( Plain( "m_Weights/{fire}" )->GetLineEdit(), "0.75" );
	const KeyValues3 *pWeights = m_Data[ 0 ]->GetKV3()->FindMember( "m_Weights" );
	ASSERT_NE( pWeights, nullptr );
	EXPECT_DOUBLE_EQ( pWeights->GetMemberDouble( "fire" ), 0.75 );
	Button( "m_Weights/{fire}", "RemoveEntry" )->click();
	QApplication::processEvents();
	EXPECT_FALSE( pWeights->HasMember( "fire" ) );
	EXPECT_EQ( m_pPanel->FindRow( "m_Weights/{fire}" ), nullptr );
}

TEST_F( PropertyPanelTest, AKV3ValueShowsItsPartsAndRefusesTextThatIsNoKV3 )
{
	CQSmartLineEdit *pText = Plain( "m_Extra" )->GetLineEdit();
	Type( pText, "{ m_nType = \"PF_TYPE_LITERAL\" m_flValue = 40.0 }" );
	QApplication::processEvents();
	ASSERT_NE( m_pPanel->FindRow( "m_Extra/m_flValue" ), nullptr );
	EXPECT_EQ( m_pPanel->FindRow( "m_Extra/m_flValue" )->m_Label, QStringLiteral( "Value" ) );
	Type( Plain( "m_Extra/m_flValue" )->GetLineEdit(), "55" );
	const KeyValues3 *pExtra = m_Data[ 0 ]->GetKV3()->FindMember( "m_Extra" );
	ASSERT_NE( pExtra, nullptr );
	EXPECT_EQ( pExtra->FindMember( "m_flValue" )->GetType(), KV3_TYPE_DOUBLE ) << "a double stays a double";
	EXPECT_DOUBLE_EQ( pExtra->GetMemberDouble( "m_flValue" ), 55.0 );
	EXPECT_STREQ( pExtra->GetMemberString( "m_nType" ), "PF_TYPE_LITERAL" );
	Type( Plain( "m_Extra/m_flValue" )->GetLineEdit(), "lots" );
	EXPECT_DOUBLE_EQ( pExtra->GetMemberDouble( "m_flValue" ), 55.0 );
	Type( Plain( "m_Extra" )->GetLineEdit(), "{ unclosed = 1" );
	EXPECT_DOUBLE_EQ( pExtra->GetMemberDouble( "m_flValue" ), 55.0 );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 2 );
	EXPECT_EQ( m_Listener.m_nSteps, 2 );
}

TEST_F( PropertyPanelTest, RowButtonsRunTheirCommandsAsOneStep )
{
	Type( Plain( "m_Reset" )->GetLineEdit(), "changed" );
	QApplication::processEvents();
	QToolButton *pReset = Button( "m_Reset", "Button_reset_attr" );
	ASSERT_NE( pReset, nullptr ) << "a value off its default offers its reset inline";
	EXPECT_EQ( pReset->toolTip(), QStringLiteral( "Reset to Default" ) );
	pReset->click();
	QApplication::processEvents();
	EXPECT_EQ( Value( 0, "m_Reset" ), "abc" );
	EXPECT_EQ( m_Listener.m_nSteps, 2 );
	EXPECT_EQ( Plain( "m_Reset" )->GetLineEdit()->text(), QStringLiteral( "abc" ) );
	EXPECT_EQ( Button( "m_Reset", "Button_reset_attr" ), nullptr );
}

TEST_F( PropertyPanelTest, AReadOnlyDomainWritesNothing )
{
	m_Domain.SetReadOnly( true );
	// Rows made before the domain turned read-only still write nothing.
	Type( Plain( "m_nCount" )->GetLineEdit(), "99" );
	EXPECT_EQ( Stored( 0, "m_nCount" ), "(absent)" );
	m_pPanel->RequestRebuild();
	QApplication::processEvents();
	EXPECT_TRUE( Plain( "m_nCount" )->GetLineEdit()->isReadOnly() );
	EXPECT_FALSE( Plain( "m_bEnabled" )->GetCheckBox()->isEnabled() );
	EXPECT_EQ( m_pPanel->FindRowWidget( "m_Names" )->findChild<QToolButton *>( "AddElement" ), nullptr );
	Plain( "m_bEnabled" )->GetCheckBox()->click();
	EXPECT_EQ( Stored( 0, "m_bEnabled" ), "(absent)" );
}

TEST_F( PropertyPanelTest, NewTargetsRebuildOnTheNextTurnWithPooledEditors )
{
	QPointer<CQAttributeEditor_Base> pOld = m_pPanel->FindEditor( "m_nCount" );
	QSet<QObject *> before;
	for ( const QString &key : m_pPanel->GetRowKeys() )
		before.insert( m_pPanel->FindEditor( key ) );
	const int nMade = CQPanelTestEditor::s_nMade;
	CUtlVector<ZolPropertyTarget> targets;
	targets.AddToTail( ZolPropertyTarget{ m_Data[ 1 ]->GetHandle(), nullptr } );
	m_pPanel->SetTargets( targets );
	// Until the next turn the old rows stand, cut off from their targets.
	EXPECT_EQ( m_pPanel->FindEditor( "m_nCount" ), pOld.data() );
	EXPECT_TRUE( pOld->GetTargets().IsEmpty() );
	QLineEdit *pOldEdit = pOld->findChild<QLineEdit *>();
	pOldEdit->setText( "77" );
	emit pOldEdit->editingFinished();
	EXPECT_EQ( Stored( 0, "m_nCount" ), "(absent)" );
	EXPECT_EQ( Stored( 1, "m_nCount" ), "(absent)" );
	EXPECT_EQ( m_Listener.m_nSteps, 0 );
	QApplication::processEvents();
	ASSERT_TRUE( pOld );
	// The editors came out of the pool.
	EXPECT_EQ( CQPanelTestEditor::s_nMade, nMade );
	ASSERT_NE( m_pPanel->FindEditor( "m_nCount" ), nullptr );
	EXPECT_TRUE( before.contains( m_pPanel->FindEditor( "m_nCount" ) ) );
	Type( Plain( "m_nCount" )->GetLineEdit(), "8" );
	EXPECT_EQ( Value( 1, "m_nCount" ), "8" );
	// Nothing selected: no rows, their editors idle in the pool.
	m_pPanel->SetTargets( CUtlVector<ZolPropertyTarget>() );
	QApplication::processEvents();
	EXPECT_TRUE( m_pPanel->GetRowKeys().isEmpty() );
	EXPECT_GT( m_pPanel->GetPool()->GetIdleCount( "DomainAgnostic" ), 10 );
	EXPECT_EQ( m_pPanel->GetPool()->GetIdleCount( "PanelTestEditor" ), 1 );
}
} // namespace

namespace
{
// Drags the key of the curve editor from where it is to a curve point, in one drag.
void DragCurveKey( CQCurveEditorWidget *pCurve, int nKey, double x, double y )
{
	const CurveKey_t &key = pCurve->GetShownCurve().GetKey( nKey );
	QPoint from = pCurve->CurveToScreen( key.x, key.y ).toPoint();
	DragMouse( pCurve, from, pCurve->CurveToScreen( x, y ).toPoint() );
}

TEST_F( PropertyPanelTest, CurvesAreEditedWithTheCurveEditorOneStepPerDrag )
{
	// A curve field takes the curve editor by its name.
	auto *pFade = dynamic_cast<CQAttributeEditor_Curve *>( m_pPanel->FindEditor( "m_Fade" ) );
	ASSERT_NE( pFade, nullptr ) << m_pPanel->GetRowKeys().join( ' ' ).toStdString();
	CQCurveEditorWidget *pCurve = pFade->GetCurveWidget();
	ASSERT_EQ( pCurve->GetShownCurve().GetKeyCount(), 2 ) << "no curve yet: the default one";
	DragCurveKey( pCurve, 1, 1.0, 0.5 );
	EXPECT_EQ( m_Listener.m_nSteps, 1 );
	const KeyValues3 *pStored = m_Data[ 0 ]->GetKV3()->FindMember( "m_Fade" );
	ASSERT_NE( pStored, nullptr );
	ASSERT_TRUE( CQAttributeEditor_Curve::IsCurveValue( *pStored ) );
	EXPECT_NEAR( pStored->FindMember( "m_spline" )->GetArrayElement( 1 )->GetMemberDouble( "y" ), 0.5, 0.02 );

	// A curve inside a KV3 value (a float input's mapping curve) is edited alike, and the
	// rest of the value stays.
	Type( Plain( "m_Extra" )->GetLineEdit(), "{ m_nMapType = \"PF_MAP_TYPE_CURVE\" m_Curve = { m_spline = [ { x = 0.0 y = 0.0 }, { x = 1.0 y = 1.0 } ] "
											  "m_tangents = [ {}, {} ] m_vDomainMins = [ 0.0, 0.0 ] m_vDomainMaxs = [ 1.0, 1.0 ] } }" );
	auto *pInner = dynamic_cast<CQAttributeEditor_Curve *>( m_pPanel->FindEditor( "m_Extra/m_Curve" ) );
	ASSERT_NE( pInner, nullptr ) << m_pPanel->GetRowKeys().join( ' ' ).toStdString();
	EXPECT_EQ( m_pPanel->FindRow( "m_Extra/m_Curve/m_spline" ), nullptr ) << "a curve is one row, not its parts";
	DragCurveKey( pInner->GetCurveWidget(), 0, 0.0, 0.25 );
	EXPECT_EQ( m_Listener.m_nSteps, 3 );
	const KeyValues3 *pExtra = m_Data[ 0 ]->GetKV3()->FindMember( "m_Extra" );
	ASSERT_NE( pExtra, nullptr );
	EXPECT_STREQ( pExtra->GetMemberString( "m_nMapType" ), "PF_MAP_TYPE_CURVE" );
	EXPECT_NEAR( pExtra->FindMember( "m_Curve" )->FindMember( "m_spline" )->GetArrayElement( 0 )->GetMemberDouble( "y" ), 0.25, 0.02 );
}
} // namespace

namespace
{
TEST_F( PropertyPanelTest, FoldedRowsStayFoldedThroughRebuildsAndTheWindowsSettings )
{
	CQPropertyRowWidget *pLook = m_pPanel->FindRowWidget( "@Look" );
	ASSERT_NE( pLook, nullptr );
	EXPECT_TRUE( m_pPanel->FindRowWidget( "m_Tint" )->isVisible() );
	pLook->GetExpander()->click();
	EXPECT_FALSE( m_pPanel->FindRowWidget( "m_Tint" )->isVisible() );
	EXPECT_TRUE( m_pPanel->FindRowWidget( "m_Name" )->isVisible() ) << "other groups stay open";
	Show( { 1 } );
	EXPECT_FALSE( m_pPanel->FindRowWidget( "m_Tint" )->isVisible() ) << "a rebuild keeps what was folded";

	KeyValues3 settings;
	m_pPanel->SaveSettings( &settings );
	CQPropertyPanel other;
	other.SetDomain( &m_Domain );
	other.RestoreSettings( &settings );
	CUtlVector<ZolPropertyTarget> targets;
	targets.AddToTail( ZolPropertyTarget{ m_Data[ 0 ]->GetHandle(), nullptr } );
	other.SetTargets( targets );
	other.show();
	QApplication::processEvents();
	ASSERT_NE( other.FindRowWidget( "m_Tint" ), nullptr );
	EXPECT_FALSE( other.FindRowWidget( "m_Tint" )->isVisible() );
	EXPECT_TRUE( other.FindRowWidget( "m_Name" )->isVisible() );
}
} // namespace
