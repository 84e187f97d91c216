#pragma once
// The key state table of the bind engine: one cell per input code, lit while the engine
// holds the code down.

#include <QWidget>

class CInputBindEngine;

class CQInputKeyStateVisualizer final : public QWidget
{
	Q_OBJECT

public:
	explicit CQInputKeyStateVisualizer( const CInputBindEngine *pEngine, QWidget *pParent = nullptr );

	// Names of the codes the engine holds down, in code order.
	QStringList GetDownCodes() const;
	QSize sizeHint() const override;
	bool hasHeightForWidth() const override { return true; }
	int heightForWidth( int nWidth ) const override;

protected:
	void paintEvent( QPaintEvent *pEvent ) override;

private:
	int ColumnCount( int nWidth ) const;
	int CellWidth() const;
	int CellHeight() const;

	const CInputBindEngine *m_pEngine;
};
