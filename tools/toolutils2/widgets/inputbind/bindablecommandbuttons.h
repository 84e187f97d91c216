#pragma once
// Buttons that run a bindable command: each wraps a CQBindableCommandAction, triggers
// it when clicked and follows its text, tool tip and enabled state.

#include <QPushButton>
#include <QToolButton>

class CQBindableCommandAction;

class CQBindableCommandPushButton final : public QPushButton
{
	Q_OBJECT

public:
	CQBindableCommandPushButton( CQBindableCommandAction *pAction, QWidget *pParent = nullptr );
	CQBindableCommandAction *GetAction() const { return m_pAction; }

private slots:
	void OnActionChanged();

private:
	CQBindableCommandAction *m_pAction;
};

class CQBindableCommandToolButton final : public QToolButton
{
	Q_OBJECT

public:
	CQBindableCommandToolButton( CQBindableCommandAction *pAction, QWidget *pParent = nullptr );
	CQBindableCommandAction *GetAction() const { return m_pAction; }

private:
	CQBindableCommandAction *m_pAction;
};
