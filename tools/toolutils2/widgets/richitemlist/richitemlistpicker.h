#pragma once
// A dialog that offers a list of choices, filtered as the user types, with the chosen
// one's description beside it. Choices may stand in named groups; a choice with a help
// key takes its name and description from the help service. A disabled choice is shown
// and can be selected, but the caller adds nothing for it.
//
// Keys go through the input bindings: "RichItemList_Accept" (Enter) accepts when a choice
// is picked, "RichItemList_Reject" (Esc) cancels. The arrow keys walk the visible choices
// from the filter line as from the list; a double click accepts.

#include <QColor>
#include <QDialog>
#include <QIcon>
#include <QVariant>
#include <QVector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/richitemlist/richitemlistfilter.h"

class CQLineEditWithArrowEvents;
class CQTreeWidgetWithArrowEvents;
class QLabel;
class QSplitter;
class QTextBrowser;
class QTreeWidgetItem;

struct CQRichItemListPicker_Choice_Internal
{
	QString m_Name;
	QString m_SecondText;
	QString m_Description;
	QColor m_Color;
	QIcon m_Icon;
	CUtlString m_HelpKey;
	// The name comes from the help service's title of the key, read again at each filter.
	bool m_bDynamicName = false;
	QVariant m_UserData;
	QTreeWidgetItem *m_pItem = nullptr;
	bool m_bDisabled = false;
	int m_nGroup = -1;
};

class CQRichItemListPicker : public QDialog, public IBindTarget
{
	Q_OBJECT

public:
	explicit CQRichItemListPicker( QWidget *pParent = nullptr );
	~CQRichItemListPicker() override;

	// Each answers the new choice's number. A group is made by its first use.
	int AddChoice( const char *pName, const char *pDescription, const char *pGroup = nullptr );
	int AddChoiceWithHelpKey( const char *pKey, const char *pGroup = nullptr );
	void SetName( int nChoice, const char *pName );
	void SetSecondText( int nChoice, const char *pText );
	void SetDisabled( int nChoice, bool bDisabled );
	void SetUserData( int nChoice, const QVariant &data );
	void SetIcon( int nChoice, const QIcon &icon );
	void SetColor( int nChoice, const QColor &color );
	// The help scope of help keys.
	void SetScope( const char *pScope );
	// Whether typing makes the best match current (on by default).
	void SetJumpToBestMatch( bool bJump ) { m_bJumpToBestMatch = bJump; }

	bool HasSelection() const { return GetSelectedChoice() >= 0; }
	int GetSelectedChoice() const;
	QVariant GetSelectedUserData() const;
	bool IsSelectedChoiceEnabled() const;

	int GetChoiceCount() const { return m_Choices.size(); }
	const QString &GetChoiceName( int nChoice ) const { return m_Choices[ nChoice ].m_Name; }
	bool IsChoiceDisabled( int nChoice ) const { return m_Choices[ nChoice ].m_bDisabled; }
	bool IsChoiceVisible( int nChoice ) const;
	bool ShowsDescriptionMarker( int nChoice ) const;
	bool IsGroupVisible( const char *pGroup ) const;
	// The visible choices in the order shown.
	QVector<int> GetVisibleChoices() const;
	QString GetDescriptionText() const;

	CQLineEditWithArrowEvents *GetFilterLine() const { return m_pFilter; }
	CQTreeWidgetWithArrowEvents *GetTree() const { return m_pTree; }

	// The command "RichItemList_Accept": accepts when a choice is picked, else the beep.
	void AcceptIfPicked();

	// IBindTarget
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;

public slots:
	void OnFilterChanged( const QString &text );
	void SelectPreviousChoice();
	void SelectNextChoice();

protected:
	void showEvent( QShowEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;

private slots:
	void OnCurrentItemChanged();
	void OnItemDoubleClicked( QTreeWidgetItem *pItem );

private:
	int AddChoiceInternal( CQRichItemListPicker_Choice_Internal choice, const char *pGroup );
	int FindOrAddGroup( const char *pGroup );
	int GetChoiceOfItem( const QTreeWidgetItem *pItem ) const;
	void RefreshDynamicNames();
	void RefreshItemTexts( int nChoice );
	void ApplyOrder( const CUtlVector<int> &order );
	void SetCurrentChoice( int nChoice );
	void StepChoice( int nStep );

	CQTreeWidgetWithArrowEvents *m_pTree = nullptr;
	CQLineEditWithArrowEvents *m_pFilter = nullptr;
	QLabel *m_pFilterLabel = nullptr;
	QSplitter *m_pSplitter = nullptr;
	QTextBrowser *m_pDescription = nullptr;
	QVector<CQRichItemListPicker_Choice_Internal> m_Choices;
	QVector<QTreeWidgetItem *> m_Groups;
	QStringList m_GroupNames;
	CUtlString m_Scope;
	bool m_bJumpToBestMatch = true;

	// The filter's view of the choices, and its last answer.
	CRichItemListFilter m_Filter;
	CUtlVector<RichItemListEntry_t> m_Entries;
	CUtlVector<RichItemListMatch_t> m_Matches;
	CUtlVector<int> m_Order;
	bool m_bFiltered = false;
};
