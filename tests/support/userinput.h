#pragma once
// Input as a user's hand makes it, sent straight to a widget: mouse drags carry the held
// buttons and modifiers on every move (which QTest's helpers don't), wheel turns, and text
// typed into a field.

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <QtTest/QTest>

inline void SendMouse( QWidget *pWidget, QEvent::Type eType, const QPoint &pos, Qt::MouseButton eButton, Qt::MouseButtons buttons,
	Qt::KeyboardModifiers modifiers = Qt::NoModifier )
{
	QMouseEvent event( eType, QPointF( pos ), QPointF( pWidget->mapTo( pWidget->window(), pos ) ), QPointF( pWidget->mapToGlobal( pos ) ), eButton, buttons,
		modifiers );
	QApplication::sendEvent( pWidget, &event );
}

// Press at from, moves in steps to to, release there; modifiers held throughout.
inline void DragMouse( QWidget *pWidget, const QPoint &from, const QPoint &to, Qt::MouseButton eButton = Qt::LeftButton,
	Qt::KeyboardModifiers modifiers = Qt::NoModifier, int nSteps = 4 )
{
	SendMouse( pWidget, QEvent::MouseButtonPress, from, eButton, eButton, modifiers );
	for ( int i = 1; i <= nSteps; ++i )
		SendMouse( pWidget, QEvent::MouseMove, from + ( to - from ) * i / nSteps, Qt::NoButton, eButton, modifiers );
	SendMouse( pWidget, QEvent::MouseButtonRelease, to, eButton, Qt::NoButton, modifiers );
}

inline void SendWheel( QWidget *pWidget, const QPoint &pos, int nDeltaY, Qt::KeyboardModifiers modifiers = Qt::NoModifier )
{
	QWheelEvent event( QPointF( pos ), QPointF( pWidget->mapToGlobal( pos ) ), QPoint(), QPoint( 0, nDeltaY ), Qt::NoButton, modifiers, Qt::NoScrollPhase, false );
	QApplication::sendEvent( pWidget, &event );
}

// Focus, the field's text selected, the text typed over it and Return; then queued work
// (the zero timers of panels) runs.
inline void TypeInto( QLineEdit *pEdit, const char *pText )
{
	pEdit->setFocus();
	pEdit->selectAll();
	QTest::keyClicks( pEdit, pText );
	QTest::keyClick( pEdit, Qt::Key_Return );
	QApplication::processEvents();
}
