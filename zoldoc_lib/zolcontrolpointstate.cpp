#include "zoldoc_lib/zolcontrolpointstate.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/particles/controlpointusagekind.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/izolpreviewtarget.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "zoldoc_lib/zolnamedvalue.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"

namespace
{
const char *const s_EntityNames[] = { "self", "parent", "self_with_wearables" };

bool IsAttachedToPoint( int nAttachType )
{
	return nAttachType == PATTACH_POINT || nAttachType == PATTACH_POINT_FOLLOW;
}

bool IsZero( const Vector &v )
{
	return v.x == 0.0f && v.y == 0.0f && v.z == 0.0f;
}

bool IsZero( const QAngle &a )
{
	return a.x == 0.0f && a.y == 0.0f && a.z == 0.0f;
}

// Angles compare so that a NaN counts as a change.
bool SameAngles( const QAngle &a, const QAngle &b )
{
	return a.x == b.x && a.y == b.y && a.z == b.z && !std::isnan( a.x ) && !std::isnan( a.y ) && !std::isnan( a.z );
}

int ReadAttachType( const KeyValues3 *pValue )
{
	// A driver without the member has the file's default.
	if ( !pValue )
		return PATTACH_ABSORIGIN_FOLLOW;
	if ( pValue->IsString() )
	{
		for ( int i = PATTACH_INVALID; i < MAX_PATTACH_TYPES; ++i )
		{
			const char *pName = GetParticleAttachmentName( i );
			if ( pName && !V_strcmp( pName, pValue->GetString() ) )
				return i;
		}
		return PATTACH_ABSORIGIN_FOLLOW;
	}
	return pValue->GetInt( PATTACH_ABSORIGIN_FOLLOW );
}

void WriteAttachType( KeyValues3 *pDriver, int nType )
{
	if ( const char *pName = GetParticleAttachmentName( nType ) )
		pDriver->SetMemberString( "m_iAttachType", pName );
	else
		pDriver->SetMemberInt( "m_iAttachType", nType );
}

void ReadThree( const KeyValues3 *pValue, float *pOut )
{
	for ( int i = 0; i < 3; ++i )
		pOut[ i ] = pValue && pValue->IsArray() && i < pValue->GetArrayElementCount() ? pValue->GetArrayElement( i )->GetFloat() : 0.0f;
}

void WriteThree( KeyValues3 *pDriver, const char *pKey, const float *pValues )
{
	KeyValues3 *pArray = pDriver->SetMemberEmptyArray( pKey );
	for ( int i = 0; i < 3; ++i )
		pArray->ArrayAddToTail()->SetDouble( pValues[ i ] );
}

bool KeyLess( const ParticleParamID_t &a, const ParticleParamID_t &b )
{
	if ( a.IsNamed() != b.IsNamed() )
		return !a.IsNamed();
	if ( !a.IsNamed() )
		return a.m_nNumber < b.m_nNumber;
	return V_stricmp_fast( a.m_pName ? a.m_pName : "", b.m_pName ? b.m_pName : "" ) < 0;
}

void AddAttachmentNames( const char *pModel, CUtlVector<CUtlString> *pNames )
{
	if ( !pModel || !*pModel )
		return;
	CUtlString error;
	ParticleModelPtr_t pParticleModel = FindParticleModel( pModel, &error );
	if ( !pParticleModel )
		return;
	for ( const ParticleModelAttachment_t &attachment : pParticleModel->GetAttachments() )
	{
		bool bKnown = false;
		for ( const CUtlString &name : *pNames )
			bKnown = bKnown || name.IsEqual_CaseInsensitive( attachment.m_Name );
		if ( !bKnown )
			pNames->AddToTail( attachment.m_Name );
	}
}
} // namespace

int ZolAttachEntityFromName( const char *pName )
{
	if ( pName && !V_stricmp_fast( pName, "parent" ) )
		return ZOL_ATTACH_ENTITY_PARENT;
	if ( pName && !V_stricmp_fast( pName, "self_with_wearables" ) )
		return ZOL_ATTACH_ENTITY_SELF_WITH_WEARABLES;
	return ZOL_ATTACH_ENTITY_SELF;
}

const char *ZolAttachEntityName( int nEntity )
{
	return nEntity >= 0 && nEntity < 3 ? s_EntityNames[ nEntity ] : s_EntityNames[ 0 ];
}

ParticleParamID_t ZolDriverKey( const KeyValues3 &driver )
{
	// A saved tree leaves out values at their default: no number is point 0.
	const KeyValues3 *pPoint = driver.IsTable() ? driver.FindMember( "m_iControlPoint" ) : nullptr;
	if ( !pPoint )
		return ParticleParamID_t::ControlPoint( 0 );
	if ( pPoint->IsString() )
		return ParticleParamID_t::Named( pPoint->GetString() );
	if ( pPoint->IsNumber() )
		return ParticleParamID_t::ControlPoint( int( pPoint->GetInt() ) );
	return ParticleParamID_t();
}

// ---------------------------------------------------------------------------------------
// Records

ZolControlPointRecord_t &CZolControlPointState::FindOrAdd( const ParticleParamID_t &key )
{
	auto [ it, bAdded ] = m_Records.try_emplace( key );
	if ( bAdded )
		it->second.m_Key = key;
	return it->second;
}

const ZolControlPointRecord_t *CZolControlPointState::FindRecord( const ParticleParamID_t &key ) const
{
	auto it = m_Records.find( key );
	return it == m_Records.end() ? nullptr : &it->second;
}

const ZolKnownControlPoint_t *CZolControlPointState::FindKnown( const ParticleParamID_t &key ) const
{
	auto it = m_Known.find( key );
	return it == m_Known.end() ? nullptr : &it->second;
}

CPulseValueFullType CZolControlPointState::GetKnownType( const ParticleParamID_t &key ) const
{
	const ZolKnownControlPoint_t *pKnown = FindKnown( key );
	return pKnown ? pKnown->m_NamedValueType : CPulseValueFullType();
}

void CZolControlPointState::ChangedControlPoint( const ParticleParamID_t &key )
{
	if ( m_pHost )
		m_pHost->OnControlPointStateChanged( key );
}

void CZolControlPointState::RestoreRecord( const ParticleParamID_t &key, const ZolControlPointRecord_t *pRecord )
{
	if ( pRecord )
		m_Records[ key ] = *pRecord;
	else
		m_Records.erase( key );
	if ( key.IsNamed() )
	{
		if ( m_pHost )
			m_pHost->OnNamedValueStateChanged( key );
		return;
	}
	CZolPersistedControlPoints &persisted = CZolPersistedControlPoints::Get();
	if ( persisted.IsPersisted( key ) )
		persisted.Set( key, GetPosition( key ), GetAngles( key ) );
	ChangedControlPoint( key );
}

void CZolControlPointState::Clear()
{
	m_Records.clear();
	m_Known.clear();
}

bool CZolControlPointState::SetTransform( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles )
{
	ZolControlPointRecord_t &record = FindOrAdd( key );
	bool bChanged = !( record.m_vPosition == vPosition ) || !SameAngles( record.m_Angles, angles );
	record.m_vPosition = vPosition;
	record.m_Angles = angles;
	CZolPersistedControlPoints &persisted = CZolPersistedControlPoints::Get();
	if ( persisted.IsPersisted( key ) )
		persisted.Set( key, vPosition, angles );
	if ( bChanged )
		ChangedControlPoint( key );
	return bChanged;
}

Vector CZolControlPointState::GetPosition( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_vPosition : Vector();
}

QAngle CZolControlPointState::GetAngles( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_Angles : QAngle();
}

void CZolControlPointState::SetValue( const ParticleParamID_t &key, const KeyValues3 &value )
{
	ZolControlPointRecord_t &record = FindOrAdd( key );
	CPulseValueFullType type = GetKnownType( key );
	if ( value.IsNull() || !type.IsValid() )
		record.m_Value = value;
	else
		ZolNamedValue_Convert( type, value, &record.m_Value );
	if ( m_pHost )
		m_pHost->OnNamedValueStateChanged( key );
}

bool CZolControlPointState::GetValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	if ( !pRecord )
		return false;
	CPulseValueFullType type = GetKnownType( key );
	KeyValues3 declared;
	const KeyValues3 *pSource = &pRecord->m_Value;
	if ( pSource->IsNull() && m_pHost && m_pHost->GetDeclaredValue( key, &declared ) )
		pSource = &declared;
	if ( !type.IsValid() )
		*pValue = *pSource;
	else if ( pSource->IsNull() )
		ZolNamedValue_GetDefault( type, pValue );
	else
		ZolNamedValue_Convert( type, *pSource, pValue );
	return true;
}

void CZolControlPointState::SetAttachType( const ParticleParamID_t &key, int nType )
{
	ZolControlPointRecord_t &record = FindOrAdd( key );
	if ( record.m_nAttachType == nType )
		return;
	record.m_nAttachType = nType;
	if ( IsAttachedToPoint( nType ) )
	{
		if ( record.m_AttachmentName.IsEmpty() )
		{
			CUtlVector<CUtlString> names;
			GetAttachmentNames( record.m_nEntity, &names );
			if ( !names.IsEmpty() )
				record.m_AttachmentName = names[ 0 ];
		}
	}
	else
		record.m_AttachmentName.Clear();
	ChangedControlPoint( key );
}

int CZolControlPointState::GetAttachType( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_nAttachType : PATTACH_WORLDORIGIN;
}

void CZolControlPointState::SetEntity( const ParticleParamID_t &key, int nEntity )
{
	ZolControlPointRecord_t &record = FindOrAdd( key );
	if ( record.m_nEntity == nEntity )
		return;
	record.m_nEntity = nEntity;
	ValidateAttachments();
	ChangedControlPoint( key );
}

int CZolControlPointState::GetEntity( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_nEntity : ZOL_ATTACH_ENTITY_SELF;
}

void CZolControlPointState::SetAttachmentName( const ParticleParamID_t &key, const char *pName )
{
	ZolControlPointRecord_t &record = FindOrAdd( key );
	if ( !V_strcmp( record.m_AttachmentName, pName ? pName : "" ) )
		return;
	record.m_AttachmentName = pName ? pName : "";
	ChangedControlPoint( key );
}

const char *CZolControlPointState::GetAttachmentName( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_AttachmentName.Get() : "";
}

bool CZolControlPointState::SetEditMode( const ParticleParamID_t &key, int nMode )
{
	const ZolKnownControlPoint_t *pKnown = FindKnown( key );
	if ( !DoesControlPointEditModeFit( pKnown ? pKnown->m_nUsageKind : CONTROL_POINT_USAGE_GENERIC, nMode ) )
		return false;
	if ( GetEditMode( key ) == nMode )
		return true;
	FindOrAdd( key ).m_nEditMode = nMode;
	ChangedControlPoint( key );
	if ( m_pHost )
		m_pHost->OnEditModeChanged( key );
	return true;
}

int CZolControlPointState::GetEditMode( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord ? pRecord->m_nEditMode : CONTROL_POINT_EDIT_NONE;
}

void CZolControlPointState::SetDetailsShown( const ParticleParamID_t &key, bool bShown )
{
	FindOrAdd( key ).m_bDetailsShown = bShown;
}

bool CZolControlPointState::AreDetailsShown( const ParticleParamID_t &key ) const
{
	const ZolControlPointRecord_t *pRecord = FindRecord( key );
	return pRecord && pRecord->m_bDetailsShown;
}

void CZolControlPointState::GetKeys( CUtlVector<ParticleParamID_t> *pKeys ) const
{
	pKeys->RemoveAll();
	for ( const auto &[ key, record ] : m_Records )
		pKeys->AddToTail( key );
	std::sort( pKeys->begin(), pKeys->end(), KeyLess );
}

// ---------------------------------------------------------------------------------------
// Attachments

void CZolControlPointState::GetAttachmentNames( int nEntity, CUtlVector<CUtlString> *pNames ) const
{
	pNames->RemoveAll();
	if ( !m_pHost )
		return;
	const char *pModel = m_pHost->GetEntityModel( nEntity );
	AddAttachmentNames( pModel, pNames );
	if ( nEntity != ZOL_ATTACH_ENTITY_SELF_WITH_WEARABLES || !pModel || !*pModel || V_stricmp_fast( pModel, m_pHost->GetPreviewModel() ) )
		return;
	CUtlVector<CUtlString> wearables;
	m_pHost->GetWearableModels( &wearables );
	for ( const CUtlString &wearable : wearables )
		AddAttachmentNames( wearable, pNames );
}

void CZolControlPointState::ValidateAttachments()
{
	for ( auto &[ key, record ] : m_Records )
	{
		if ( !IsAttachedToPoint( record.m_nAttachType ) )
			continue;
		CUtlVector<CUtlString> names;
		GetAttachmentNames( record.m_nEntity, &names );
		if ( names.IsEmpty() )
		{
			record.m_AttachmentName.Clear();
			continue;
		}
		bool bFound = false;
		for ( const CUtlString &name : names )
			bFound = bFound || name.IsEqual_CaseInsensitive( record.m_AttachmentName );
		if ( !bFound )
			record.m_AttachmentName = names[ 0 ];
	}
}

// ---------------------------------------------------------------------------------------
// Known control points

void CZolControlPointState::RebuildKnownControlPoints( const CParticleDefinitionUsage &usage )
{
	for ( auto it = m_Known.begin(); it != m_Known.end(); )
	{
		if ( !usage.Has( it->first ) )
			it = m_Known.erase( it );
		else
			++it;
	}
	CUtlVector<ParticleParamID_t> keys;
	usage.GetKeys( &keys );
	std::sort( keys.begin(), keys.end(), KeyLess );
	CZolPersistedControlPoints &persisted = CZolPersistedControlPoints::Get();
	for ( const ParticleParamID_t &key : keys )
	{
		auto [ it, bAdded ] = m_Known.try_emplace( key );
		ZolKnownControlPoint_t &known = it->second;
		known.m_Key = key;
		if ( key.IsNamed() )
		{
			// A variable whose type changed (or that is new) starts over at its default; a
			// value the user set stays across the recompiles of other edits.
			CPulseValueFullType type = CPulseValueFullType::Parse( usage.GetNamedValueType( key ) );
			if ( bAdded || type != known.m_NamedValueType || !FindRecord( key ) )
			{
				known.m_NamedValueType = type;
				SetValue( key, KeyValues3() );
			}
			continue;
		}
		known.m_bDriven = usage.IsDriven( key );
		known.m_nUsageKind = usage.GetUsageKind( key, 0 );
		Vector vOffset;
		if ( !known.m_bOffsetApplied && !persisted.IsPersisted( key ) && usage.GetDefaultOffset( key, &vOffset ) )
		{
			SetTransform( key, vOffset, QAngle() );
			known.m_bOffsetApplied = true;
		}
		if ( !DoesControlPointEditModeFit( known.m_nUsageKind, GetEditMode( key ) ) )
			SetEditMode( key, GetControlPointEditModeForUsage( known.m_nUsageKind ) );
	}
}

// ---------------------------------------------------------------------------------------
// Configurations

void CZolControlPointState::ApplyDrivers( const KeyValues3 &configuration )
{
	const KeyValues3 *pDrivers = configuration.IsTable() ? configuration.FindMember( "m_drivers" ) : nullptr;
	if ( !pDrivers || !pDrivers->IsArray() )
		return;
	CZolPersistedControlPoints &persisted = CZolPersistedControlPoints::Get();
	for ( int i = 0; i < pDrivers->GetArrayElementCount(); ++i )
	{
		const KeyValues3 &driver = *pDrivers->GetArrayElement( i );
		if ( !driver.IsTable() )
			continue;
		ParticleParamID_t key = ZolDriverKey( driver );
		auto it = m_Known.find( key );
		if ( it == m_Known.end() )
			continue;
		it->second.m_bOffsetApplied = true;
		Vector vOffset;
		QAngle angles;
		ReadThree( driver.FindMember( "m_vecOffset" ), &vOffset.x );
		ReadThree( driver.FindMember( "m_angOffset" ), &angles.x );
		if ( key.IsNamed() )
		{
			// A variable's value rides in the driver's offset and angles.
			KeyValues3 value;
			if ( ZolNamedValue_FromTransform( it->second.m_NamedValueType, vOffset, angles, &value ) )
				SetValue( key, value );
		}
		ZolControlPointRecord_t &record = FindOrAdd( key );
		record.m_nAttachType = ReadAttachType( driver.FindMember( "m_iAttachType" ) );
		record.m_AttachmentName = driver.GetMemberString( "m_attachmentName" );
		record.m_nEntity = ZolAttachEntityFromName( driver.GetMemberString( "m_entityName" ) );
		if ( !persisted.IsPersisted( key ) )
			SetTransform( key, vOffset, angles );
	}
}

void CZolControlPointState::StoreDrivers( KeyValues3 *pConfiguration ) const
{
	if ( !pConfiguration->IsTable() )
		pConfiguration->SetToEmptyTable();
	KeyValues3 *pDrivers = pConfiguration->FindOrCreateMember( "m_drivers" );
	if ( !pDrivers->IsArray() )
		pDrivers->SetToEmptyArray();
	std::vector<ParticleParamID_t> keys;
	for ( const auto &[ key, known ] : m_Known )
		keys.push_back( key );
	std::sort( keys.begin(), keys.end(), KeyLess );
	for ( const ParticleParamID_t &key : keys )
	{
		int nFound = -1;
		for ( int i = 0; i < pDrivers->GetArrayElementCount() && nFound < 0; ++i )
		{
			if ( ZolDriverKey( *pDrivers->GetArrayElement( i ) ) == key )
				nFound = i;
		}
		const ZolControlPointRecord_t *pRecord = FindRecord( key );
		Vector vPosition = GetPosition( key );
		QAngle angles = GetAngles( key );
		if ( key.IsNamed() )
		{
			if ( !pRecord || pRecord->m_Value.IsNull() ||
				 !ZolNamedValue_ToTransform( m_Known.at( key ).m_NamedValueType, pRecord->m_Value, &vPosition, &angles ) )
			{
				if ( nFound >= 0 )
					pDrivers->ArrayRemoveElement( nFound );
				continue;
			}
		}
		KeyValues3 *pDriver = nFound >= 0 ? pDrivers->GetArrayElement( nFound ) : pDrivers->ArrayAddToTail();
		pDriver->SetToEmptyTable();
		if ( key.IsNamed() )
			pDriver->SetMemberString( "m_iControlPoint", key.m_pName );
		else
			pDriver->SetMemberInt( "m_iControlPoint", key.m_nNumber );
		WriteAttachType( pDriver, GetAttachType( key ) );
		pDriver->SetMemberString( "m_attachmentName", GetAttachmentName( key ) );
		WriteThree( pDriver, "m_vecOffset", &vPosition.x );
		WriteThree( pDriver, "m_angOffset", &angles.x );
		pDriver->SetMemberString( "m_entityName", ZolAttachEntityName( GetEntity( key ) ) );
	}
}

// ---------------------------------------------------------------------------------------
// The preview

void CZolControlPointState::ApplyToPreview( IZolPreviewTarget *pPreview ) const
{
	if ( !pPreview || !pPreview->HasRunningCollection() )
		return;
	pPreview->ClearControlPointBinding( 0 );
	CUtlVector<ParticleParamID_t> keys;
	GetKeys( &keys );
	for ( const ParticleParamID_t &key : keys )
	{
		const ZolControlPointRecord_t &record = m_Records.at( key );
		if ( key.IsNamed() )
		{
			KeyValues3 value;
			CPulseValueFullType type = GetKnownType( key );
			if ( type.IsValid() && GetValue( key, &value ) )
				pPreview->SetCollectionNamedValue( key, type, value );
			continue;
		}
		if ( key.IsNone() || ( key.m_nNumber != 0 && IsZero( record.m_vPosition ) && IsZero( record.m_Angles ) ) )
			continue;
		pPreview->SetCollectionControlPoint( key.m_nNumber, record.m_vPosition, record.m_Angles );
	}
	for ( const ParticleParamID_t &key : keys )
		ApplyControlPoint( pPreview, key );
}

void CZolControlPointState::ApplyControlPoint( IZolPreviewTarget *pPreview, const ParticleParamID_t &key ) const
{
	if ( !pPreview || key.IsNamed() || key.IsNone() )
		return;
	Vector vPosition = GetPosition( key );
	QAngle angles = GetAngles( key );
	const ZolKnownControlPoint_t *pKnown = FindKnown( key );
	int nAttachType = GetAttachType( key );
	bool bPlain = !pKnown || CZolPersistedControlPoints::Get().IsPersisted( key ) || pKnown->m_bDriven || nAttachType == PATTACH_WORLDORIGIN;
	if ( !bPlain )
	{
		int nEntity = GetEntity( key );
		const char *pModel = m_pHost ? m_pHost->GetEntityModel( nEntity ) : "";
		bPlain = !pModel || !*pModel ||
				 !pPreview->BindControlPointToModel( key.m_nNumber, pModel, nEntity == ZOL_ATTACH_ENTITY_SELF_WITH_WEARABLES, nAttachType,
					 GetAttachmentName( key ), vPosition, angles );
	}
	if ( bPlain )
		pPreview->SetNodeControlPoint( key.m_nNumber, vPosition, angles );
}
