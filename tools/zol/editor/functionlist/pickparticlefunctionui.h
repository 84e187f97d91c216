#pragma once
// The picker of a function to add: what the catalogue offers for one list (or for all,
// grouped by list with the presets first), each with its list's icon and its help. On
// acceptance of an enabled choice the function is added to the document and selected, in
// one undo step; a disabled choice ("...: Only one allowed") adds nothing.

#include "core/containers/utlvector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/widgets/richitemlist/richitemlistpicker.h"

class CZolDoc;
class CZolFunctionNode;
struct ZolFunctionPreset_t;

class CQPickParticleFunctionUI : public CQRichItemListPicker
{
	Q_OBJECT

public:
	explicit CQPickParticleFunctionUI( CZolDoc *pDoc, QWidget *pParent = nullptr );

	// Fills the list; PARTICLE_FUNCTION_ROOT (9) offers every list.
	void Populate( ParticleFunctionType_t eType );
	// Shows the dialog; 1 when a function was added, else 0.
	int exec() override;
	// The function that the last accepted pick added, or null.
	CZolFunctionNode *GetAddedNode() const { return m_pAddedNode; }
	// Why the last accepted pick added nothing ("" when it added one or was cancelled).
	const char *GetRefusal() const { return m_Refusal.Get(); }

	struct Pick_t
	{
		CUtlString m_FirstText;  // friendly name, or the preset's description
		CUtlString m_SecondText; // class name
		int m_nType = 0;
		const ZolFunctionPreset_t *m_pPreset = nullptr;
	};
	const CUtlVector<Pick_t> &GetPicks() const { return m_Picks; }

	// The icon of a list's functions.
	static const char *GetFunctionTypeIconPath( ParticleFunctionType_t eType );

private:
	CUtlVector<Pick_t> m_Picks;
	CZolDoc *m_pDoc;
	CZolFunctionNode *m_pAddedNode = nullptr;
	CUtlString m_Refusal;
};
