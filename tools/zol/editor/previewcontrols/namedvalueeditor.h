#pragma once
// One variable's row in the preview controls: its value in the preview (a float on a
// slider, a vector's or a transform position's three numbers) and, where the system names
// a domain, the binding picked from it. A change is one undo step of the session, not an
// edit of the file; a refresh never writes back.

#include <QGroupBox>

#include "core/particles/particleparamid.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CQEditboxVector3;
class CQSliderLineEditFloat;
class CQSmartComboBox;
class CQToolButton;
class CZolNamedValueContext;
class CZolSession;
struct ZolKnownControlPoint_t;

class CQNamedValueEditor : public QGroupBox
{
	Q_OBJECT

public:
	CQNamedValueEditor( CZolSession *pSession, CZolNamedValueContext *pContext, const ZolKnownControlPoint_t &known, QWidget *pParent = nullptr );

	const ParticleParamID_t &GetKey() const { return m_Key; }
	const CPulseValueFullType &GetType() const { return m_Type; }
	void Refresh();
	void SetHighlighted( bool bHighlighted );
	bool IsHighlighted() const { return m_bHighlighted; }

	CQToolButton *GetIconButton() const { return m_pIconButton; }
	CQSliderLineEditFloat *GetFloatEdit() const { return m_pFloat; }
	CQEditboxVector3 *GetVectorEdit() const { return m_pVector; }
	CQSmartComboBox *GetBindingCombo() const { return m_pBinding; }

public slots:
	void OnValueChanged();
	void OnSelectNamedValueEditor();
	void OnToggleNamedValueEditor();
	void OnBindingExpressionChanged();

private:
	void BeginGesture();

	CZolSession *m_pSession;
	ParticleParamID_t m_Key;
	CPulseValueFullType m_Type;
	bool m_bHighlighted = false;
	bool m_bInGesture = false;
	CQToolButton *m_pIconButton = nullptr;
	CQSliderLineEditFloat *m_pFloat = nullptr;
	CQEditboxVector3 *m_pVector = nullptr;
	CQSmartComboBox *m_pBinding = nullptr;
};
