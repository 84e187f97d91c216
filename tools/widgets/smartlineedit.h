#pragma once
// A line edit that knows whether it holds text, an integer or a float. A number is changed
// by dragging sideways with the middle mouse button: the step per pixel follows the size
// of the value or the set limits, Shift makes it finer, and Ctrl lifts both limits when
// both are set. It also warns of text that ends in blanks, selects all on the first click
// after focus, refuses the back quote and tells when Escape is pressed. While the user
// hasn't changed its text, the Undo and Redo keys pass on to the window, so that they
// reach the document's history rather than the field's.

#include <QLineEdit>

class QLabel;

class CQSmartLineEdit : public QLineEdit
{
	Q_OBJECT

public:
	enum NumberKind_t
	{
		NUMBER_KIND_TEXT = 0,
		NUMBER_KIND_INTEGER = 1,
		NUMBER_KIND_FLOAT = 2,
	};

	explicit CQSmartLineEdit( QWidget *pParent = nullptr );

	void SetWhitespaceWarning( bool bOn );
	void SetEscapeStopsHere( bool bOn ) { m_bEscapeStopsHere = bOn; }
	void SetSelectOnClick( bool bOn ) { m_bSelectOnClick = bOn; }
	void SetIgnoreBackQuote( bool bOn ) { m_bIgnoreBackQuote = bOn; }
	void SetNumberKind( int nKind ) { m_nNumberKind = nKind; }
	int GetNumberKind() const { return m_nNumberKind; }

	// Limits of a drag; an unset side has none.
	void SetMinimum( double flMinimum );
	void SetMaximum( double flMaximum );
	void ClearLimits();
	bool HasMinimum() const { return m_bHasMinimum; }
	bool HasMaximum() const { return m_bHasMaximum; }
	double GetFloatMinimum() const { return m_flMinimum; }
	double GetFloatMaximum() const { return m_flMaximum; }

	bool IsDragging() const { return m_bDragging; }
	// The step of the drag in progress (or of the last one), without the Shift factors.
	float GetStepPerPixel() const { return m_flStepPerPixel; }
	bool IsWhitespaceWarningShown() const;
	QLabel *GetWhitespaceWarningLabel() const { return m_pWhitespaceWarning; }

	// The number the text holds: 0 when it holds none.
	double GetNumber( bool *pOk = nullptr ) const;

signals:
	void DragStarted();
	void DragStepped();
	void DragEnded();
	void FocusIn();
	void FocusOut();
	// Escape without auto-repeat: the user wants the edit abandoned.
	void EditCancelled();

private slots:
	void OnWhitespaceWarningClickedDelayed();
	void UpdateWhitespaceWarning();

protected:
	bool event( QEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void keyReleaseEvent( QKeyEvent *pEvent ) override;
	void focusInEvent( QFocusEvent *pEvent ) override;
	void focusOutEvent( QFocusEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;
	bool eventFilter( QObject *pWatched, QEvent *pEvent ) override;

private:
	bool PassesHistoryKey( QKeyEvent *pEvent ) const;
	void StartDrag( QMouseEvent *pEvent );
	void StepDrag( QMouseEvent *pEvent );
	void EndDrag();

	bool m_bWhitespaceWarning = true;
	bool m_bEscapeStopsHere = false;
	bool m_bSelectOnClick = true;
	bool m_bIgnoreBackQuote = true;
	bool m_bHasMinimum = false;
	bool m_bHasMaximum = false;
	int m_nNumberKind = NUMBER_KIND_TEXT;
	double m_flMinimum;
	double m_flMaximum;
	int m_nIntMinimum;
	int m_nIntMaximum;
	bool m_bDragging = false;
	float m_flStepPerPixel = 0.2f;
	bool m_bShiftAtPress = false;
	double m_flStartFloat = 0.0;
	int m_nStartInt = 0;
	int m_nStartX = 0;
	bool m_bFirstClickAfterFocus = false;
	QLabel *m_pWhitespaceWarning = nullptr;
};
