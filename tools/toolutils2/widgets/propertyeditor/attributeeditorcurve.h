#pragma once
// The editor of a curve: the curve editor widget in a row, on a curve field ("CurveEditor"
// is the name curve fields ask for) or on a curve inside a KV3 value (a float input's
// mapping curve). Each finished change of the curve (a whole drag, a mode, a paste) is
// one write of the whole curve.

#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

class CQCurveEditorWidget;
class KeyValues3;

class CQAttributeEditor_Curve : public CQAttributeEditor_Base
{
	Q_OBJECT

public:
	static constexpr const char *FACTORY_NAME = "CurveEditor";
	static constexpr int ROW_HEIGHT = 160;

	explicit CQAttributeEditor_Curve( QWidget *pParent = nullptr );

	// Whether a KV3 value is a curve's table: what the panel shows with this editor.
	static bool IsCurveValue( const KeyValues3 &value );
	// Registers the factory of this editor with the property editor system.
	static bool RegisterFactory();

	void Initialize( const PropertyEditorInit_t &init ) override;
	void DisconnectAndClear() override;
	void WriteToAttribute() override;
	void ReadFromAttribute() override;

	CQCurveEditorWidget *GetCurveWidget() const { return m_pCurve; }

protected:
	void ConnectSignals() override;

private slots:
	void OnCurveUpdated();

private:
	CQCurveEditorWidget *m_pCurve = nullptr;
	QStringList m_KV3Path;
};
