#include "tools/toolutils2/widgets/propertyeditor/attributeeditorcurve.h"

#include <QVBoxLayout>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/mathlib/piecewisecurve.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h"
#include "tools/toolutils2/widgets/propertyeditor/kv3valuepath.h"
#include "tools/widgets/curveeditorwidget.h"

CQAttributeEditor_Curve::CQAttributeEditor_Curve( QWidget *pParent ) : CQAttributeEditor_Base( pParent )
{
	QVBoxLayout *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pCurve = new CQCurveEditorWidget( this );
	// A row's room, with the labels of the edges above and below.
	m_pCurve->SetOptions( CQCurveEditorWidget::RowOptions( 14 ) );
	pLayout->addWidget( m_pCurve );
	setFixedHeight( ROW_HEIGHT );
	SetPoolKey( FACTORY_NAME );
}

bool CQAttributeEditor_Curve::IsCurveValue( const KeyValues3 &value )
{
	return value.IsTable() && value.HasMember( "m_spline" ) && value.FindMember( "m_spline" )->IsArray();
}

bool CQAttributeEditor_Curve::RegisterFactory()
{
	static CPropertyAttributeEditorFactory<CQAttributeEditor_Curve, CPropertyAttributeEditorFactoryBaseVariableHeight> s_Factory( FACTORY_NAME, 1 );
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( !pSystem )
		return false;
	return pSystem->FindAttributeEditorFactory( FACTORY_NAME ) == &s_Factory || s_Factory.RegisterWithPropertyEditorSystem();
}

void CQAttributeEditor_Curve::Initialize( const PropertyEditorInit_t &init )
{
	CQAttributeEditor_Base::Initialize( init );
	m_KV3Path = init.m_KV3Path;
}

void CQAttributeEditor_Curve::DisconnectAndClear()
{
	CQAttributeEditor_Base::DisconnectAndClear();
	m_KV3Path.clear();
}

void CQAttributeEditor_Curve::ConnectSignals()
{
	Track( connect( m_pCurve, &CQCurveEditorWidget::OnCurveUpdated, this, &CQAttributeEditor_Curve::OnCurveUpdated ) );
}

void CQAttributeEditor_Curve::ReadFromAttribute()
{
	if ( !GetHost() || GetTargets().IsEmpty() )
		return;
	KeyValues3 whole;
	bool bDiffer = false;
	GetHost()->ReadCommonKV3( GetTargets(), &whole, &bDiffer );
	const KeyValues3 *pValue = FindKV3Part( &whole, m_KV3Path );
	// A value that holds no curve shows the default one until it is edited.
	CPiecewiseCurve curve;
	if ( pValue && pValue->IsTable() )
		LoadKV3ObjectInPlace( &curve, pValue, nullptr );
	m_pCurve->SetCurve( curve, false, !IsReadOnly() );
}

void CQAttributeEditor_Curve::OnCurveUpdated()
{
	UpdateAttributesFromEditor_OneShot_Unconditional();
}

void CQAttributeEditor_Curve::WriteToAttribute()
{
	if ( !GetHost() || IsReadOnly() )
		return;
	KeyValues3 table;
	if ( !SaveKV3Object( m_pCurve->GetCurve(), &table, nullptr ) )
		return;
	if ( m_KV3Path.isEmpty() )
	{
		GetHost()->WriteKV3( GetTargets(), table );
		return;
	}
	// Inside a value: each target keeps the rest of its own.
	for ( const PropEdSpecificAttr_t &target : GetTargets() )
	{
		CUtlVector<PropEdSpecificAttr_t> one;
		one.AddToTail( target );
		KeyValues3 whole;
		bool bUnused = false;
		if ( !GetHost()->ReadCommonKV3( one, &whole, &bUnused ) )
			continue;
		if ( KeyValues3 *pPart = FindKV3Part( &whole, m_KV3Path ) )
		{
			pPart->CopyFrom( table );
			GetHost()->WriteKV3( one, whole );
		}
	}
}
