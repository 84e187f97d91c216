// The vector, transform and model input editors driven with real events: a typed field is
// one write and one undo step, control point numbers are clamped, a type switch from the
// menu shows its page at once and keeps the other fields.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QMenu>
#include <QtTest/QTest>

#include "particleslib/particlemodelinput.h"
#include "particleslib/particletransforminput.h"
#include "particleslib/particlevecinput.h"
#include "tests/zoltool/inputeditortestsupport.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/widgets/vectoredit.h"
#include "tools/zol/editor/inputs/particlemodelinputeditor.h"
#include "tools/zol/editor/inputs/particletransforminputeditor.h"
#include "tools/zol/editor/inputs/particlevecinputeditor.h"

namespace
{
// Triggers the row of the editor's type menu that reads pText.
template <typename E> bool ChooseType( E *pEditor, const char *pText )
{
	std::unique_ptr<QMenu> pMenu( pEditor->CreateTypeMenu() );
	for ( QAction *pAction : pMenu->actions() )
	{
		if ( pAction->text() == QString::fromUtf8( pText ) )
		{
			pAction->trigger();
			return true;
		}
	}
	return false;
}

struct ControlPointText_t
{
	const char *m_pText;
	int m_nExpected;
};
const ControlPointText_t s_ControlPointTexts[] = { { "64", 63 }, { "abc", 0 }, { "12", 12 } };
} // namespace

TEST( TransformInputEditor, ControlPointTextIsClampedAndOrientationIsOneClick )
{
	for ( const ControlPointText_t &c : s_ControlPointTexts )
	{
		CTestInputEditorHost host;
		CParticleTransformInput input;
		input.m_nControlPoint = 5;
		host.SetValue( input );
		auto pEditor = MakeInputEditor<CQParticleTransformInputEditor>( &host );
		CQSmartLineEdit *pCP = pEditor->Part<CQSmartLineEdit>( "ControlPoint" );
		ASSERT_NE( pCP, nullptr );
		ASSERT_TRUE( pCP->isVisibleTo( pEditor.get() ) );
		TypeInto( pCP, c.m_pText );
		EXPECT_EQ( host.GetValue<CParticleTransformInput>().m_nControlPoint, c.m_nExpected ) << c.m_pText;
		EXPECT_EQ( pCP->text(), QString::number( c.m_nExpected ) ) << "the field shows what was written";
		EXPECT_EQ( host.GetWriteCount(), 1 ) << c.m_pText;
	}

	CTestInputEditorHost host;
	host.SetValue( CParticleTransformInput() );
	auto pEditor = MakeInputEditor<CQParticleTransformInputEditor>( &host );
	QCheckBox *pOrientation = pEditor->Part<QCheckBox>( "UseOrientation" );
	ASSERT_TRUE( pOrientation->isChecked() );
	QTest::mouseClick( pOrientation, Qt::LeftButton );
	EXPECT_FALSE( host.GetValue<CParticleTransformInput>().m_bUseOrientation );
	EXPECT_EQ( host.GetUndoSteps(), 1 );
}

TEST( ModelInputEditor, AControlPointModelTakesItsNumberClamped )
{
	for ( const ControlPointText_t &c : s_ControlPointTexts )
	{
		CTestInputEditorHost host;
		CParticleModelInput input;
		input.m_nType = PM_TYPE_CONTROL_POINT;
		input.m_nControlPoint = 2;
		host.SetValue( input );
		auto pEditor = MakeInputEditor<CQParticleModelInputEditor>( &host );
		CQSmartLineEdit *pCP = pEditor->Part<CQSmartLineEdit>( "ControlPoint" );
		ASSERT_TRUE( pCP->isVisibleTo( pEditor.get() ) );
		TypeInto( pCP, c.m_pText );
		const CParticleModelInput written = host.GetValue<CParticleModelInput>();
		EXPECT_EQ( written.m_nControlPoint, c.m_nExpected ) << c.m_pText;
		EXPECT_EQ( written.m_nType, PM_TYPE_CONTROL_POINT );
		EXPECT_EQ( host.GetUndoSteps(), 1 );
	}
}

TEST( VecInputEditor, ATypedComponentIsOneWriteAndASwitchToRandomKeepsTheLiteral )
{
	CTestInputEditorHost host;
	host.SetValue( CPerParticleVecInput( Vector( 1.0f, 2.0f, 3.0f ) ) );
	auto pEditor = MakeInputEditor<CQPerParticleVecInputEditor>( &host );
	CQVectorEdit *pLiteral = pEditor->Part<CQVectorEdit>( "Literal" );
	ASSERT_NE( pLiteral, nullptr );
	ASSERT_TRUE( pLiteral->isVisibleTo( pEditor.get() ) );
	TypeInto( pLiteral->GetComponentEdit( 1 ), "7.5" );
	ASSERT_EQ( host.GetWriteCount(), 1 );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleVecInput>().m_vLiteralValue.y, 7.5f );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleVecInput>().m_vLiteralValue.z, 3.0f );

	ASSERT_TRUE( ChooseType( pEditor.get(), "Random Uniform" ) );
	QApplication::processEvents();
	const CPerParticleVecInput random = host.GetValue<CPerParticleVecInput>();
	EXPECT_EQ( random.m_nType, PVEC_TYPE_RANDOM_UNIFORM );
	EXPECT_FLOAT_EQ( random.m_vLiteralValue.y, 7.5f ) << "the literal stays for a switch back";
	EXPECT_EQ( host.GetUndoSteps(), 2 );
	CQVectorEdit *pRandomMax = pEditor->Part<CQVectorEdit>( "RandomMax" );
	ASSERT_NE( pRandomMax, nullptr );
	EXPECT_TRUE( pRandomMax->isVisibleTo( pEditor.get() ) ) << "the random page at once";
	EXPECT_FALSE( pLiteral->isVisibleTo( pEditor.get() ) );
	TypeInto( pRandomMax->GetComponentEdit( 0 ), "4" );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleVecInput>().m_vRandomMax.x, 4.0f );
	EXPECT_EQ( host.GetUndoSteps(), 3 );
}
