// Adding variables through the add variable dialog, typed into and clicked like a user
// does, and how a variable shared by a parent and its child shows in both.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest/QTest>

#include "tests/zoltool/zolapptestsupport.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/zol/editor/zoladdvariabledialog.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolsharedvariablenote.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
// What the user saw in the dialog, and what they typed.
struct DialogVisit_t
{
	std::string m_Typed;
	std::string m_TypeName; // a type to pick, by its text in the box; empty keeps the box
	bool m_bPressEnter = false;
	std::string m_StartName;
	std::string m_Status;
	std::string m_StatusStyle;
	bool m_bOkEnabled = false;
	bool m_bTypeEnabled = false;
	std::string m_TypeShown;
	std::vector<std::string> m_Offered;
	std::string m_Existing;
};

class ZolAddVariable : public ZolAppTest
{
protected:
	void SetUp() override
	{
		ZolAppTest::SetUp();
		EnsureTestQApplication();
		Start();
		m_pBeacon = Open( "particles/samples/beacon.tfxs" );
		m_pGlow = Open( "particles/samples/beacon_glow.tfxs" );
		ASSERT_TRUE( m_pBeacon && m_pGlow );
		m_pApp->SetAddVariableDialogRunner( [ this ]( CZolNamedValueContext *pContext, CUtlString *pName, CPulseValueFullType *pType ) {
			return RunDialog( pContext, pName, pType );
		} );
	}
	void TearDown() override
	{
		m_pApp->SetAddVariableDialogRunner( nullptr );
		ZolAppTest::TearDown();
	}

	// The real dialog, driven by key presses and clicks.
	bool RunDialog( CZolNamedValueContext *pContext, CUtlString *pName, CPulseValueFullType *pType )
	{
		CQZolAddVariableDialog dialog( pContext );
		dialog.show();
		DialogVisit_t &visit = m_Visit;
		QLineEdit *pEdit = dialog.GetNameBox()->lineEdit();
		visit.m_StartName = pEdit->text().toStdString();
		for ( int i = 0; i < dialog.GetNameBox()->count(); ++i )
			visit.m_Offered.push_back( dialog.GetNameBox()->itemText( i ).toStdString() );
		visit.m_Existing = dialog.GetExistingText()->toPlainText().toStdString();
		pEdit->setFocus();
		pEdit->selectAll();
		QTest::keyClick( pEdit, Qt::Key_Backspace );
		QTest::keyClicks( pEdit, QString::fromStdString( visit.m_Typed ) );
		if ( !visit.m_TypeName.empty() )
			dialog.GetTypeBox()->setCurrentIndex( dialog.GetTypeBox()->findText( QString::fromStdString( visit.m_TypeName ) ) );
		visit.m_Status = dialog.GetStatusLabel()->text().toStdString();
		visit.m_StatusStyle = dialog.GetStatusLabel()->styleSheet().toStdString();
		QPushButton *pOk = dialog.GetButtons()->button( QDialogButtonBox::Ok );
		visit.m_bOkEnabled = pOk->isEnabled();
		visit.m_bTypeEnabled = dialog.GetTypeBox()->isEnabled();
		visit.m_TypeShown = dialog.GetTypeBox()->currentText().toStdString();
		if ( visit.m_bPressEnter )
			QTest::keyClick( pEdit, Qt::Key_Return );
		else
			QTest::mouseClick( pOk, Qt::LeftButton );
		if ( dialog.result() != QDialog::Accepted )
			return false;
		*pName = dialog.GetVariableName();
		*pType = dialog.GetVariableType();
		return true;
	}

	static int VariableCount( CZolSession *pSession ) { return pSession->GetDoc()->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ); }
	static CZolVariableNode *LastVariable( CZolSession *pSession )
	{
		return pSession->GetDoc()->GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, VariableCount( pSession ) - 1 )->AsVariableNode();
	}
	void Add( CZolSession *pSession, const char *pTyped, const char *pTypeName = "" )
	{
		m_Visit = DialogVisit_t();
		m_Visit.m_Typed = pTyped;
		m_Visit.m_TypeName = pTypeName;
		pSession->AddElement( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, pSession->GetNamedValueContext() );
	}

	CZolSession *m_pBeacon = nullptr;
	CZolSession *m_pGlow = nullptr;
	DialogVisit_t m_Visit;
};
} // namespace

TEST_F( ZolAddVariable, AddingTypingAndSharingAVariableReachesParentAndChild )
{
	// The parent gains "Flicker" and keeps it unsaved.
	Add( m_pBeacon, "Flicker", "Float" );
	EXPECT_EQ( m_Visit.m_StartName, "NewVar" );
	EXPECT_EQ( m_Visit.m_Status, "" );
	EXPECT_TRUE( m_Visit.m_bOkEnabled );
	ASSERT_EQ( VariableCount( m_pBeacon ), 2 );
	EXPECT_STREQ( LastVariable( m_pBeacon )->GetName(), "Flicker" );
	EXPECT_EQ( LastVariable( m_pBeacon )->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_TRUE( m_pBeacon->IsModified() );

	// The child sees it before anything is saved, one step up.
	CUtlVector<ZolNamedValueRecord_t> records;
	m_pGlow->GetNamedValueContext()->GetAllNamedValueInfo( &records );
	const ZolNamedValueRecord_t *pFlicker = nullptr;
	for ( const ZolNamedValueRecord_t &record : records )
		pFlicker = record.m_Name.IsEqual_CaseInsensitive( "Flicker" ) ? &record : pFlicker;
	ASSERT_NE( pFlicker, nullptr );
	EXPECT_EQ( pFlicker->m_nParentDepth, 1 );
	EXPECT_STREQ( pFlicker->m_FileName.Get(), "particles/samples/beacon.tfxs" );

	// The child takes the same name in another case: shared, with the parent's type fixed.
	Add( m_pGlow, "FLICKER" );
	EXPECT_EQ( m_Visit.m_Offered, std::vector<std::string>{ "Flicker" } ) << "names the child lacks, once";
	EXPECT_NE( m_Visit.m_Existing.find( "Existing variables in this file: \nGlowSize: PVAL_FLOAT\n\n" ), std::string::npos ) << m_Visit.m_Existing;
	EXPECT_NE( m_Visit.m_Existing.find( "Existing Variables in other files: \nFlicker: PVAL_FLOAT\nGlowSize: PVAL_FLOAT\n\n" ), std::string::npos ) << m_Visit.m_Existing;
	EXPECT_EQ( m_Visit.m_Status, "Shared Value" );
	EXPECT_NE( m_Visit.m_StatusStyle.find( "green" ), std::string::npos );
	EXPECT_FALSE( m_Visit.m_bTypeEnabled );
	EXPECT_EQ( m_Visit.m_TypeShown, "Float" );
	ASSERT_EQ( VariableCount( m_pGlow ), 2 );
	CZolVariableNode *pShared = LastVariable( m_pGlow );
	EXPECT_STREQ( pShared->GetName(), "FLICKER" );
	EXPECT_EQ( pShared->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );

	// Shown in the property panel, the child's variable notes its parent.
	pShared->SetVariableContext( m_pGlow->GetNamedValueContext() );
	ZolSharedVariableNote_t note;
	pShared->GetSharedVariableNote( &note );
	EXPECT_STREQ( note.m_SharedText.Get(), "This variable is shared with parents:\nparticles/samples/beacon.tfxs" );
	EXPECT_FALSE( note.m_bConflict );

	// The parent's variable becomes a vector: the child's type attribute now alerts.
	CZolVariableNode *pParentFlicker = LastVariable( m_pBeacon );
	m_pBeacon->GetDoc()->BeginEdit( "Set Variable Type", true );
	IBaseToolAttr *pTypeAttr = pParentFlicker->GetTableInstance().m_pTable->FindAttribute( pParentFlicker->GetTableInstance(), "m_ValueType" );
	ASSERT_TRUE( pTypeAttr->AsValue()->SetFromString( pParentFlicker->GetTableInstance(), "PVAL_VEC3", 0 ) );
	CUtlString alert;
	EXPECT_TRUE( pTypeAttr->GetAlert( pShared->GetTableInstance(), &alert ) );
	EXPECT_STREQ( alert.Get(), "Conflicting types for FLICKER:\n(this file): PVAL_FLOAT\nparticles/samples/beacon.tfxs: PVAL_VEC3" );
	CUtlString icon;
	EXPECT_TRUE( pTypeAttr->GetIconName( pShared->GetTableInstance(), &icon ) );
	EXPECT_STREQ( icon.Get(), "game:tools/images/zol/named_value_shared.png" );
}

struct BadName_t
{
	const char *m_pTyped;
	const char *m_pStatus;
	bool m_bPressEnter;
};

class ZolAddVariableBadName : public ZolAddVariable, public ::testing::WithParamInterface<BadName_t>
{
};

TEST_P( ZolAddVariableBadName, IsRefusedWithItsStatusAndAddsNothing )
{
	int nBefore = VariableCount( m_pGlow );
	m_Visit = DialogVisit_t();
	m_Visit.m_Typed = GetParam().m_pTyped;
	m_Visit.m_bPressEnter = GetParam().m_bPressEnter;
	m_pGlow->AddElement( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, m_pGlow->GetNamedValueContext() );
	EXPECT_EQ( m_Visit.m_Status, GetParam().m_pStatus );
	EXPECT_NE( m_Visit.m_StatusStyle.find( "red" ), std::string::npos );
	EXPECT_FALSE( m_Visit.m_bOkEnabled );
	EXPECT_TRUE( m_Visit.m_bTypeEnabled );
	EXPECT_EQ( VariableCount( m_pGlow ), nBefore );
	EXPECT_FALSE( m_pGlow->IsModified() );
}

INSTANTIATE_TEST_SUITE_P( Names, ZolAddVariableBadName,
	::testing::Values( BadName_t{ "", "Must provide a name", false }, BadName_t{ "a.b", "Invalid character used", false },
		BadName_t{ "x@", "Invalid character used", true }, BadName_t{ "go!", "Invalid character used", false },
		BadName_t{ "glowSIZE", "Duplicate name in this file", true } ) );

TEST_F( ZolAddVariable, StartNameAvoidsEveryKnownNameAndABatchRunAsksNothing )
{
	m_pGlow->GetDoc()->AddVariable( "NewVar", CPulseValueFullType( PVAL_FLOAT ) );
	m_pBeacon->GetDoc()->AddVariable( "newvar2", CPulseValueFullType( PVAL_FLOAT ) );
	Add( m_pBeacon, "Other" );
	EXPECT_EQ( m_Visit.m_StartName, "NewVar3" );

	// Without a window and without a way of answering nothing is asked or added.
	m_pApp->SetAddVariableDialogRunner( nullptr );
	int nBefore = VariableCount( m_pBeacon );
	m_pBeacon->AddElement( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, m_pBeacon->GetNamedValueContext() );
	m_pBeacon->AddElement( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, nullptr );
	EXPECT_EQ( VariableCount( m_pBeacon ), nBefore );
}
