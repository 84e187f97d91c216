#pragma once
// A push button that tells when the mouse enters and leaves it, for menus that preview
// what an entry stands for while the mouse rests on it.

#include <QPushButton>

class CQHoverButton : public QPushButton
{
	Q_OBJECT

public:
	explicit CQHoverButton( const QString &text, QWidget *pParent = nullptr );

signals:
	void MouseEnter();
	void MouseLeave();

protected:
	void enterEvent( QEvent *pEvent ) override;
	void leaveEvent( QEvent *pEvent ) override;
};
