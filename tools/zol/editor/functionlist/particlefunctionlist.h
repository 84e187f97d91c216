#pragma once
// The function list: the panel in which an artist sees what the shown particle system is
// made of. One section per list of the definition (variables when the system has them,
// pre-emission operators to renderers, then children), one row per node. A click selects
// the node for the property panel (Ctrl adds to the selection, Shift selects a range), a
// check box switches a function off, a handle drags it within its list, and each row tells
// what the function writes (marking attributes an earlier function writes too) and how it
// uses the control point selected in the preview.
//
// The panel keeps no model of its own. A structural change of the document rebuilds every
// row from the document; a change that leaves the structure as it was (a property edit)
// only refreshes the rows' texts, so rows outlive edits of their nodes.

#include <QVector>
#include <QWidget>

#include "core/containers/utlvector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "tools/widgets/draggablewidgetlist.h"
#include "zoldoc_lib/zolelementref.h"
#include "zoldoc_lib/zolevents.h"

class CBaseZolNode;
class CQAssetParentChildMenu;
class CQBindableCommandPushButton;
class CQDraggableWidgetList;
class CQEditFunctionButton;
class CQElidedLabel;
class CQParticleFunctionBaseWidget;
class CQParticleFunctionChildren;
class CQParticleFunctionType;
class CZolSession;
class IAsset;
class IZolNodeVariableContext;
class QToolButton;

// The data type of a dragged row: the session, the list and the row's index.
constexpr const char *PARTICLE_FUNCTION_MIME_TYPE = "application/x-zol-particle-function";

class CQParticleFunctionList : public QWidget, public IDraggableItemList
{
	Q_OBJECT

public:
	explicit CQParticleFunctionList( IZolNodeVariableContext *pVariableContext, QWidget *pParent = nullptr );
	~CQParticleFunctionList() override;

	// The session to show (null for none); also called again with the shown session after
	// it loaded or saved its file.
	void SetSession( CZolSession *pSession );
	CZolSession *GetSession() const { return m_pSession; }
	// The session is being destroyed: let go of it without touching it.
	void ForgetSession( CZolSession *pSession );

	void RebuildList();
	void UpdateSelection( const CUtlVector<CBaseZolNode *> &nodes );
	void UpdateTitle();
	void RefreshEnabledState();
	void RefreshWrittenAttributes( ParticleFunctionType_t eType );
	void RefreshCheckedType();
	void RefreshChildStatus();
	// Name colours by the preview's selected control point.
	void RefreshControlPointColors();

	// A row's button was clicked, with these modifiers held.
	void OnRowClicked( CQParticleFunctionBaseWidget *pRow, Qt::KeyboardModifiers modifiers );

	// The rows in display order, and what stands around them.
	const QVector<CQParticleFunctionBaseWidget *> &GetRows() const { return m_Widgets; }
	CQParticleFunctionBaseWidget *FindRow( const CBaseZolNode *pNode ) const;
	CQEditFunctionButton *GetBaseButton() const { return m_pBaseButton; }
	CQDraggableWidgetList *GetListWidget() const { return m_pList; }
	CQParticleFunctionType *GetSectionHeader( ParticleFunctionType_t eType ) const;
	CQParticleFunctionChildren *GetChildrenSection() const { return m_pChildrenSection; }
	CQElidedLabel *GetTitle() const { return m_pTitle; }
	QToolButton *GetPrevButton() const { return m_pPrevButton; }
	QToolButton *GetNextButton() const { return m_pNextButton; }
	QToolButton *GetAssetMenuButton() const { return m_pAssetMenuButton; }
	CQAssetParentChildMenu *GetParentChildMenu() const { return m_pParentChildMenu; }
	CQBindableCommandPushButton *GetAddFunctionButton() const { return m_pAddFunctionButton; }
	CQBindableCommandPushButton *GetAddChildButton() const { return m_pAddChildButton; }
	// How many times the rows were made anew; a property edit must not add to it.
	int GetRebuildCount() const { return m_nRebuildCount; }

	// IDraggableItemList
	const void *GetDragOwner() const override;
	bool FindDropPosition( const QPoint &globalPoint, int nType, int *pIndex ) const override;
	bool GetDropIndicator( int nType, int nIndex, QWidget **ppWidget, int *pOffset ) const override;
	void MoveItem( int nType, int nFrom, int nTo ) override;

public slots:
	void SelectBaseProperties();
	void PrevSystemPressed();
	void NextSystemPressed();
	void OnSessionAssetMenu();
	void OnParentChildAssetSelected( IAsset *pAsset );
	void OnParentChildAssetHovered( IAsset *pAsset );
	void OnAddFunctionOfType( ParticleFunctionType_t eType );

signals:
	// A particle system of the family rests under the mouse (null when none): the preview
	// may show which one it is.
	void ParticleSystemHovered( IAsset *pAsset );

private:
	struct SelectedClass_t
	{
		int m_nType;
		CUtlString m_ClassName;
	};

	void OnSelectionChanged( const ZolEvent_SelectionChanged_t & );
	void OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & );
	void OnNodesModified( const ZolEvent_NodesModified_t &event );
	void OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & );
	void OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t & );

	// The lists shown, in order, for the document as it stands.
	void GetSectionOrder( CUtlVector<ParticleFunctionType_t> *pOrder ) const;
	// Whether the rows stand for the document's nodes in the document's order.
	bool RowsMatchDocument() const;
	// Every text of every row read again, for a change that left the structure alone.
	void RefreshRows();
	void ClearRows();
	void UpdateSelectionFromDocument( bool bRemember );
	void ApplySelection( const CUtlVector<CBaseZolNode *> &nodes, bool bRemember );
	void GetSelectedClasses( CUtlVector<SelectedClass_t> *pClasses ) const;
	void SelectClasses( const CUtlVector<SelectedClass_t> &classes );
	void UpdateHistoryButtons();
	void UpdateSessionWidgets();
	int GetControlPointFlags( const CQParticleFunctionBaseWidget *pRow ) const;

	QToolButton *m_pPrevButton = nullptr;
	QToolButton *m_pNextButton = nullptr;
	QToolButton *m_pAssetMenuButton = nullptr;
	CQAssetParentChildMenu *m_pParentChildMenu = nullptr;
	CQDraggableWidgetList *m_pList = nullptr;
	CQParticleFunctionChildren *m_pChildrenSection = nullptr;
	QVector<CQParticleFunctionBaseWidget *> m_Widgets;
	CQEditFunctionButton *m_pBaseButton = nullptr;
	CQElidedLabel *m_pTitle = nullptr;
	CZolSession *m_pSession = nullptr;
	IZolNodeVariableContext *m_pVariableContext = nullptr;
	CQBindableCommandPushButton *m_pAddFunctionButton = nullptr;
	CQBindableCommandPushButton *m_pAddChildButton = nullptr;

	CToolEventMapRegistrationHelper<CQParticleFunctionList> m_EventMap;
	// The session commands (AddFunction, AddChild, Undo, ...) reach the shown session.
	CBindTargetProxy m_SessionTarget;
	QVector<CQParticleFunctionType *> m_Headers;
	// The classes of the last selection the user made, kept over a reload of the file.
	CUtlVector<SelectedClass_t> m_SelectedClasses;
	// Where a Shift click's range starts.
	ZolElementRef_t m_SelectionAnchor = ZolElementRef_t::None();
	int m_nRebuildCount = 0;
};
