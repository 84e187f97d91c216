// The key bindings table over the shipped binding files: every binding a row, and the
// "Find:" text narrowing them as it is typed.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QTableWidget>
#include <QtTest/QTest>

#include <fstream>
#include <iterator>
#include <string>

#include "tools/toolutils2/inputbind/inputbindinglist.h"
#include "tools/toolutils2/widgets/inputbind/inputbindeditor.h"

namespace
{

CInputBindingList ShippedBindings()
{
	CInputBindingList list;
	for ( const char *pName : { "shared_tool_key_bindings.txt", "zol_key_bindings.txt" } )
	{
		const std::string path = std::string( ZOL_SOURCE_DIR ) + "/content/game/tools/keybindings/" + pName;
		std::ifstream in( path );
		const std::string text( ( std::istreambuf_iterator<char>( in ) ), std::istreambuf_iterator<char>() );
		CUtlString strError;
		EXPECT_EQ( list.LoadFromText( text.data(), text.size(), pName, &strError ), BINDING_LOAD_OK ) << path << ": " << strError.Get();
	}
	return list;
}

bool ShownRowHas( const CQInputBindEditor &editor, const char *pCommand, const char *pSequence )
{
	QTableWidget *pTable = editor.GetTable();
	for ( int nRow = 0; nRow < pTable->rowCount(); ++nRow )
	{
		if ( !pTable->isRowHidden( nRow ) && pTable->item( nRow, 1 )->text() == pCommand && pTable->item( nRow, 2 )->text() == pSequence )
			return true;
	}
	return false;
}

TEST( InputBindEditor, ListsEveryBindingAndFindNarrowsByAnyColumnWithWildcards )
{
	const CInputBindingList bindings = ShippedBindings();
	ASSERT_GT( bindings.GetBindings().size(), 10u );
	CQInputBindEditor editor( &bindings );
	editor.show();
	QTableWidget *pTable = editor.GetTable();
	ASSERT_EQ( pTable->columnCount(), 3 );
	EXPECT_EQ( pTable->horizontalHeaderItem( 0 )->text(), QStringLiteral( "Context" ) );
	EXPECT_EQ( pTable->horizontalHeaderItem( 1 )->text(), QStringLiteral( "Command Name" ) );
	EXPECT_EQ( pTable->horizontalHeaderItem( 2 )->text(), QStringLiteral( "Input Sequence" ) );
	EXPECT_EQ( pTable->rowCount(), int( bindings.GetBindings().size() ) );
	EXPECT_EQ( editor.GetShownRowCount(), pTable->rowCount() );
	EXPECT_TRUE( ShownRowHas( editor, "FileSave", "Ctrl+S" ) );

	struct Case_t
	{
		const char *m_pFind;
		const char *m_pCommand; // a row that stays
		const char *m_pSequence;
	} cases[] = {
		{ "ctrl+s", "FileSave", "Ctrl+S" },       // the sequence column, any case
		{ "filesave", "FileSave", "Ctrl+S" },     // the command column
		{ "File*All", "FileSaveAll", "Ctrl+Alt+S" }, // a wildcard inside the text
	};
	for ( const Case_t &c : cases )
	{
		editor.GetFindEdit()->clear();
		QTest::keyClicks( editor.GetFindEdit(), c.m_pFind );
		EXPECT_TRUE( ShownRowHas( editor, c.m_pCommand, c.m_pSequence ) ) << c.m_pFind;
		EXPECT_LT( editor.GetShownRowCount(), pTable->rowCount() ) << c.m_pFind;
		// Closing by Ctrl+F4 matches none of them.
		EXPECT_FALSE( ShownRowHas( editor, "FileClose", "Ctrl+F4" ) ) << c.m_pFind;
	}
	editor.GetFindEdit()->setText( "no such command" );
	EXPECT_EQ( editor.GetShownRowCount(), 0 );
	// The table only shows: a double click edits nothing.
	editor.GetFindEdit()->clear();
	const QRect cell = pTable->visualItemRect( pTable->item( 0, 2 ) );
	QTest::mouseDClick( pTable->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center() );
	EXPECT_TRUE( pTable->viewport()->findChildren<QLineEdit *>().isEmpty() );
}

} // namespace
