#pragma once
// Three number fields side by side for a vector: each drags with the middle button as the
// kit's number fields do, and a finished edit of any of them tells the whole vector once.

#include <QWidget>

#include "core/mathlib/vector.h"

class CQSmartLineEdit;

class CQVectorEdit : public QWidget
{
	Q_OBJECT

public:
	explicit CQVectorEdit( QWidget *pParent = nullptr );
	~CQVectorEdit() override;

	// Shows a vector; tells nothing. Numbers show as 'g' with 6 digits.
	void SetVector( const Vector &vValue );
	// What the fields hold now; a field that holds no number reads 0.
	Vector GetVector() const;
	CQSmartLineEdit *GetComponentEdit( int nComponent ) const { return m_pEdits[ nComponent ]; }
	void SetReadOnly( bool bReadOnly );
	// True while one of the fields has focus and text the user changed.
	bool IsBeingEdited() const;

signals:
	// A field's edit was finished (Return, focus leaving, the end of a drag) and the
	// vector differs from the one shown before.
	void VectorEdited();

private:
	void OnComponentFinished();

	CQSmartLineEdit *m_pEdits[ 3 ] = {};
	Vector m_vShown;
};
