// The "Properties" dock in the editor's window, on the shipped samples, driven with real
// events: a selected function shows its fields, typing a value is one undo step that the
// next frame compiles and Ctrl+Z takes back, a slider drag is one step, several selected
// functions share their rows, an undo makes the rows anew, and an edit saved and
// reloaded changes the file in that field alone.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QtTest/QTest>

#include <filesystem>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "tests/support/userinput.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditordomainagnostic.h"
#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"
#include "tools/widgets/slider.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/functionlist/particlefunctionwidget.h"
#include "tools/zol/editor/properties/zolkv3propertydomain.h"
#include "tools/zol/editor/properties/zolpropertywidget.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/widgets/elidedlabel.h"
#include "zoldoc_lib/zoldefinitiondiff.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "core/host/ipropertyeditorsystem.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "zoldoc_lib/izolnodevariablecontext.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
namespace fs = std::filesystem;

class PropertyPanelAppTest : public ZolWindowAppTest
{
protected:
	CZolSession *OpenShown( const char *pContentPath )
	{
		CZolSession *pSession = Open( pContentPath );
		QApplication::processEvents();
		return pSession;
	}
	CQParticleFunctionList *List() const { return m_pWindow->GetFunctionList(); }
	CQPropertyPanel *Panel() const { return m_pWindow->GetPropertyWidget()->GetPanel(); }
	CZolDoc *Doc() const { return List()->GetSession()->GetDoc(); }
	CBaseZolNode *Node( ParticleFunctionType_t eType, int nIndex ) const { return Doc()->GetRoot()->GetNode( eType, nIndex ); }
	int UndoSteps() const { return Doc()->GetUndoHistory()->GetStepCount(); }

	// A click on the function's row in the list, as the user selects it.
	void Select( ParticleFunctionType_t eType, int nIndex, Qt::KeyboardModifiers modifiers = Qt::NoModifier )
	{
		CQParticleFunctionBaseWidget *pRow = List()->FindRow( Node( eType, nIndex ) );
		ASSERT_NE( pRow, nullptr );
		QTest::mouseClick( pRow->GetEditButton(), Qt::LeftButton, modifiers, pRow->GetEditButton()->rect().center() );
		QApplication::processEvents();
	}
	// A field of a particle input's editor in the row of pKey ("Literal", "RandomMax").
	CQSmartLineEdit *InputField( const char *pKey, const char *pField ) const
	{
		QWidget *pEditor = Panel()->FindEditor( QString::fromUtf8( pKey ) );
		return pEditor ? pEditor->findChild<CQSmartLineEdit *>( QString::fromUtf8( pField ) ) : nullptr;
	}
	CQAttributeEditor_DomainAgnostic *Plain( const char *pKey ) const
	{
		return dynamic_cast<CQAttributeEditor_DomainAgnostic *>( Panel()->FindEditor( QString::fromUtf8( pKey ) ) );
	}
	void Type( QLineEdit *pEdit, const char *pText )
	{
		ASSERT_NE( pEdit, nullptr );
		TypeInto( pEdit, pText );
	}
	// Ctrl+Z where the focus is, as a keyboard sends it.
	void Undo()
	{
		QWidget *pFocus = QApplication::focusWidget();
		ASSERT_NE( pFocus, nullptr );
		QTest::keyPress( pFocus, Qt::Key_Control, Qt::ControlModifier );
		QTest::keyClick( pFocus, Qt::Key_Z, Qt::ControlModifier );
		QTest::keyRelease( pFocus, Qt::Key_Control, Qt::NoModifier );
		QApplication::processEvents();
	}
	double EmitRate( CZolSession * = nullptr ) const
	{
		return Node( PARTICLE_FUNCTION_EMITTER, 0 )->GetKV3()->FindMember( "m_flEmitRate" )->GetMemberDouble( "m_flLiteralValue" );
	}
};

TEST_F( PropertyPanelAppTest, TheSelectionShowsItsFieldsAndTheBasePropertiesLeaveTheListsToTheList )
{
	ASSERT_NE( OpenShown( "particles/samples/fire.tfxs" ), nullptr );
	Select( PARTICLE_FUNCTION_EMITTER, 0 );
	EXPECT_EQ( Panel()->GetTitleLabel()->text(), QStringLiteral( "Continuous Emitter" ) );
	QStringList keys = Panel()->GetRowKeys();
	EXPECT_TRUE( keys.contains( "m_flEmitRate" ) );
	ASSERT_NE( Panel()->FindEditor( "m_flEmitRate" ), nullptr );
	EXPECT_STREQ( Panel()->FindEditor( "m_flEmitRate" )->metaObject()->className(), "CQParticleCollectionFloatInput" ) << "a float input has its editor";
	EXPECT_FALSE( keys.contains( "m_flEmitRate/m_flLiteralValue" ) );
	EXPECT_TRUE( keys.contains( "m_flStartTime" ) );
	EXPECT_EQ( InputField( "m_flEmitRate", "Literal" )->text(), QStringLiteral( "40" ) );

	List()->SelectBaseProperties();
	QApplication::processEvents();
	keys = Panel()->GetRowKeys();
	EXPECT_TRUE( keys.contains( "m_nMaxParticles" ) );
	EXPECT_TRUE( keys.contains( "@Base Properties" ) );
	EXPECT_FALSE( keys.contains( "m_Emitters" ) ) << "the function list edits the lists";
	EXPECT_FALSE( keys.contains( "m_controlPointConfigurations" ) );
	EXPECT_TRUE( Plain( "m_nBehaviorVersion" )->GetLineEdit()->isReadOnly() );
	EXPECT_EQ( Plain( "m_nMaxParticles" )->GetLineEdit()->text(), QStringLiteral( "200" ) );
}

TEST_F( PropertyPanelAppTest, TypingAValueIsOneStepTheListAndPreviewFollowAndCtrlZRestoresIt )
{
	CZolSession *pSession = OpenShown( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	m_pApp->Frame();
	Select( PARTICLE_FUNCTION_EMITTER, 0 );
	EXPECT_FALSE( pSession->IsModified() );
	const int nSteps = UndoSteps();
	const int nCompiles = pSession->GetCompileCount();
	const int nListRebuilds = List()->GetRebuildCount();
	QPointer<CQParticleFunctionBaseWidget> pRow = List()->FindRow( Node( PARTICLE_FUNCTION_EMITTER, 0 ) );

	Type( InputField( "m_flEmitRate", "Literal" ), "55" );
	EXPECT_DOUBLE_EQ( EmitRate(), 55.0 );
	EXPECT_TRUE( pSession->IsModified() );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Set rate" );
	// The list keeps its rows and shows the new value; the next frame compiles it.
	ASSERT_TRUE( pRow );
	EXPECT_EQ( List()->GetRebuildCount(), nListRebuilds );
	m_pApp->Frame();
	QApplication::processEvents();
	EXPECT_EQ( pSession->GetCompileCount(), nCompiles + 1 );
	EXPECT_NE( strstr( pSession->GetLastCompiledText(), "m_flLiteralValue = 55.0" ), nullptr ) << pSession->GetLastCompiledText().Get();

	// Ctrl+Z with the focus still in the field reaches the document's history.
	ASSERT_EQ( QApplication::focusWidget(), InputField( "m_flEmitRate", "Literal" ) );
	Undo();
	EXPECT_DOUBLE_EQ( EmitRate(), 40.0 );
	EXPECT_EQ( UndoSteps(), nSteps );
	EXPECT_EQ( InputField( "m_flEmitRate", "Literal" )->text(), QStringLiteral( "40" ) ) << "the rows were made anew for the undone nodes";
	m_pApp->Frame();
	EXPECT_NE( strstr( pSession->GetLastCompiledText(), "m_flLiteralValue = 40.0" ), nullptr );

	// A row that shows its value follows an edit in the panel: Life Duration, a random range.
	Select( PARTICLE_FUNCTION_INITIALIZER, 1 );
	const int nLifeRebuilds = List()->GetRebuildCount();
	QPointer<CQParticleFunctionBaseWidget> pLife = List()->FindRow( Node( PARTICLE_FUNCTION_INITIALIZER, 1 ) );
	ASSERT_TRUE( pLife );
	EXPECT_EQ( pLife->GetEditButton()->GetValueLabel()->GetText(), QStringLiteral( "= Random 0.6 - 1.2" ) );
	Type( InputField( "m_InputValue", "RandomMax" ), "2" );
	m_pApp->Frame();
	QApplication::processEvents();
	ASSERT_TRUE( pLife ) << "the list kept its rows";
	EXPECT_EQ( pLife->GetEditButton()->GetValueLabel()->GetText(), QStringLiteral( "= Random 0.6 - 2" ) );
	EXPECT_EQ( List()->GetRebuildCount(), nLifeRebuilds );
}

TEST_F( PropertyPanelAppTest, ASliderDragIsOneStepAndTextThatIsNoNumberChangesNothing )
{
	ASSERT_NE( OpenShown( "particles/samples/fire.tfxs" ), nullptr );
	// Alpha Fade Out Simple: its fade out time is a share of life, a slider from 0 to 1.
	Select( PARTICLE_FUNCTION_OPERATOR, 3 );
	CQAttributeEditor_DomainAgnostic *pEditor = Plain( "m_flFadeOutTime" );
	ASSERT_NE( pEditor, nullptr );
	ASSERT_EQ( pEditor->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_SLIDER );
	CQSlider *pSlider = pEditor->GetSlider()->GetSlider();
	QApplication::processEvents();
	const int nTrack = pSlider->width() - 3;
	const int nSteps = UndoSteps();
	auto fadeOut = [ this ]() { return Node( PARTICLE_FUNCTION_OPERATOR, 3 )->GetKV3()->GetMemberDouble( "m_flFadeOutTime" ); };
	ASSERT_DOUBLE_EQ( fadeOut(), 0.5 );

	DragMouse( pSlider, QPoint( 1 + nTrack / 4, 6 ), QPoint( 1 + nTrack / 4 + 30, 6 ), Qt::LeftButton, Qt::NoModifier, 6 );
	QApplication::processEvents();
	EXPECT_NEAR( fadeOut(), ( nTrack / 4 + 30 ) / double( nTrack ), 1e-4 );
	EXPECT_EQ( UndoSteps(), nSteps + 1 ) << "one step for the whole drag";
	// With Shift a quarter as far.
	double flBefore = fadeOut();
	DragMouse( pSlider, QPoint( 5, 6 ), QPoint( 45, 6 ), Qt::LeftButton, Qt::ShiftModifier, 6 );
	QApplication::processEvents();
	EXPECT_NEAR( fadeOut() - flBefore, 40 * 0.25 / nTrack, 1e-4 );
	EXPECT_EQ( UndoSteps(), nSteps + 2 );

	Type( Plain( "m_flFadeOutTime" )->GetSlider()->GetLineEdit(), "half" );
	EXPECT_NEAR( fadeOut() - flBefore, 40 * 0.25 / nTrack, 1e-4 );
	EXPECT_EQ( UndoSteps(), nSteps + 2 );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 0 ) << "the slider's field shows the value again without a beep";

	Doc()->Undo();
	Doc()->Undo();
	QApplication::processEvents();
	EXPECT_DOUBLE_EQ( fadeOut(), 0.5 );
	EXPECT_EQ( Plain( "m_flFadeOutTime" )->GetSlider()->GetLineEdit()->text(), QStringLiteral( "0.5" ) );
}

TEST_F( PropertyPanelAppTest, SeveralSelectedFunctionsShareTheirRowsAndEditAllInOneStep )
{
	ASSERT_NE( OpenShown( "particles/samples/fire.tfxs" ), nullptr );
	Select( PARTICLE_FUNCTION_OPERATOR, 2 );
	Select( PARTICLE_FUNCTION_OPERATOR, 3, Qt::ControlModifier );
	ASSERT_EQ( Doc()->GetSelection().Count(), 2 );
	EXPECT_TRUE( Panel()->GetTitleLabel()->text().startsWith( "2 selected" ) ) << Panel()->GetTitleLabel()->text().toStdString();
	QStringList keys = Panel()->GetRowKeys();
	EXPECT_TRUE( keys.contains( "m_bDisableOperator" ) );
	EXPECT_TRUE( keys.contains( "m_nFieldOutput" ) ) << "both write the alpha field";
	EXPECT_FALSE( keys.contains( "m_flFadeInTime" ) );
	EXPECT_EQ( Plain( "m_nFieldOutput" )->GetComboBox()->currentText(), QStringLiteral( "Alpha" ) );

	const int nSteps = UndoSteps();
	Plain( "m_bDisableOperator" )->GetCheckBox()->click();
	QApplication::processEvents();
	EXPECT_FALSE( Node( PARTICLE_FUNCTION_OPERATOR, 2 )->IsEnabled() );
	EXPECT_FALSE( Node( PARTICLE_FUNCTION_OPERATOR, 3 )->IsEnabled() );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	// The list's boxes follow the panel.
	EXPECT_FALSE( List()->FindRow( Node( PARTICLE_FUNCTION_OPERATOR, 2 ) )->GetEditButton()->GetCheckBox()->isChecked() );
	EXPECT_FALSE( List()->FindRow( Node( PARTICLE_FUNCTION_OPERATOR, 3 ) )->GetEditButton()->GetCheckBox()->isChecked() );
}

TEST_F( PropertyPanelAppTest, AnEmitRateChangedInThePanelSavedAndReloadedIsTheFilesOnlyChange )
{
	const fs::path file = m_Root / "content/particles/samples/fire.tfxs";
	const fs::path original = m_Root / "original.tfxs";
	CZolSession *pSession = OpenShown( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	// The file as the editor saves it untouched (with the preview configuration it adds).
	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	fs::copy_file( file, original );
	Select( PARTICLE_FUNCTION_EMITTER, 0 );
	Type( InputField( "m_flEmitRate", "Literal" ), "65" );
	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	EXPECT_FALSE( pSession->IsModified() );
	ASSERT_TRUE( pSession->Reload() );
	QApplication::processEvents();
	EXPECT_DOUBLE_EQ( EmitRate(), 65.0 );

	std::string saved = ReadText( file );
	EXPECT_NE( saved.find( "m_flLiteralValue = 65.0" ), std::string::npos ) << saved;
	std::vector<ZolDiffChange_t> changes;
	CUtlString error;
	ASSERT_TRUE( DiffDefinitionFiles( original.c_str(), file.c_str(), &changes, &error ) ) << error.Get();
	ASSERT_EQ( changes.size(), 1u );
	CUtlString line;
	FormatDiffChange( changes[ 0 ], &line );
	EXPECT_STREQ( line.Get(), "Emitters #1 Continuous Emitter: Rate: 40 -> 65" );
}
} // namespace

namespace
{
TEST_F( PropertyPanelAppTest, AVariableKnowsTheDomainAndItsTypeChangeMakesItsRowsAnew )
{
	ASSERT_NE( OpenShown( "particles/samples/campfire.tfxs" ), nullptr );
	Select( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 );
	CBaseZolNode *pVariable = Node( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 );
	EXPECT_EQ( pVariable->GetVariableContext(), static_cast<IZolNodeVariableContext *>( m_pWindow->GetPropertyDomain() ) );
	EXPECT_EQ( Panel()->GetTitleLabel()->text(), QStringLiteral( "Variable FireHeight" ) );
	CQAttributeEditor_DomainAgnostic *pType = Plain( "m_ValueType" );
	ASSERT_NE( pType, nullptr ) << Panel()->GetRowKeys().join( ' ' ).toStdString();
	QComboBox *pCombo = pType->GetComboBox();
	ASSERT_NE( pCombo, nullptr );
	const QString valueKey = QStringLiteral( "m_DefaultConfig/m_ConfigValue" );
	ASSERT_NE( Panel()->FindRow( valueKey ), nullptr ) << Panel()->GetRowKeys().join( ' ' ).toStdString();
	EXPECT_EQ( Plain( "m_DefaultConfig/m_ConfigValue" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_LINE_EDIT );

	// A vector type: the value's row turns into three fields, in one undo step.
	int nVector = pCombo->findData( QStringLiteral( "PVAL_VEC3" ) );
	ASSERT_GE( nVector, 0 );
	const int nSteps = UndoSteps();
	const int nRebuilds = Panel()->GetRebuildCount();
	pCombo->setCurrentIndex( nVector );
	emit pCombo->activated( nVector );
	QApplication::processEvents();
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_GT( Panel()->GetRebuildCount(), nRebuilds );
	ASSERT_NE( Plain( "m_DefaultConfig/m_ConfigValue" ), nullptr );
	EXPECT_EQ( Plain( "m_DefaultConfig/m_ConfigValue" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_VECTOR );
	// Undone, the float is back.
	Doc()->Undo();
	QApplication::processEvents();
	EXPECT_EQ( Plain( "m_DefaultConfig/m_ConfigValue" )->GetKind(), CQAttributeEditor_DomainAgnostic::KIND_LINE_EDIT );

	// The domain lists the file's variables for the pickers, and stands registered.
	CZolKV3PropertyDomain *pDomain = m_pWindow->GetPropertyDomain();
	EXPECT_TRUE( GetPropertyEditorSystem()->IsPropertyDomainRegistered( pDomain ) );
	QComboBox picker;
	picker.setEditable( true );
	pDomain->FillVariableCombo( &picker, CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_FALSE( picker.isEditable() );
	ASSERT_EQ( picker.count(), 1 );
	EXPECT_EQ( picker.itemText( 0 ), QStringLiteral( "FireHeight" ) );
	EXPECT_FALSE( picker.itemData( 0, Qt::ToolTipRole ).toString().isEmpty() );
	EXPECT_TRUE( CZolKV3PropertyDomain::SelectVariableInCombo( &picker, "FireHeight" ) );
	EXPECT_FALSE( CZolKV3PropertyDomain::SelectVariableInCombo( &picker, "Missing" ) );
	pDomain->FillVariableCombo( &picker, CPulseValueFullType( PVAL_VEC3 ) );
	EXPECT_EQ( picker.count(), 0 ) << "a float doesn't fit a vector";
}
} // namespace

namespace
{
TEST_F( PropertyPanelAppTest, TextTypedButNotEnteredGoesToItsFunctionWhenAnotherIsClicked )
{
	ASSERT_NE( OpenShown( "particles/samples/fire.tfxs" ), nullptr );
	Select( PARTICLE_FUNCTION_EMITTER, 0 );
	QLineEdit *pRate = InputField( "m_flEmitRate", "Literal" );
	pRate->setFocus();
	pRate->selectAll();
	QTest::keyClicks( pRate, "70" );
	const int nSteps = UndoSteps();
	// The click moves the focus first: the field gives its text to the emitter it shows.
	Select( PARTICLE_FUNCTION_INITIALIZER, 0 );
	EXPECT_DOUBLE_EQ( EmitRate(), 70.0 );
	EXPECT_EQ( UndoSteps(), nSteps + 2 ) << "the edit, then the selection";
	EXPECT_EQ( Panel()->GetTitleLabel()->text(), QStringLiteral( "Create Within Sphere" ) );
	EXPECT_TRUE( Panel()->GetRowKeys().contains( "m_fRadiusMax" ) );
}
} // namespace

namespace
{
TEST_F( PropertyPanelAppTest, ADeletedFunctionLeavesThePanelAndUndoBringsItBack )
{
	CZolSession *pSession = OpenShown( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	Select( PARTICLE_FUNCTION_OPERATOR, 3 );
	ASSERT_TRUE( Panel()->GetRowKeys().contains( "m_flFadeOutTime" ) );
	ASSERT_TRUE( pSession->DeleteSelection() );
	QApplication::processEvents();
	EXPECT_FALSE( Panel()->GetRowKeys().contains( "m_flFadeOutTime" ) );
	// What the panel shows now is the document's: its fields read and write.
	for ( const QString &key : Panel()->GetRowKeys() )
	{
		if ( CQAttributeEditor_Base *pEditor = Panel()->FindEditor( key ) )
			pEditor->ReadFromAttribute();
	}
	Doc()->Undo();
	QApplication::processEvents();
	Select( PARTICLE_FUNCTION_OPERATOR, 3 );
	EXPECT_TRUE( Panel()->GetRowKeys().contains( "m_flFadeOutTime" ) );
	EXPECT_EQ( Plain( "m_flFadeOutTime" )->GetSlider()->GetLineEdit()->text(), QStringLiteral( "0.5" ) );
}
} // namespace
