#pragma once
// The header of one section of the function list: the list's word and a button that adds
// a function (or child, or variable) of that list.

#include <QWidget>

#include "core/particles/particlefunctiontype.h"

class QLabel;
class QToolButton;

class CQParticleFunctionType : public QWidget
{
	Q_OBJECT

public:
	explicit CQParticleFunctionType( ParticleFunctionType_t eType, QWidget *pParent = nullptr );

	ParticleFunctionType_t GetType() const { return m_eType; }
	QToolButton *GetAddButton() const { return m_pAddButton; }
	QLabel *GetLabel() const { return m_pLabel; }

signals:
	void AddFunctionOfType( ParticleFunctionType_t eType );

protected:
	ParticleFunctionType_t m_eType;
	QToolButton *m_pAddButton = nullptr;
	QLabel *m_pLabel = nullptr;
};
