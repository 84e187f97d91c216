#pragma once
// The editor of one colour gradient: the strip as it looks, the stops' handles under it,
// and a footer with the selected stop's colour and position.
//
// Press on a free spot of the band to add a stop there (of the colour already there, so the
// look doesn't change); drag a handle to move it (nothing moves until the mouse has gone 5
// pixels); pull it more than 10 pixels above or below the band to take it out, and back
// to put it in again; middle-click a handle to delete it; double-click one to pick its
// colour. Delete and Backspace remove the selected stop, Escape clears the selection (a
// second Escape is passed on), Ctrl+Z undoes and Ctrl+Y or Ctrl+Shift+Z redoes within the
// editor's own history. The context menu clears, reverses, randomizes, and copies and
// pastes the gradient as KV3 text.

#include <QPixmap>
#include <QWidget>

#include <functional>
#include <random>

#include "tools/widgets/color/colorgradienteditmodel.h"

class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;
class CQColorSwatch;

class CQColorGradientEditor : public QWidget
{
	Q_OBJECT

public:
	static constexpr int SIDE_MARGIN = 6;
	static constexpr int TOP_MARGIN = 4;
	static constexpr int HANDLE_WIDTH = 10;
	static constexpr int HANDLE_HEIGHT = 10;
	static constexpr int HANDLE_ALPHA_EXTRA = 5;
	static constexpr int STRIP_GAP = 5;
	static constexpr int FOOTER_HEIGHT = 25;
	static constexpr int SWATCH_WIDTH = 50;

	explicit CQColorGradientEditor( QWidget *pParent = nullptr );
	~CQColorGradientEditor() override;

	// Shows a gradient; tells nothing. The selection ends; the editor's history stays.
	void SetGradient( const CColorGradient &gradient, bool bAlpha );
	const CColorGradient &GetGradient() const { return m_Model.GetGradient(); }
	bool HasAlpha() const { return m_Model.HasAlpha(); }

	// The most undo steps kept (-1, the default: no limit).
	void SetUndoLimit( int nLimit ) { m_Model.GetHistory().SetLimit( nLimit ); }
	// The seed of Randomize, for repeatable results.
	void SetRandomSeed( unsigned nSeed ) { m_Random.seed( nSeed ); }

	const CColorGradientEditModel &GetModel() const { return m_Model; }
	int GetSelectedStop() const { return m_Model.GetSelectedStop(); }
	void SelectStop( int nStop );
	// Where things are, in the widget's pixels.
	ColorGradientBand_t GetBand() const;
	QRect GetStripRect() const;
	QPoint GetStopHandleCentre( int nStop ) const;
	CQColorSwatch *GetColorSwatch() const { return m_pSwatch; }
	QLineEdit *GetPositionEdit() const { return m_pPositionEdit; }
	QToolButton *GetDeleteButton() const { return m_pDeleteButton; }
	const QPixmap &GetStripPixmap();

	// The context menu, as a right click shows it; the caller owns it.
	QMenu *CreateContextMenu( QWidget *pParent );

	// Gradients as the clipboard carries them (KV3 text).
	static bool GradientToText( const CColorGradient &gradient, QString *pText, QString *pError );
	static bool GradientFromText( const QString &text, CColorGradient *pGradient, QString *pError );
	// Whether Paste Gradient would take the clipboard's text.
	static bool ClipboardHoldsGradient();
	// The menu shared by the editor and its swatch: Clear, Reverse, Randomize, Copy and
	// Paste Gradient (enabled when the clipboard holds one, looked at as the menu opens).
	static QMenu *CreateGradientMenu( QWidget *pParent, std::function<void()> fnClear, std::function<void()> fnReverse,
									  std::function<void()> fnRandomize, std::function<void()> fnCopy, std::function<void()> fnPaste );

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;

public slots:
	void ClearGradient();
	void ReverseGradient();
	void RandomizeGradient();
	void CopyGradient();
	void PasteGradient();
	void OnPositionEditingFinished();
	void OnDeleteClicked();
	void OnMenuAboutToShow();
	void OnFooterMouseEvent();

signals:
	// The gradient changed: bFinished true for a finished change, false for a step of one
	// under way (a drag, a colour being picked).
	void GradientChanged( bool bFinished );
	void EscapeWithNoSelection();

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;
	void leaveEvent( QEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void contextMenuEvent( QContextMenuEvent *pEvent ) override;
	bool eventFilter( QObject *pObject, QEvent *pEvent ) override;

private:
	// After the model changed: footer, cursor, strip and the signal.
	void OnModelResult( CColorGradientEditModel::Result_t eResult );
	void OnSwatchColorEdited( const QColor &color, bool bFinished );
	void UpdateFooter();
	void UpdateCursor();
	void Undo();
	void Redo();
	int GetHandleHeight() const { return HANDLE_HEIGHT + ( HasAlpha() ? HANDLE_ALPHA_EXTRA : 0 ); }
	void PaintHandle( QPainter &painter, int nStop );

	CColorGradientEditModel m_Model;
	std::mt19937 m_Random;
	QPixmap m_StripPixmap;
	bool m_bStripDirty = true;
	// The next colour from the swatch starts a new undo step.
	bool m_bSwatchRunFirst = true;

	QWidget *m_pFooter = nullptr;
	CQColorSwatch *m_pSwatch = nullptr;
	QLineEdit *m_pPositionEdit = nullptr;
	QToolButton *m_pDeleteButton = nullptr;
	QList<QWidget *> m_FooterControls;
};
