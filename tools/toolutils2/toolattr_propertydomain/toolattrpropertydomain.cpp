#include "tools/toolutils2/toolattr_propertydomain/toolattrpropertydomain.h"

#include <cstring>

#include "core/host/gameinfo.h"
#include "core/host/ihelpsystem.h"
#include "core/host/iprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logging.h"
#include "core/mathlib/color.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrarray.h"
#include "tools/toolutils2/toolattr/itoolattrkv3.h"
#include "tools/toolutils2/toolattr/itoolattrmap.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "tools/toolutils2/toolattr_propertydomain/itoolattrdomainlistener.h"
#include "tools/toolutils2/toolattr_propertydomain/toolattrmetadataexpression.h"

namespace
{
constexpr const char *ICON_INHERIT = "game:tools/images/propertyeditor/overlay_inherit.png";
constexpr const char *ICON_INHERIT_HOVER = "game:tools/images/propertyeditor/overlay_inherit_hover.png";
constexpr const char *ICON_OVERRIDE = "game:tools/images/propertyeditor/overlay_override.png";
constexpr const char *ICON_OVERRIDE_HOVER = "game:tools/images/propertyeditor/overlay_override_hover.png";
constexpr const char *ICON_ALERT = "game:tools/images/propertyeditor/attr_alert.png";
constexpr const char *ICON_REMOVE = "game:tools/images/propertyeditor/extra_attr_remove.png";
constexpr const char *ICON_REMOVE_HOVER = "game:tools/images/propertyeditor/extra_attr_remove_hover.png";
constexpr const char *ICON_RESET = "game:tools/images/propertyeditor/attr_reset.png";
constexpr const char *ICON_RESET_HOVER = "game:tools/images/propertyeditor/attr_reset_hover.png";
// The domain's own buttons stand in the row's inline zone.
constexpr int BUTTON_ZONE_INLINE = 2;
constexpr int APPLICABLE_NOT_ARRAY_MEMBERS = 3;
constexpr int SPURIOUS_SORT_PRIORITY = -10000;

bool MetaBool( IBaseToolAttr *pAttr, const char *pszKey ) { return pAttr->GetMetadata()->GetMemberBool( pszKey, false ); }
const char *MetaString( IBaseToolAttr *pAttr, const char *pszKey ) { return pAttr->GetMetadata()->GetMemberString( pszKey, "" ); }

void RegisterHelp( const char *pszContext, const char *pszId, const char *pszFriendlyName, const char *pszDescription )
{
	if ( IHelpSystem *pHelp = GetHelpSystem() )
		pHelp->AddEntry( pszContext, pszId, pszFriendlyName, pszDescription );
}

bool LookupHelpText( const char *pszContext, const char *pszId, CUtlString *pOut )
{
	IHelpSystem *pHelp = GetHelpSystem();
	const char *pszText = pHelp ? pHelp->GetText( pszContext, pszId ) : "";
	pOut->Set( pszText );
	return *pszText != 0;
}

ZolPropertyRowButton MakeButton( const char *pszCommand, const char *pszTooltip, const char *pszIcon, const char *pszHoverIcon, bool bClickable )
{
	ZolPropertyRowButton button;
	button.m_Command = pszCommand;
	button.m_Tooltip = pszTooltip;
	button.m_Icon = pszIcon;
	button.m_HoverIcon = pszHoverIcon;
	button.m_bClickable = bClickable;
	button.m_bDisplayOnly = !bClickable;
	button.m_nZone = BUTTON_ZONE_INLINE;
	return button;
}
} // namespace

CToolAttrPropertyDomain::CToolAttrPropertyDomain( IToolAttrDomainListener *pListener ) : m_pListener( pListener ) {}

CToolAttrPropertyDomain::~CToolAttrPropertyDomain() = default;

IBaseToolAttr *CToolAttrPropertyDomain::Walk( const ZolPropertyTarget &property, const ZolPropertyPath &path )
{
	if ( !IsUsable( property ) )
		return nullptr;
	IBaseToolAttr *pAttr = property.m_pAttr;
	for ( int nIndex : path )
	{
		IToolAttr_Array *pArray = pAttr->AsArray();
		// An index that no longer exists means nothing is there.
		if ( !pArray || nIndex < 0 || nIndex >= pArray->GetCount( property.m_hTable ) )
			return nullptr;
		pAttr = pArray->GetElement( property.m_hTable, nIndex );
		if ( !pAttr )
			return nullptr;
	}
	return pAttr;
}

bool CToolAttrPropertyDomain::GetTargetDisplayName( const ZolPropertyTarget &target, CUtlString *pOut )
{
	pOut->Clear();
	return target.m_hTable.IsValid() && target.m_hTable.m_pTable->GetDisplayName( target.m_hTable, pOut );
}

CUtlString CToolAttrPropertyDomain::GetTargetIcon( const ZolPropertyTarget &target )
{
	return target.m_hTable.IsValid() ? CUtlString( target.m_hTable.m_pTable->GetIconName() ) : CUtlString();
}

void CToolAttrPropertyDomain::GetProperties( const ZolPropertyTarget &target, CUtlVector<ZolPropertyTarget> *pProperties )
{
	pProperties->RemoveAll();
	if ( !target.m_hTable.IsValid() )
		return;
	CUtlVector<IBaseToolAttr *> attributes;
	target.m_hTable.m_pTable->GetAttributes( target.m_hTable, &attributes );
	for ( IBaseToolAttr *pAttr : attributes )
	{
		if ( !pAttr || pAttr->IsSuppressed( target.m_hTable ) || IsPropertyFiltered( pAttr, target.m_hTable ) )
			continue;
		pProperties->AddToTail( ZolPropertyTarget{ target.m_hTable, pAttr } );
	}
}

int CToolAttrPropertyDomain::GetPropertyType( const ZolPropertyTarget &property )
{
	if ( !IsUsable( property ) )
		return ZOL_PROPERTY_TYPE_NONE;
	// Arrays show the type of their elements: the first element of the deepest level.
	IBaseToolAttr *pAttr = property.m_pAttr;
	while ( IToolAttr_Array *pArray = pAttr->AsArray() )
	{
		if ( pArray->GetCount( property.m_hTable ) < 1 )
			return ZOL_PROPERTY_TYPE_NONE;
		pAttr = pArray->GetElement( property.m_hTable, 0 );
		if ( !pAttr )
			return ZOL_PROPERTY_TYPE_NONE;
	}
	switch ( pAttr->GetAttrType() )
	{
	case 0: return ZOL_PROPERTY_TYPE_BOOL;
	case 1:
	case 2: return ZOL_PROPERTY_TYPE_INT;
	case 3: return ZOL_PROPERTY_TYPE_FLOAT;
	case 4: return ZOL_PROPERTY_TYPE_VECTOR3;
	case 5: return ZOL_PROPERTY_TYPE_VECTOR2;
	case 6: return ZOL_PROPERTY_TYPE_VECTOR4;
	case 7: return ZOL_PROPERTY_TYPE_ANGLE;
	case 8: return ZOL_PROPERTY_TYPE_COLOR;
	case 9: return ZOL_PROPERTY_TYPE_COLOR_ALPHA;
	case 10: return ZOL_PROPERTY_TYPE_STRING;
	case 11: return ZOL_PROPERTY_TYPE_FLAGS;
	case 13: return ZOL_PROPERTY_TYPE_TABLE;
	case 14: return ZOL_PROPERTY_TYPE_MAP;
	case 16: return ZOL_PROPERTY_TYPE_KIND_16;
	case 18: return ZOL_PROPERTY_TYPE_KIND_18;
	}
	return ZOL_PROPERTY_TYPE_NONE;
}

void CToolAttrPropertyDomain::AddOverrideButtons( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo )
{
	switch ( pAttr->GetOverrideState( handle ) )
	{
	case TOOLATTR_OVERRIDE_OVERRIDING:
	{
		CUtlString tooltip( "This value is overriding a base node." );
		if ( !m_bReadOnly )
			tooltip += " Click to inherit.";
		pInfo->m_Buttons.AddToTail( MakeButton( "inherit_attr", tooltip.Get(), ICON_INHERIT, ICON_INHERIT_HOVER, true ) );
		break;
	}
	case TOOLATTR_OVERRIDE_INHERITING:
	{
		CUtlString tooltip( "This value is currently inherited from a base node." );
		if ( !m_bReadOnly )
			tooltip += " Click to override.";
		pInfo->m_Buttons.AddToTail( MakeButton( "override_attr", tooltip.Get(), ICON_OVERRIDE, ICON_OVERRIDE_HOVER, true ) );
		pInfo->m_bReadOnly = true;
		break;
	}
	case TOOLATTR_OVERRIDE_INHERITING_FIXED: pInfo->m_bReadOnly = true; break;
	default: break;
	}
}

void CToolAttrPropertyDomain::AddDefaultState( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo )
{
	IToolAttr_Table *pTable = handle.m_pTable;
	bool bHasDefault = false;
	if ( !pTable->IgnoresDefaults() && !pAttr->IsAtDefault( handle, &bHasDefault ) )
	{
		if ( !pTable->HidesDefaultMark() )
			pInfo->m_bDiffersFromDefault = true;
		if ( bHasDefault && !pInfo->m_bReadOnly && !m_bReadOnly && !MetaBool( pAttr, "disable_reset_to_default" ) )
		{
			ZolPropertyRowButton button = MakeButton( "reset_attr", "Reset to Default", "", "", true );
			button.m_nZone = 0;
			if ( MetaBool( pAttr, "reset_to_default_icon" ) )
			{
				button.m_nZone = BUTTON_ZONE_INLINE;
				button.m_Icon = ICON_RESET;
				button.m_HoverIcon = ICON_RESET_HOVER;
			}
			pInfo->m_Buttons.AddToTail( button );
		}
		return;
	}
	Color color;
	if ( pAttr->GetDefaultColor( handle, &color ) )
	{
		pInfo->m_RowColor[ 0 ] = color.r();
		pInfo->m_RowColor[ 1 ] = color.g();
		pInfo->m_RowColor[ 2 ] = color.b();
		pInfo->m_RowColor[ 3 ] = color.a();
	}
}

void CToolAttrPropertyDomain::AddHelpAndAlert( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo )
{
	CUtlString context, id;
	bool bHelp = pAttr->GetProceduralHelp( handle, &context, &id ) || pAttr->GetHelpInfo( &context, &id );
	if ( bHelp )
	{
		if ( context.IsEmpty() && handle.m_pNotifyRoot )
			context = handle.m_pNotifyRoot->GetDefaultHelpContext();
		pInfo->m_HelpContext = context;
		pInfo->m_HelpId = id;
		if ( !context.IsEmpty() )
		{
			CUtlString description;
			pAttr->GetDescription( handle, &description );
			RegisterHelp( context.Get(), id.Get(), pInfo->m_FriendlyName.Get(), description.Get() );
		}
	}

	CUtlString alert;
	if ( pAttr->GetAlert( handle, &alert ) && !alert.IsEmpty() )
	{
		ZolPropertyRowButton button = MakeButton( "alert_attr", alert.Get(), ICON_ALERT, "", false );
		CUtlString text;
		if ( LookupHelpText( pInfo->m_HelpContext.Get(), alert.Get(), &text ) )
			button.m_Tooltip = text;
		pInfo->m_Buttons.AddToTail( button );
	}
}

bool CToolAttrPropertyDomain::GetPropertyInfo( const ZolPropertyTarget &property, ZolPropertyRowInfo *pInfo )
{
	*pInfo = ZolPropertyRowInfo();
	// 1. Nothing to describe.
	if ( !IsUsable( property ) )
		return false;
	IBaseToolAttr *pAttr = property.m_pAttr;
	HToolAttrTableInstance handle = property.m_hTable;

	// 2. Name and suppression; a suppressed row says nothing more.
	HToolAttrTableInstance nested = pAttr->GetTableInstance( handle );
	pInfo->m_Name = pAttr->GetName();
	pInfo->m_bSuppressed = pAttr->IsSuppressed( handle );
	if ( const char *pszSuppress = MetaString( pAttr, "suppress_expr" ); *pszSuppress )
	{
		CUtlString field;
		field.Format( "suppress_expr of %s", pAttr->GetName() );
		if ( ToolAttrEvaluateMetadataExpression( pszSuppress, handle, this, false, field.Get() ) )
			pInfo->m_bSuppressed = true;
	}
	if ( pInfo->m_bSuppressed )
		return true;

	// 3. What the row is.
	pInfo->m_nType = GetPropertyType( property );
	pAttr->GetFriendlyName( handle, &pInfo->m_FriendlyName );
	pInfo->m_Group = pAttr->GetGroupName();
	pInfo->m_bExtraFlag = GetRowExtraFlag( property );
	pInfo->m_bAutoExpand = pAttr->GetAutoExpand() == 1;

	// 4. Whether it can be changed.
	pInfo->m_bReadOnly = !pAttr->IsWritable( handle ) || m_bReadOnly;
	pInfo->m_bHidden = pAttr->IsHidden( handle );
	pInfo->m_nSortPriority = pAttr->GetSortPriority();
	pInfo->m_bImportant = pAttr->IsImportant();
	pInfo->m_bRowFlag = pAttr->GetRowFlag();
	pInfo->m_bRequired = pAttr->IsRequired();
	if ( const char *pszReadOnly = MetaString( pAttr, "readonly_expr" ); *pszReadOnly )
	{
		CUtlString field;
		field.Format( "readonly_expr of %s", pAttr->GetName() );
		if ( ToolAttrEvaluateMetadataExpression( pszReadOnly, handle, this, false, field.Get() ) )
			pInfo->m_bReadOnly = true;
	}

	// 5. Flattening into the parent row.
	if ( MetaBool( pAttr, "propattr_flatten_into_parent_row" ) )
	{
		pInfo->m_nFlattenMode = 1;
		pInfo->m_nFlattenStretchFactor = pAttr->GetMetadata()->GetMemberInt( "propattr_flatten_stretch_factor", 0 );
		pInfo->m_bFlattenLabel = MetaBool( pAttr, "propattr_flatten_include_label" );
	}
	if ( nested.IsValid() && nested.m_pTable->GetFlattenIntoParent() )
		pInfo->m_nFlattenMode = 2;
	if ( MetaBool( pAttr, "propattr_force_readonly" ) )
		pInfo->m_bReadOnly = true;

	// 6. Array levels on the way down; the first element ranges found stand.
	const ToolAttrRange_t<int64_t> *pIntRange = nullptr;
	const ToolAttrRange_t<float> *pFloatRange = nullptr;
	IBaseToolAttr *pLevel = pAttr;
	while ( IToolAttr_Array *pArray = pLevel ? pLevel->AsArray() : nullptr )
	{
		pInfo->m_ArrayDimensions.AddToTail( !pArray->CanResize() );
		if ( !pIntRange )
			pIntRange = pArray->GetElementIntRange();
		if ( !pFloatRange )
			pFloatRange = pArray->GetElementFloatRange();
		if ( pArray->GetCount( handle ) < 1 )
			break;
		pLevel = pArray->GetElement( handle, 0 );
	}

	// 7. Inheritance from a base node.
	AddOverrideButtons( pAttr, handle, pInfo );

	// 8 to 10. Optional values, spurious values, defaults.
	bool bCanRemove = false;
	if ( MetaBool( pAttr, "is_optional" ) )
	{
		pInfo->m_Buttons.AddToTail(
			MakeButton( "", "Optional properties not fully supported in property editor (text editor required)", ICON_ALERT, "", false ) );
	}
	else if ( bool bSpurious = false; m_bSpuriousHandling && ( pAttr->IsSpurious( handle, &bSpurious ), bSpurious ) )
	{
		bCanRemove = true;
		pInfo->m_RowColor[ 0 ] = 255;
		pInfo->m_RowColor[ 1 ] = 60;
		pInfo->m_RowColor[ 2 ] = 60;
		pInfo->m_RowColor[ 3 ] = 255;
		if ( bCanRemove && !pInfo->m_bReadOnly && !m_bReadOnly )
		{
			ZolPropertyRowButton button = MakeButton( "remove_attr", "Spurious value not expected in this class. Click to remove.", ICON_REMOVE, ICON_REMOVE_HOVER, true );
			button.m_nApplicableKind = APPLICABLE_NOT_ARRAY_MEMBERS;
			pInfo->m_Buttons.AddToTail( button );
		}
		pInfo->m_nSortPriority = SPURIOUS_SORT_PRIORITY;
	}
	else
	{
		AddDefaultState( pAttr, handle, pInfo );
	}

	// 11. A required value that is empty.
	if ( pInfo->m_bRequired && pAttr->IsEmpty( handle ) )
		pInfo->m_bRequiredAndEmpty = true;

	// 12, 13. Help and alert.
	AddHelpAndAlert( pAttr, handle, pInfo );

	// 14. The attribute's own commands.
	CUtlVector<ToolAttrCustomCommand_t> commands;
	pAttr->GetCustomCommands( handle, &commands );
	for ( const ToolAttrCustomCommand_t &command : commands )
	{
		ZolPropertyRowButton button = MakeButton( command.m_Name.Get(), command.m_Tooltip.Get(), command.m_Icon.Get(), "", true );
		button.m_nZone = command.m_nZone;
		button.m_nApplicableKind = command.m_nApplicableTo;
		pInfo->m_Buttons.AddToTail( button );
	}

	// 15. Edit hint and range.
	FillHint( pAttr, pIntRange, pFloatRange, pInfo );

	// 16. Editor.
	pInfo->m_EditorSpec = ZolEditorSpec::ForAttribute( pAttr );

	// 17. A read-only domain shows its buttons without letting them act.
	if ( m_bReadOnly )
	{
		for ( ZolPropertyRowButton &button : pInfo->m_Buttons )
		{
			if ( ( !button.m_Icon.IsEmpty() || !button.m_HoverIcon.IsEmpty() ) && !button.m_bStaysActive )
			{
				button.m_bDisplayOnly = true;
				button.m_bClickable = false;
			}
		}
	}
	return true;
}

void CToolAttrPropertyDomain::FillHint( IBaseToolAttr *pAttr, const void *pIntRangeIn, const void *pFloatRangeIn, ZolPropertyRowInfo *pInfo )
{
	auto *pIntRange = static_cast<const ToolAttrRange_t<int64_t> *>( pIntRangeIn );
	auto *pFloatRange = static_cast<const ToolAttrRange_t<float> *>( pFloatRangeIn );
	int nHint = pAttr->GetEditHint();
	if ( nHint == TOOLATTR_EDIT_HINT_CHOICES || nHint == TOOLATTR_EDIT_HINT_SUGGESTIONS )
	{
		pInfo->m_nHint = nHint;
		return;
	}
	if ( nHint != TOOLATTR_EDIT_HINT_RANGE )
		return;
	pInfo->m_nHint = nHint;
	if ( IToolAttr_Value *pValue = pAttr->AsValue() )
	{
		if ( pAttr->GetAttrType() == TOOLATTR_TYPE_FLOAT && pValue->GetFloatRange() )
			pFloatRange = pValue->GetFloatRange();
		if ( pAttr->GetAttrType() == TOOLATTR_TYPE_INT && pValue->GetIntRange() )
			pIntRange = pValue->GetIntRange();
	}
	if ( pFloatRange )
	{
		pInfo->m_bRangeIsFloat = true;
		pInfo->m_flRangeMin = pFloatRange->m_Min;
		pInfo->m_flRangeMax = pFloatRange->m_Max;
		pInfo->m_nRangeStep = pFloatRange->m_nFlags;
		pInfo->m_bRangeFlag = pFloatRange->m_bBiased;
	}
	else if ( pIntRange )
	{
		auto clamp32 = []( int64_t n ) { return int32_t( n < INT32_MIN ? INT32_MIN : n > INT32_MAX ? INT32_MAX : n ); };
		pInfo->m_nRangeMin = clamp32( pIntRange->m_Min );
		pInfo->m_nRangeMax = clamp32( pIntRange->m_Max );
		pInfo->m_nRangeStep = pIntRange->m_nFlags;
		pInfo->m_bRangeFlag = pIntRange->m_bBiased;
	}
}

void CToolAttrPropertyDomain::GetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut )
{
	pOut->Clear();
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Value *pValue = pAttr ? pAttr->AsValue() : nullptr;
	if ( !pValue )
	{
		pOut->Set( "<UNKNOWN>" );
		return;
	}
	pValue->GetAsString( property.m_hTable, pOut );
}

void CToolAttrPropertyDomain::GetValueFriendlyText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut )
{
	pOut->Clear();
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Value *pValue = pAttr ? pAttr->AsValue() : nullptr;
	if ( !pValue )
		return;
	CUtlString value;
	pValue->GetAsString( property.m_hTable, &value );

	// Data-file choices name their labels in files of the data file manager, which this
	// host doesn't have: such a value has no friendly text.
	bool bDataFileChoice = pAttr->GetEditHint() == TOOLATTR_EDIT_HINT_DATA_FILE && pAttr->GetEditHintParam() && *pAttr->GetEditHintParam();
	const char *pszEditor = MetaString( pAttr, "editor" );
	if ( strncmp( pszEditor, "LedgeChoice(", 12 ) == 0 && strchr( pszEditor + 12, ')' ) )
		bDataFileChoice = true;
	if ( bDataFileChoice )
		return;

	CUtlVector<ToolAttrGenericChoice_t> choices;
	pValue->GetChoices( ToolAttrHost(), property.m_hTable, &choices );
	for ( const ToolAttrGenericChoice_t &choice : choices )
	{
		if ( choice.m_Value == value )
		{
			*pOut = choice.m_FriendlyName;
			return;
		}
	}
}

bool CToolAttrPropertyDomain::GetElementTarget( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut )
{
	*pOut = ZolPropertyTarget();
	IBaseToolAttr *pAttr = Walk( property, path );
	if ( !pAttr )
		return false;
	HToolAttrTableInstance nested = pAttr->GetTableInstance( property.m_hTable );
	if ( !nested.IsValid() )
		return false;
	pOut->m_hTable = nested.m_pTable->GetAttrInstance( nested );
	return true;
}

void CToolAttrPropertyDomain::AfterValueWrite( const ZolPropertyTarget &property, IBaseToolAttr *pValueAttr )
{
	if ( !pValueAttr->RebuildsOnChange() )
		return;
	m_bRebuildNeeded = true;
	if ( m_pListener )
		m_pListener->OnPropertyRebuild( property.m_hTable, pValueAttr );
}

void CToolAttrPropertyDomain::SetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pText, int nFlags )
{
	if ( m_bReadOnly )
		return;
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Value *pValue = pAttr ? pAttr->AsValue() : nullptr;
	if ( !pValue )
		return;
	pValue->SetFromString( property.m_hTable, pText ? pText : "", nFlags );
	AfterValueWrite( property, pAttr );
}

bool CToolAttrPropertyDomain::GetValueChoices( const ZolPropertyTarget &property, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	pChoices->RemoveAll();
	if ( !IsUsable( property ) )
		return false;
	if ( IToolAttr_Array *pArray = property.m_pAttr->AsArray() )
		pArray->GetElementChoices( ToolAttrHost(), property.m_hTable, pChoices );
	if ( pChoices->IsEmpty() )
	{
		if ( IToolAttr_Value *pValue = property.m_pAttr->AsValue() )
			return pValue->GetChoices( ToolAttrHost(), property.m_hTable, pChoices );
	}
	return !pChoices->IsEmpty();
}

void CToolAttrPropertyDomain::NotifyBeforeChange( const ZolPropertyTarget *pProperties, int nCount, PropEdModifyType_t eModifyType )
{
	if ( m_pListener )
		m_pListener->OnBeforeChange( ZolPropertyBeforeChange_t{ pProperties, nCount, eModifyType } );
}

void CToolAttrPropertyDomain::NotifyAfterChange( int nCode )
{
	if ( m_pListener )
		m_pListener->OnAfterChange( ZolPropertyAfterChange_t{ nCode } );
}

int CToolAttrPropertyDomain::GetArrayCount( const ZolPropertyTarget &property, const ZolPropertyPath &path )
{
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Array *pArray = pAttr ? pAttr->AsArray() : nullptr;
	return pArray ? pArray->GetCount( property.m_hTable ) : 0;
}

int CToolAttrPropertyDomain::ModifyArray( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdArrayOperation_t eOperation, int a, int b )
{
	if ( m_bReadOnly )
		return 0;
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Array *pArray = pAttr ? pAttr->AsArray() : nullptr;
	if ( !pArray )
		return 0;
	HToolAttrTableInstance handle = property.m_hTable;
	switch ( eOperation )
	{
	case PROPED_ARRAY_INSERT:
	{
		if ( pArray->GetElementTypeMode() != 2 )
			return pArray->InsertElement( handle, a ) ? 1 : 0;
		// Owned objects of several classes: the user picks the class first.
		CUtlVector<ToolAttrElementType_t> types;
		pArray->GetElementTypes( handle, &types );
		if ( types.IsEmpty() )
		{
			GetPrompt()->Beep();
			return 0;
		}
		PromptPickRequest_t request;
		request.m_strTitle = "New Item Type";
		for ( const ToolAttrElementType_t &type : types )
		{
			PromptPickRequest_t::Item_t &item = request.m_Items[ request.m_Items.AddToTail() ];
			item.m_strName = type.m_FriendlyName.IsEmpty() ? type.m_Value : type.m_FriendlyName;
			item.m_strDescription = type.m_Description;
		}
		int nChosen = -1;
		if ( !GetPrompt()->PickItem( request, &nChosen ) || nChosen < 0 || nChosen >= types.Count() )
			return 0;
		return pArray->InsertElementOfType( handle, a, types[ nChosen ] ) ? 1 : 0;
	}
	case PROPED_ARRAY_REMOVE: pArray->RemoveElements( handle, a, b ); return 1;
	case PROPED_ARRAY_SWAP: pArray->SwapElements( handle, a, b ); return 1;
	}
	return 0;
}

bool CToolAttrPropertyDomain::GetArrayElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, int nIndex, ZolPropertyTarget *pOut )
{
	*pOut = ZolPropertyTarget();
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Array *pArray = pAttr ? pAttr->AsArray() : nullptr;
	if ( !pArray || nIndex < 0 || nIndex >= pArray->GetCount( property.m_hTable ) )
		return false;
	IBaseToolAttr *pElement = pArray->GetElement( property.m_hTable, nIndex );
	if ( !pElement )
		return false;
	*pOut = ZolPropertyTarget{ property.m_hTable, pElement };
	return true;
}

bool CToolAttrPropertyDomain::GetHelpInfo( const ZolPropertyTarget &target, CUtlString *pContext, CUtlString *pId )
{
	pContext->Clear();
	pId->Clear();
	if ( !target.m_hTable.IsValid() )
		return false;
	IToolAttr_Table *pTable = target.m_hTable.m_pTable;
	bool bHelp = pTable->GetHelpInfo( target.m_hTable, pContext, pId );
	if ( pContext->IsEmpty() && target.m_hTable.m_pNotifyRoot )
		*pContext = target.m_hTable.m_pNotifyRoot->GetDefaultHelpContext();
	CUtlString name, description;
	if ( pTable->GetElementHelpInfo( &name, &description ) && !name.IsEmpty() && !description.IsEmpty() )
		RegisterHelp( pContext->Get(), pId->Get(), name.Get(), description.Get() );
	return bHelp;
}

void CToolAttrPropertyDomain::RunButtonCommand( const char *pCommand, const ZolPropertyTarget &property, const char *pArgument )
{
	if ( !IsUsable( property ) || !pCommand || m_bReadOnly )
		return;
	IBaseToolAttr *pAttr = property.m_pAttr;
	HToolAttrTableInstance handle = property.m_hTable;
	auto is = [ pCommand ]( const char *pName ) { return strcmp( pCommand, pName ) == 0; };
	bool bFailed = false;
	if ( is( "remove_attr" ) )
	{
		pAttr->RemoveSpurious( handle );
		m_bRebuildNeeded = true;
	}
	else if ( is( "reset_attr" ) )
	{
		pAttr->ResetToDefault( handle );
		m_bRebuildNeeded = true;
		if ( pAttr->RebuildsOnChange() && m_pListener )
			m_pListener->OnPropertyRebuild( handle, pAttr );
	}
	else if ( is( "override_attr" ) || is( "inherit_attr" ) )
	{
		pAttr->SetOverride( handle, is( "override_attr" ) );
		m_bRebuildNeeded = true;
	}
	else if ( is( "alert_attr" ) )
	{
	}
	else
	{
		int nAnswer = TOOLATTR_COMMAND_NOT_HANDLED;
		if ( pArgument && *pArgument )
			nAnswer = pAttr->RunCommandWithArgument( handle, pCommand, pArgument );
		if ( nAnswer == TOOLATTR_COMMAND_NOT_HANDLED )
			nAnswer = pAttr->RunCommand( handle, pCommand );
		bFailed = nAnswer != TOOLATTR_COMMAND_DONE;
	}
	if ( bFailed )
	{
		Log_Warning( LOG_ZOL, "ToolAttr command '%s' failed.\n", pCommand );
		GetPrompt()->Beep();
	}
}

bool CToolAttrPropertyDomain::IsKV3Property( const ZolPropertyTarget &property, const ZolPropertyPath &path )
{
	IBaseToolAttr *pAttr = Walk( property, path );
	return pAttr && pAttr->AsKV3();
}

void CToolAttrPropertyDomain::SetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, const KeyValues3 &value, int nFlags )
{
	if ( m_bReadOnly )
		return;
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_KV3 *pKV3 = pAttr ? pAttr->AsKV3() : nullptr;
	if ( !pKV3 )
		return;
	if ( KeyValues3 *pTarget = pKV3->GetKV3ForModify( property.m_hTable, nFlags ) )
		pTarget->CopyFrom( value );
	pKV3->EndKV3Modify( property.m_hTable, nFlags );
	AfterValueWrite( property, pAttr );
}

bool CToolAttrPropertyDomain::GetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, KeyValues3 *pOut )
{
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_KV3 *pKV3 = pAttr ? pAttr->AsKV3() : nullptr;
	const KeyValues3 *pValue = pKV3 ? pKV3->GetKV3( property.m_hTable ) : nullptr;
	if ( !pValue )
	{
		pOut->SetToNull();
		return false;
	}
	pOut->CopyFrom( *pValue );
	return true;
}

IBaseToolAttr *CToolAttrPropertyDomain::ResolveProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut )
{
	IBaseToolAttr *pAttr = Walk( property, path );
	if ( pOut )
		*pOut = pAttr ? ZolPropertyTarget{ property.m_hTable, pAttr } : ZolPropertyTarget();
	return pAttr;
}

bool CToolAttrPropertyDomain::GetMapElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pKey, ZolPropertyTarget *pOut )
{
	*pOut = ZolPropertyTarget();
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Map *pMap = pAttr ? pAttr->AsMap() : nullptr;
	IBaseToolAttr *pElement = pMap ? pMap->GetElement( property.m_hTable, pKey, true ) : nullptr;
	if ( !pElement )
		return false;
	*pOut = ZolPropertyTarget{ property.m_hTable, pElement };
	return true;
}

void CToolAttrPropertyDomain::FillEditContext( const ZolPropertyTarget &property, CToolEditContextQuery_Base *pQuery )
{
	if ( !IsUsable( property ) )
		return;
	property.m_pAttr->FillEditContext( property.m_hTable, pQuery );
	auto *pString = dynamic_cast<CToolEditContextQuery_String *>( pQuery );
	if ( pString && pString->m_eKind == CToolEditContextQuery_String::KIND_NONE )
		property.m_hTable.m_pTable->FillEditContext( property.m_hTable, pQuery );
}

bool CToolAttrPropertyDomain::GetMapKeys( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlVector<CUtlString> *pKeys )
{
	pKeys->RemoveAll();
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Map *pMap = pAttr ? pAttr->AsMap() : nullptr;
	if ( !pMap )
		return false;
	pMap->GetKeys( property.m_hTable, pKeys );
	return true;
}

bool CToolAttrPropertyDomain::ModifyMap( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdMapOperation_t eOperation, const char *pKey )
{
	if ( m_bReadOnly || !pKey )
		return false;
	IBaseToolAttr *pAttr = Walk( property, path );
	IToolAttr_Map *pMap = pAttr ? pAttr->AsMap() : nullptr;
	if ( !pMap )
		return false;
	bool bChanged = eOperation == PROPED_MAP_ADD ? pMap->AddKey( property.m_hTable, pKey ) : pMap->RemoveKey( property.m_hTable, pKey );
	if ( bChanged )
		m_bRebuildNeeded = true;
	return bChanged;
}

bool CToolAttrPropertyDomain::IsPropertyFiltered( IBaseToolAttr *, HToolAttrTableInstance ) { return false; }

bool CToolAttrPropertyDomain::GetRowExtraFlag( const ZolPropertyTarget & ) { return false; }

bool CToolAttrPropertyDomain::GetGlobalValue( const char *pName, KeyValues3 *pValue )
{
	if ( !pName || strcmp( pName, "mod" ) != 0 )
		return false;
	CGameInfo *pGameInfo = GetGameInfo();
	pValue->SetString( pGameInfo ? pGameInfo->GetGameName() : "" );
	return true;
}

CUtlString ZolPropertyListLabel( const ZolPropertyTarget *pProperties, int nCount )
{
	if ( nCount <= 0 || !pProperties )
		return CUtlString( "[NO_ATTRS]" );
	if ( !pProperties[ 0 ].m_hTable.IsValid() )
		return CUtlString( "[INVALID_TARGET]" );
	if ( !pProperties[ 0 ].m_pAttr )
		return CUtlString( "[NULL_ATTR]" );
	CUtlString name;
	pProperties[ 0 ].m_pAttr->GetFriendlyName( pProperties[ 0 ].m_hTable, &name );
	return name;
}
