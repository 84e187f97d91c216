// The input editors in the editor's window, on the shipped samples: a float input switched
// to a curve over the particle's life, a key of the curve moved with the mouse, the file
// saved and read back holding that curve, and undo bringing the old input back; a colour
// gradient edited in the panel; the attribute editor factories all registered.

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QScrollArea>
#include <QtTest/QTest>

#include "core/host/ipropertyeditorsystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "tests/support/userinput.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "core/mathlib/piecewisecurve.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h"
#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"
#include "tools/widgets/color/colorgradienteditor.h"
#include "tools/widgets/curveeditorwidget.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/functionlist/particlefunctionwidget.h"
#include "tools/zol/editor/inputs/particlecurveeditor.h"
#include "tools/zol/editor/properties/zolpropertywidget.h"
#include "tools/zol/editor/zolattributeeditorfactories.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
class InputEditorsAppTest : public ZolWindowAppTest
{
protected:
	CQPropertyPanel *Panel() const { return m_pWindow->GetPropertyWidget()->GetPanel(); }
	CZolDoc *Doc() const { return m_pSession->GetDoc(); }
	CBaseZolNode *Node( ParticleFunctionType_t eType, int nIndex ) const { return Doc()->GetRoot()->GetNode( eType, nIndex ); }
	int UndoSteps() const { return Doc()->GetUndoHistory()->GetStepCount(); }
	void OpenAndSelect( const char *pPath, ParticleFunctionType_t eType, int nIndex )
	{
		m_pSession = Open( pPath );
		ASSERT_NE( m_pSession, nullptr );
		QApplication::processEvents();
		m_pApp->Frame();
		Select( eType, nIndex );
	}
	// A click on the function's row, as the user selects it.
	void Select( ParticleFunctionType_t eType, int nIndex )
	{
		CQParticleFunctionBaseWidget *pRow = m_pWindow->GetFunctionList()->FindRow( Node( eType, nIndex ) );
		ASSERT_NE( pRow, nullptr );
		QTest::mouseClick( pRow->GetEditButton(), Qt::LeftButton, Qt::NoModifier, pRow->GetEditButton()->rect().center() );
		QApplication::processEvents();
	}
	// The row's editor; its headers stay out of this file, which the host's particle
	// classes share names with.
	QWidget *Editor( const char *pKey ) const { return Panel()->FindEditor( QString::fromUtf8( pKey ) ); }
	// A row of an editor's menu ("CreateTypeMenu", "CreateMapMenu") chosen by its text.
	static void Choose( QWidget *pEditor, const char *pMakeMenu, const char *pText )
	{
		QMenu *pMenu = nullptr;
		ASSERT_TRUE( QMetaObject::invokeMethod( pEditor, pMakeMenu, Q_RETURN_ARG( QMenu *, pMenu ) ) ) << pMakeMenu;
		ASSERT_NE( pMenu, nullptr );
		std::unique_ptr<QMenu> pOwned( pMenu );
		for ( QAction *pAction : pMenu->actions() )
		{
			if ( pAction->text() == QString::fromUtf8( pText ) )
			{
				pAction->trigger();
				QApplication::processEvents();
				return;
			}
		}
		FAIL() << "no menu row " << pText;
	}
	const KeyValues3 *Member( ParticleFunctionType_t eType, int nIndex, const char *pMember ) const
	{
		return Node( eType, nIndex )->GetKV3()->FindMember( pMember );
	}

	CZolSession *m_pSession = nullptr;
};
} // namespace

TEST_F( InputEditorsAppTest, AFloatInputBecomesACurveOverLifeIsSavedAndUndoBringsTheOldInputBack )
{
	OpenAndSelect( "particles/samples/fire.tfxs", PARTICLE_FUNCTION_INITIALIZER, 1 );
	QWidget *pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	EXPECT_STREQ( pEditor->metaObject()->className(), "CQPerParticleFloatInputEditor" );
	EXPECT_EQ( pEditor->height(), 44 ) << "a random input's row";
	const int nSteps = UndoSteps();
	const KeyValues3 before = *Member( PARTICLE_FUNCTION_INITIALIZER, 1, "m_InputValue" );

	Choose( pEditor, "CreateTypeMenu", "Particle Age (0-1)" );
	Choose( pEditor, "CreateMapMenu", "Curve" );
	EXPECT_EQ( UndoSteps(), nSteps + 2 );
	pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	EXPECT_EQ( pEditor->height(), 42 + 160 );
	EXPECT_STREQ( Member( PARTICLE_FUNCTION_INITIALIZER, 1, "m_InputValue" )->GetMemberString( "m_nMapType" ), "PF_MAP_TYPE_CURVE" );

	// The key at (1, 1) dragged down to half.
	CQCurveEditorWidget *pCurve = pEditor->findChild<CQParticleCurveEditor *>( QStringLiteral( "Curve" ) )->GetCurveWidget();
	const QPoint from = pCurve->CurveToScreen( 1.0, 1.0 ).toPoint();
	const QPoint to = pCurve->CurveToScreen( 1.0, 0.5 ).toPoint();
	DragMouse( pCurve, from, to );
	QApplication::processEvents();
	EXPECT_EQ( UndoSteps(), nSteps + 3 ) << "the drag is one step";
	m_pApp->Frame();
	// The preview runs what the panel shows: the next frame compiled the curve.
	EXPECT_NE( strstr( m_pSession->GetLastCompiledText(), "PF_MAP_TYPE_CURVE" ), nullptr ) << m_pSession->GetLastCompiledText().Get();

	ASSERT_TRUE( m_pApp->SaveSession( m_pSession ) );
	KeyValues3 saved;
	CUtlString error;
	const std::string text = ReadText( m_Root / "content/particles/samples/fire.tfxs" );
	ASSERT_TRUE( LoadKV3FromText( &saved, &error, text.data(), text.size(), KV3_FORMAT_TFXS ) ) << error.Get();
	const KeyValues3 *pInput = saved.FindMember( "m_Initializers" )->GetArrayElement( 1 )->FindMember( "m_InputValue" );
	ASSERT_NE( pInput, nullptr );
	EXPECT_STREQ( pInput->GetMemberString( "m_nType" ), "PF_TYPE_PARTICLE_AGE_NORMALIZED" );
	EXPECT_STREQ( pInput->GetMemberString( "m_nMapType" ), "PF_MAP_TYPE_CURVE" );
	const KeyValues3 *pSpline = pInput->FindMember( "m_Curve" ) ? pInput->FindMember( "m_Curve" )->FindMember( "m_spline" ) : nullptr;
	ASSERT_NE( pSpline, nullptr );
	ASSERT_EQ( pSpline->GetArrayElementCount(), 2 );
	EXPECT_NEAR( pSpline->GetArrayElement( 1 )->GetMemberDouble( "y" ), 0.5, 0.02 );
	EXPECT_NEAR( pSpline->GetArrayElement( 1 )->GetMemberDouble( "x" ), 1.0, 1e-6 );

	// Three steps back: the random input as it was, and its page.
	for ( int i = 0; i < 3; ++i )
		Doc()->Undo();
	QApplication::processEvents();
	EXPECT_TRUE( Member( PARTICLE_FUNCTION_INITIALIZER, 1, "m_InputValue" )->IsEqual( before ) );
	Select( PARTICLE_FUNCTION_INITIALIZER, 1 );
	pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	EXPECT_EQ( pEditor->height(), 44 ) << "the random page again";

	// Read back from the file, the curve is there again.
	ASSERT_TRUE( m_pSession->Reload() );
	QApplication::processEvents();
	Select( PARTICLE_FUNCTION_INITIALIZER, 1 );
	pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	EXPECT_EQ( pEditor->height(), 42 + 160 );
	const CPiecewiseCurve shown = pEditor->findChild<CQParticleCurveEditor *>( QStringLiteral( "Curve" ) )->GetCurve();
	ASSERT_EQ( shown.GetKeyCount(), 2 );
	EXPECT_NEAR( shown.GetKey( 1 ).y, 0.5f, 0.02f );
}

TEST_F( InputEditorsAppTest, AGradientStopDraggedInThePanelIsOneStepOfTheDocument )
{
	OpenAndSelect( "particles/samples/embers.tfxs", PARTICLE_FUNCTION_OPERATOR, 3 );
	QWidget *pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	EXPECT_STREQ( pEditor->metaObject()->className(), "CQPerParticleVecInputEditor" );
	CQColorGradientEditor *pGradient = pEditor->findChild<CQColorGradientEditor *>( QStringLiteral( "Gradient" ) );
	ASSERT_NE( pGradient, nullptr );
	ASSERT_TRUE( pGradient->isVisible() );
	ASSERT_EQ( pGradient->GetGradient().GetStopCount(), 4 );
	const int nSteps = UndoSteps();
	const QPoint start = pGradient->GetStopHandleCentre( 1 );
	DragMouse( pGradient, start, start + QPoint( 30, 0 ) );
	QApplication::processEvents();
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	const KeyValues3 *pStops = Member( PARTICLE_FUNCTION_OPERATOR, 3, "m_InputValue" )->FindMember( "m_Gradient" )->FindMember( "m_Stops" );
	ASSERT_EQ( pStops->GetArrayElementCount(), 4 );
	EXPECT_GT( pStops->GetArrayElement( 1 )->GetMemberDouble( "m_flPosition" ), 0.35 );
	Doc()->Undo();
	QApplication::processEvents();
	pStops = Member( PARTICLE_FUNCTION_OPERATOR, 3, "m_InputValue" )->FindMember( "m_Gradient" )->FindMember( "m_Stops" );
	EXPECT_NEAR( pStops->GetArrayElement( 1 )->GetMemberDouble( "m_flPosition" ), 0.3, 1e-6 );
}

TEST_F( InputEditorsAppTest, EveryFactoryOfTheTableIsRegisteredAndMakesItsWidget )
{
	int nCount = 0;
	const ZolAttributeEditorFactoryEntry_t *pEntries = GetZolAttributeEditorFactories( &nCount );
	ASSERT_EQ( nCount, 13 );
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	ASSERT_NE( pSystem, nullptr );
	for ( int i = 0; i < nCount; ++i )
	{
		const ZolAttributeEditorFactoryEntry_t &entry = pEntries[ i ];
		ASSERT_NE( entry.m_fnCreate, nullptr ) << entry.m_pName;
		auto *pFactory = dynamic_cast<CPropertyAttributeEditorFactoryBase *>( pSystem->FindAttributeEditorFactory( entry.m_pName ) );
		ASSERT_NE( pFactory, nullptr ) << entry.m_pName << " is not registered";
		EXPECT_EQ( pFactory->GetFixedRowHeight(), entry.m_bFixedHeight ? 22 : -1 ) << entry.m_pName;
		PropertyEditorInit_t init;
		std::unique_ptr<CQAttributeEditor_Base> pEditor( pFactory->Create( init, nullptr, "" ) );
		ASSERT_NE( pEditor, nullptr ) << entry.m_pName;
		EXPECT_STREQ( pEditor->metaObject()->className(), entry.m_pWidgetClass );
	}
}

TEST_F( InputEditorsAppTest, TheCurveAndNoisePagesFitThePanelOfANewWindow )
{
	// The panel never scrolls sideways: a page wider than its column cut off every row's
	// right end, the fields of other rows too.
	OpenAndSelect( "particles/samples/embers.tfxs", PARTICLE_FUNCTION_OPERATOR, 2 );
	QWidget *pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	ASSERT_EQ( pEditor->height(), 42 + 160 ) << "the curve page";
	QScrollArea *pScroll = Panel()->findChild<QScrollArea *>();
	ASSERT_NE( pScroll, nullptr );
	EXPECT_LE( pScroll->widget()->width(), pScroll->viewport()->width() );
	for ( const char *pField : { "InputHigh", "OutputHigh", "InputMode" } )
	{
		QWidget *pWidget = pEditor->findChild<QWidget *>( QString::fromLatin1( pField ) );
		ASSERT_NE( pWidget, nullptr ) << pField;
		const QRect inViewport( pWidget->mapTo( pScroll->viewport(), QPoint( 0, 0 ) ), pWidget->size() );
		EXPECT_TRUE( pScroll->viewport()->rect().contains( inViewport ) ) << pField << " lies outside the panel";
	}
	// Its rows get the width they need: squeezed, the fields slide over their labels.
	EXPECT_GE( pEditor->width(), pEditor->minimumSizeHint().width() );

	// The widest page, noise, chosen from the type menu, may want more than the column (the
	// test platform's font is wide) but never widens the panel past it.
	Choose( pEditor, "CreateTypeMenu", "Noise" );
	pEditor = Editor( "m_InputValue" );
	ASSERT_NE( pEditor, nullptr );
	ASSERT_GT( pEditor->height(), 300 ) << "the noise page";
	EXPECT_LE( pScroll->widget()->width(), pScroll->viewport()->width() );
	EXPECT_LE( pEditor->mapTo( pScroll->viewport(), QPoint( pEditor->width(), 0 ) ).x(), pScroll->viewport()->width() );
}

TEST_F( InputEditorsAppTest, DisabledIsOfferedOnlyForAnOptionalTransformAndIsOneStep )
{
	auto menuTexts = []( QWidget *pEditor ) {
		QMenu *pMenu = nullptr;
		QStringList texts;
		if ( QMetaObject::invokeMethod( pEditor, "CreateTypeMenu", Q_RETURN_ARG( QMenu *, pMenu ) ) && pMenu )
		{
			for ( QAction *pAction : pMenu->actions() )
				texts << pAction->text();
			delete pMenu;
		}
		return texts;
	};
	// A ring needs its transform.
	OpenAndSelect( "particles/samples/campfire.tfxs", PARTICLE_FUNCTION_INITIALIZER, 0 );
	QWidget *pRing = Editor( "m_TransformInput" );
	ASSERT_NE( pRing, nullptr );
	EXPECT_STREQ( pRing->metaObject()->className(), "CQParticleTransformInputEditor" );
	const QStringList ringTypes = menuTexts( pRing );
	ASSERT_FALSE( ringTypes.isEmpty() );
	EXPECT_FALSE( ringTypes.contains( "Disabled" ) );

	// The velocity noise may go without one.
	OpenAndSelect( "particles/samples/embers.tfxs", PARTICLE_FUNCTION_INITIALIZER, 1 );
	QWidget *pNoise = Editor( "m_TransformInput" );
	ASSERT_NE( pNoise, nullptr );
	const QStringList noiseTypes = menuTexts( pNoise );
	ASSERT_FALSE( noiseTypes.isEmpty() );
	EXPECT_EQ( noiseTypes.first(), QStringLiteral( "Disabled" ) );
	const int nSteps = UndoSteps();
	Choose( pNoise, "CreateTypeMenu", "Disabled" );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	const KeyValues3 *pTransform = Member( PARTICLE_FUNCTION_INITIALIZER, 1, "m_TransformInput" );
	ASSERT_NE( pTransform, nullptr );
	EXPECT_STREQ( pTransform->GetMemberString( "m_nType" ), "PT_TYPE_INVALID" );
	Doc()->Undo();
	pTransform = Member( PARTICLE_FUNCTION_INITIALIZER, 1, "m_TransformInput" );
	EXPECT_FALSE( pTransform && pTransform->GetMemberString( "m_nType" ) && strcmp( pTransform->GetMemberString( "m_nType" ), "PT_TYPE_INVALID" ) == 0 );
}
