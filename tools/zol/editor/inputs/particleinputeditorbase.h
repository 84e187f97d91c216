#pragma once
// What the particle input editors share: reading the one target's KV3 value into a private
// input and writing the whole input back, the field's metadata, the variable combo boxes
// that the property domain fills, the type menus and their buttons, and the number fields
// of the kit. An editor may also live inline inside another one (a vector's float
// components): it then has no targets, and asks its owner for the domain.

#include <QIcon>
#include <QVector>

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

class CParticleNamedValueRef;
class CPulseValueFullType;
class CQSmartLineEdit;
class CZolKV3PropertyDomain;
class QComboBox;
class QLabel;
class QMenu;
class QToolButton;
struct InputTypeMenuRow_t;

class CQParticleInputEditorBase : public CQAttributeEditor_Base
{
	Q_OBJECT

public:
	static constexpr int TYPE_BUTTON_SIZE = 18;
	// What the editor asks of the panel's width at least; its widest pages want more.
	static constexpr int MIN_EDITOR_WIDTH = 120;

	// One row of a type menu.
	struct TypeMenuRow_t
	{
		int m_nValue;
		QString m_Text;
		QString m_Icon; // a file under "game:tools/images/zol/"
	};

	explicit CQParticleInputEditorBase( QWidget *pParent = nullptr );
	~CQParticleInputEditorBase() override;

	// Inline editors ask their owner for the domain and never write themselves.
	void SetInlineOwner( CQParticleInputEditorBase *pOwner ) { m_pInlineOwner = pOwner; }
	CQParticleInputEditorBase *GetInlineOwner() const { return m_pInlineOwner; }
	bool IsInline() const { return m_pInlineOwner != nullptr; }
	// The particle editor's domain, through the host or the owner; null without one.
	CZolKV3PropertyDomain *GetZolDomain() const;

	// Several selected objects: nothing can be edited.
	bool IsMultiSelect() const { return GetTargetCount() > 1; }
	// The field's metadata "MParticleInputOptional".
	bool IsFieldOptional() const;

	// A menu of the rows, each triggering fnChosen with its value; the current one checked.
	QMenu *CreateTypeMenu( const QVector<TypeMenuRow_t> &rows, int nCurrent, std::function<void( int )> fnChosen );
	// The rows of a type menu from its headless table.
	static QVector<TypeMenuRow_t> MenuRows( const std::vector<InputTypeMenuRow_t> &rows );
	// Opens a menu made for a button at the pointer and lets it go after.
	static void PopUpMenu( QMenu *pMenu );

	static QIcon ZolIcon( const QString &file );
	static QToolButton *MakeTypeButton( QWidget *pParent );
	static CQSmartLineEdit *MakeNumberEdit( QWidget *pParent, bool bInteger, int nWidth = 0 );
	static QLabel *MakeLabel( const QString &text, QWidget *pParent );
	// Shows a number as the editors do ('g', 6 digits); signals blocked.
	static void ShowNumber( CQSmartLineEdit *pEdit, double flValue );
	static void ShowInteger( CQSmartLineEdit *pEdit, int nValue );

	// Fills an editable variable combo with the variables of the current file that hold the
	// type, each with its record as tool tip, showing pCurrent; signals blocked.
	void FillVariableCombo( QComboBox *pCombo, const CPulseValueFullType &type, const char *pCurrent ) const;
	// Offers the hovered variable's record (its tool tip) beside the pointer.
	static void ShowHighlightedVariable( QComboBox *pCombo, int nIndex );
	// A variable's name typed or chosen: true when it changed the reference.
	static bool TakeVariableName( const QString &text, CParticleNamedValueRef *pRef );
	// A control point field left: its number, clamped and shown back; true when it changed
	// *pControlPoint.
	static bool TakeControlPointNumber( CQSmartLineEdit *pEdit, int32_t *pControlPoint );

	// IsBeingEdited: a field of this editor has focus and text the user changed.
	bool IsBeingEdited() const override;

protected:
	// The one target's KV3 value: false with several targets, none, or no value.
	bool ReadTargetKV3( KeyValues3 *pValue ) const;
	// Writes the value to the one target; several targets get nothing.
	void WriteTargetKV3( const KeyValues3 &value );

	// An input of class C loaded from the target (defaults when it doesn't load); false
	// when there is no single target.
	template <typename C> bool LoadTargetInput( C *pInput ) const
	{
		KeyValues3 value;
		*pInput = C();
		if ( !ReadTargetKV3( &value ) )
			return false;
		C loaded;
		CUtlString error;
		if ( LoadKV3ObjectInPlace( &loaded, &value, &error ) )
			*pInput = loaded;
		return true;
	}
	// Saves an input of class C (members at their default left out) to the target.
	template <typename C> void SaveTargetInput( const C &input )
	{
		if ( IsMultiSelect() || IsReadOnly() )
			return;
		KeyValues3 table;
		CKV3TransferSaveContext context;
		context.SetSaveDeltaFromDefaults( true );
		CUtlString error;
		if ( SaveKV3Object( input, &table, &error, &context ) )
			WriteTargetKV3( table );
	}

	// Hands the whole input to the host as one undoable edit (or, inline, to the owner).
	void CommitToHost();

private:
	CQParticleInputEditorBase *m_pInlineOwner = nullptr;
};
