#pragma once
// One grid of named colours in the colour picker: the user's own ("Custom Colors", kept in
// the host's tool file) or the team's ("tools/colors/shared_colors.txt" under the game
// root). A click picks a colour, a double click accepts it, the add button at the top
// right appends the picker's current colour, and a right click offers the rest.

#include <QColor>
#include <QWidget>

#include "tools/widgets/color/colorgridfile.h"
#include "tools/widgets/color/fatcolor.h"

class QMenu;

class CQColorDialog_ColorGrid : public QWidget
{
	Q_OBJECT

public:
	static constexpr int WIDTH = 296;
	static constexpr int COLUMNS = 12;
	static constexpr int CELL_WIDTH = 20;
	static constexpr int CELL_HEIGHT = 16;
	static constexpr int FIRST_X = 4;
	static constexpr int FIRST_Y = 18;
	static constexpr int STEP_X = 24;
	static constexpr int STEP_Y = 20;
	static constexpr int ADD_BUTTON_WIDTH = 14;

	// Reads its file at once.
	CQColorDialog_ColorGrid( bool bCustom, QWidget *pParent = nullptr );
	// A shared grid with unsaved changes asks whether to save them; the custom grid saves.
	~CQColorDialog_ColorGrid() override;

	bool IsCustom() const { return m_bCustom; }
	// The custom grid without a host to keep it shows only a note.
	bool IsDisabled() const { return m_bDisabled; }
	bool HasChanges() const { return m_bChanged; }
	const ColorGridData_t &GetData() const { return m_Data; }
	int GetCount() const { return int( m_Data.m_Entries.size() ); }
	QColor GetColorAt( int nIndex ) const;
	QString GetTitle() const;
	const QString &GetFileName() const { return m_FileName; }
	const QString &GetPathID() const { return m_PathID; }
	const QString &GetAbsolutePath() const { return m_AbsolutePath; }

	// Where things are.
	QRect GetCellRect( int nIndex ) const;
	int CellAt( const QPoint &pos ) const;
	QRect GetAddButtonRect() const;
	static int HeightForCount( int nCount ) { return ( nCount + COLUMNS - 1 ) / COLUMNS * STEP_Y + 22; }

	// What add and overwrite take.
	void SetCurrentColor( const QColor &color ) { m_CurrentColor = color; }

	void AddCurrentColor();
	void RemoveColor( int nIndex );
	void RenameColor( int nIndex, const QString &name );
	void OverwriteColor( int nIndex, const QColor &color );
	void CopyColor( int nIndex ) const;
	// From the clipboard's colour; false when it holds none.
	bool PasteColor( int nIndex );

	// Writes the grid to its file; clears the changed mark. Failures are logged.
	bool Save();

	// The menu of a cell, as a right click shows it; the caller owns it.
	QMenu *CreateCellMenu( int nIndex, QWidget *pParent );

signals:
	void OnColorPicked( FatColor_t color );
	void OnColorAccepted( FatColor_t color );

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void leaveEvent( QEvent *pEvent ) override;
	void contextMenuEvent( QContextMenuEvent *pEvent ) override;

private:
	void Load();
	void MarkChanged();
	void UpdateHeight();
	void RenameWithDialog( int nIndex );
	void NavigateToFile();
	FatColor_t FatColorAt( int nIndex ) const;

	bool m_bCustom;
	bool m_bDisabled = false;
	bool m_bChanged = false;
	bool m_bAddHovered = false;
	ColorGridData_t m_Data;
	QString m_FileName;
	QString m_PathID;
	QString m_AbsolutePath;
	QColor m_CurrentColor = Qt::white;
};
