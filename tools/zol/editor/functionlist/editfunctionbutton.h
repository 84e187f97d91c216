#pragma once
// The clickable face of one row of the function list: a checkable button (checked while
// its node is selected) carrying the node's name and value, the attributes the function
// writes, and for movable rows a drag handle. An enable check box may stand at its left.

#include <QColor>
#include <QPushButton>

class CQDragHandleWidget;
class CQElidedLabel;
class CQWrittenAttributesLabel;
class CQParticleFunctionBaseWidget;
class QCheckBox;

class CQEditFunctionButton : public QPushButton
{
	Q_OBJECT

public:
	// pOwner is the row; null for the row of the base properties, which has no handle.
	CQEditFunctionButton( CQParticleFunctionBaseWidget *pOwner, bool bWithCheckBox, QWidget *pParent = nullptr );

	CQParticleFunctionBaseWidget *GetOwner() const { return m_pOwner; }
	void SetTexts( const QString &name, const QString &value, const QString &hint );
	// The name's colour; an invalid colour leaves it to the style sheet.
	void SetNameColor( const QColor &color );
	QColor GetNameColor() const { return m_NameColor; }
	CQElidedLabel *GetNameLabel() const { return m_pNameLabel; }
	CQElidedLabel *GetValueLabel() const { return m_pValueLabel; }
	CQWrittenAttributesLabel *GetAttributeLabel() const { return m_pAttributeLabel; }
	QCheckBox *GetCheckBox() const { return m_pCheckBox; }
	CQDragHandleWidget *GetDragHandle() const { return m_pDragHandle; }

	// The check box's state without telling anyone.
	void SetEnabledBoxQuietly( bool bChecked );
	// Checked, and the "bCurrentActiveFunction" property that style sheets read.
	void SetActive( bool bActive );
	// The keyboard modifiers of the click that is being told.
	Qt::KeyboardModifiers GetClickModifiers() const { return m_ClickModifiers; }

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;

signals:
	void EnableDisableBoxChanged( int nState );
	void DoubleClicked();

protected:
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;

private:
	static constexpr int NAME_KEPT_WIDTH = 120;
	CQParticleFunctionBaseWidget *m_pOwner;
	QCheckBox *m_pCheckBox = nullptr;
	CQElidedLabel *m_pNameLabel = nullptr;
	CQElidedLabel *m_pValueLabel = nullptr;
	CQWrittenAttributesLabel *m_pAttributeLabel = nullptr;
	QColor m_NameColor;
	CQDragHandleWidget *m_pDragHandle = nullptr;
	Qt::KeyboardModifiers m_ClickModifiers = Qt::NoModifier;
};
