#pragma once
// One control point's row in the preview controls: its edit mode's icon, its position (or
// its angles in the orientation mode) as three numbers, its pin, and under them what it
// is attached to. The row shows the session's state and writes back only through the
// session: a typed value or a field's drag is one undo step that leaves the file alone.
// A point that the definition drives itself can't be edited here.

#include <QGroupBox>

#include "core/particles/particleparamid.h"

class CQEditboxVector3;
class CQSmartComboBox;
class CQToolButton;
class CZolSession;
class QComboBox;
class QToolButton;
struct ZolKnownControlPoint_t;

class CQControlPointEditor : public QGroupBox
{
	Q_OBJECT

public:
	CQControlPointEditor( CZolSession *pSession, const ZolKnownControlPoint_t &known, QWidget *pParent = nullptr );

	const ParticleParamID_t &GetKey() const { return m_Key; }
	bool IsDriven() const { return m_bDriven; }
	// Shows the state without writing anything back.
	void Refresh();
	// The look of the selected row: grey text and buttons, bold.
	void SetHighlighted( bool bHighlighted );
	bool IsHighlighted() const { return m_bHighlighted; }
	// The attachment names of the entity's model, for attach types 4 and 5.
	void RefreshAttachmentList();

	CQEditboxVector3 *GetValueEdit() const { return m_pValue; }
	QToolButton *GetExpandButton() const { return m_pExpandButton; }
	CQToolButton *GetIconButton() const { return m_pIconButton; }
	QToolButton *GetLockButton() const { return m_pLockButton; }
	QWidget *GetDetailsWidget() const { return m_pDetails; }
	CQSmartComboBox *GetEntityCombo() const { return m_pEntityCombo; }
	QComboBox *GetAttachTypeCombo() const { return m_pAttachTypeCombo; }
	QComboBox *GetAttachmentNameCombo() const { return m_pAttachmentNameCombo; }

	static const char *GetAttachTypeWord( int nType );

public slots:
	void OnControlPointChanged();
	void OnLockToggled();
	void OnSelectControlPointEditor();
	void OnToggleControlPointEditor();
	void OnRightClickContextMenu();
	void OnEditModeChanged( int fieldType );
	void OnToggleExpand();
	void OnParticleAttachEntityChanged();
	void OnParticleAttachModeChanged();
	void OnParticleAttachNameChanged();

private:
	int GetEditMode() const;
	void SelectIfNot();
	void UpdateIcon();
	// The colour mode's dialog: a chosen colour goes to the position.
	void PickColor();

	CZolSession *m_pSession;
	ParticleParamID_t m_Key;
	bool m_bDriven = false;
	int m_nUsageKind = 0;
	bool m_bHighlighted = false;
	// A field's drag runs as one undo step, opened when it starts.
	bool m_bDragging = false;
	QToolButton *m_pExpandButton = nullptr;
	CQToolButton *m_pIconButton = nullptr;
	CQEditboxVector3 *m_pValue = nullptr;
	QToolButton *m_pLockButton = nullptr;
	QWidget *m_pDetails = nullptr;
	CQSmartComboBox *m_pEntityCombo = nullptr;
	QComboBox *m_pAttachTypeCombo = nullptr;
	QComboBox *m_pAttachmentNameCombo = nullptr;
};
