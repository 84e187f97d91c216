#pragma once
// Three number fields of one vector, each shown as "%g". A field changed by typing (on
// Enter or leaving it) or by a middle-button drag tells ValueChanged; text that isn't a
// number is put back as it was. Setting the value from data tells nothing, so a refresh
// never writes back.

#include <QWidget>

#include "core/mathlib/vector.h"

class CQSmartLineEdit;

class CQEditboxVector3 : public QWidget
{
	Q_OBJECT

public:
	explicit CQEditboxVector3( QWidget *pParent = nullptr );

	// Shows the value without telling anyone.
	void SetValue( const Vector &vValue );
	// The three fields read as numbers; a field that doesn't read counts as 0 and pOk
	// goes false.
	Vector GetValue( bool *pOk = nullptr ) const;
	// The three fields as "%g %g %g".
	QString GetText() const;
	void SetFieldEnabled( int nField, bool bEnabled );
	CQSmartLineEdit *GetField( int nField ) const { return m_pFields[ nField ]; }

signals:
	void ValueChanged();
	void FocusIn();
	// A middle-button drag of a field: many changes of one gesture.
	void DragStarted();
	void DragEnded();

private slots:
	void OnFieldEdited();

protected:
	// For subclasses that put captions between the fields.
	CQSmartLineEdit *m_pFields[ 3 ] = {};

private:
	// What each field showed last, to put back text that doesn't read.
	QString m_Shown[ 3 ];
};
