#include "zoldoc_lib/zolconfigurationreader.h"

#include <cstdint>
#include <cstdlib>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfernumbers.h"
#include "core/kv3transfer/kv3transfertypes.h"
#include "core/text/strtools.h"

namespace
{
constexpr const char *s_AttachmentNames[] = { "PATTACH_ABSORIGIN", "PATTACH_ABSORIGIN_FOLLOW", "PATTACH_CUSTOMORIGIN", "PATTACH_CUSTOMORIGIN_FOLLOW",
	"PATTACH_POINT", "PATTACH_POINT_FOLLOW", "PATTACH_EYES_FOLLOW", "PATTACH_OVERHEAD_FOLLOW", "PATTACH_WORLDORIGIN", "PATTACH_ROOTBONE_FOLLOW",
	"PATTACH_RENDERORIGIN_FOLLOW", "PATTACH_MAIN_VIEW", "PATTACH_WATERWAKE", "PATTACH_CENTER_FOLLOW", "PATTACH_CUSTOM_GAME_STATE_1", "PATTACH_HEALTHBAR" };
constexpr int ATTACHMENT_NAME_COUNT = int( sizeof( s_AttachmentNames ) / sizeof( s_AttachmentNames[ 0 ] ) );
constexpr int PATTACH_INVALID = -1;
constexpr int PATTACH_ABSORIGIN_FOLLOW = 1;

constexpr const char *s_GroundNames[] = { "ZOL_GROUND_NONE", "ZOL_GROUND_GRID", "ZOL_GROUND_PLANE" };
constexpr int ZOL_GROUND_GRID = 1;

const char *GetGroundName( int nValue )
{
	return nValue >= 0 && nValue < int( sizeof( s_GroundNames ) / sizeof( s_GroundNames[ 0 ] ) ) ? s_GroundNames[ nValue ] : nullptr;
}

// Names the member in every report made while it is read.
class CMemberScope
{
public:
	CMemberScope( CKV3TransferLoadContext *pContext, const char *pName ) : m_pContext( pContext ) { pContext->PushMember( pName ); }
	CMemberScope( CKV3TransferLoadContext *pContext, int nIndex ) : m_pContext( pContext ) { pContext->PushIndex( uint32_t( nIndex ) ); }
	~CMemberScope() { m_pContext->PopPath(); }
	CMemberScope( const CMemberScope & ) = delete;
	CMemberScope &operator=( const CMemberScope & ) = delete;

private:
	CKV3TransferLoadContext *m_pContext;
};

// The table to read members from, or null (defaults) for an absent or unreadable value.
const KeyValues3 *AsRecordTable( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	if ( !pValue || pValue->IsNull() )
		return nullptr;
	if ( !pValue->IsTable() )
	{
		KV3TransferReportNotATable( pContext, pValue );
		return nullptr;
	}
	return pValue;
}

// A numeric string reads as the number it spells; other strings are of the wrong kind.
template <typename T> T ReadInteger( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext, T nDefault )
{
	if ( !pValue )
		return nDefault;
	if ( !pValue->IsString() )
		return KV3TransferReadInteger<T>( pContext, pValue );
	const char *pText = pValue->GetString();
	char *pEnd = nullptr;
	double flNumber = strtod( pText, &pEnd );
	if ( !*pText || !pEnd || *pEnd )
	{
		KV3TransferReportWrongKind( pContext, "a number", pValue );
		return nDefault;
	}
	KeyValues3 number;
	number.SetDouble( flNumber );
	return KV3TransferReadInteger<T>( pContext, &number );
}

float ReadFloat( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext, float flDefault )
{
	if ( !pValue )
		return flDefault;
	if ( pValue->IsString() )
	{
		const char *pText = pValue->GetString();
		char *pEnd = nullptr;
		double flNumber = strtod( pText, &pEnd );
		if ( *pText && pEnd && !*pEnd )
			return float( flNumber );
		KV3TransferReportWrongKind( pContext, "a number", pValue );
		return flDefault;
	}
	return KV3TransferReadFloat<float>( pContext, pValue );
}

bool ReadBool( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	return pValue ? ReadInteger<int64_t>( pValue, pContext, 0 ) != 0 : false;
}

// An enumeration written by name, or by number, or as a numeric string.
int ReadEnum( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext, const char *( *fnName )( int ), int nFirst, int nLast, int nDefault )
{
	if ( !pValue )
		return nDefault;
	if ( pValue->IsString() )
	{
		for ( int i = nFirst; i <= nLast; ++i )
		{
			const char *pName = fnName( i );
			if ( pName && !V_strcmp( pName, pValue->GetString() ) )
				return i;
		}
	}
	return ReadInteger<int32_t>( pValue, pContext, nDefault );
}

void WriteEnum( KeyValues3 *pTable, const char *pKey, int nValue, const char *( *fnName )( int ) )
{
	if ( const char *pName = fnName( nValue ) )
		pTable->SetMemberString( pKey, pName );
	else
		pTable->SetMemberInt( pKey, nValue );
}

const char *ReadString( const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	return pValue ? KV3TransferReadString( pContext, pValue ) : "";
}

void CopyVector( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext, float x, float y, float z )
{
	float values[ 3 ] = { x, y, z };
	if ( pTable )
	{
		CMemberScope scope( pContext, pKey );
		KV3TransferReadFloats( pContext, pTable->FindMember( pKey ), values, 3 );
	}
	KV3TransferWriteFloats( pOut->FindOrCreateMember( pKey ), values, 3 );
}

const KeyValues3 *Member( const KeyValues3 *pTable, const char *pKey )
{
	return pTable ? pTable->FindMember( pKey ) : nullptr;
}

void CopyString( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext )
{
	CMemberScope scope( pContext, pKey );
	pOut->SetMemberString( pKey, ReadString( Member( pTable, pKey ), pContext ) );
}

void CopyInt( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext, int32_t nDefault )
{
	CMemberScope scope( pContext, pKey );
	pOut->SetMemberInt( pKey, ReadInteger<int32_t>( Member( pTable, pKey ), pContext, nDefault ) );
}

void CopyFloat( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext, float flDefault )
{
	CMemberScope scope( pContext, pKey );
	pOut->SetMemberFloat( pKey, ReadFloat( Member( pTable, pKey ), pContext, flDefault ) );
}

void CopyBool( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext )
{
	CMemberScope scope( pContext, pKey );
	pOut->SetMemberBool( pKey, ReadBool( Member( pTable, pKey ), pContext ) );
}

void ReadDriver( const KeyValues3 *pIn, KeyValues3 *pOut, CKV3TransferLoadContext *pContext )
{
	pOut->SetToEmptyTable();
	const KeyValues3 *pTable = AsRecordTable( pIn, pContext );
	{
		// A control point is a number, or a name; "5" in quotes is a name, not the number 5.
		CMemberScope scope( pContext, "m_iControlPoint" );
		const KeyValues3 *pPoint = Member( pTable, "m_iControlPoint" );
		if ( pPoint && pPoint->IsString() )
			pOut->SetMemberString( "m_iControlPoint", pPoint->GetString() );
		else
			pOut->SetMemberInt( "m_iControlPoint", ReadInteger<int32_t>( pPoint, pContext, 0 ) );
	}
	{
		CMemberScope scope( pContext, "m_iAttachType" );
		int nAttach = ReadEnum( Member( pTable, "m_iAttachType" ), pContext, GetParticleAttachmentName, PATTACH_INVALID, ATTACHMENT_NAME_COUNT - 1,
			PATTACH_ABSORIGIN_FOLLOW );
		WriteEnum( pOut, "m_iAttachType", nAttach, GetParticleAttachmentName );
	}
	CopyString( pTable, pOut, "m_attachmentName", pContext );
	CopyVector( pTable, pOut, "m_vecOffset", pContext, 0, 0, 0 );
	CopyVector( pTable, pOut, "m_angOffset", pContext, 0, 0, 0 );
	CopyString( pTable, pOut, "m_entityName", pContext );
}

void ReadBodyGroup( const KeyValues3 *pIn, KeyValues3 *pOut, CKV3TransferLoadContext *pContext )
{
	pOut->SetToEmptyTable();
	const KeyValues3 *pTable = AsRecordTable( pIn, pContext );
	CopyString( pTable, pOut, "m_bodyGroupName", pContext );
	CopyInt( pTable, pOut, "m_nValue", pContext, 0 );
}

// Each element of an array member read by fnRead; anything but an array is reported.
void CopyArray( const KeyValues3 *pTable, KeyValues3 *pOut, const char *pKey, CKV3TransferLoadContext *pContext,
	void ( *fnRead )( const KeyValues3 *, KeyValues3 *, CKV3TransferLoadContext * ) )
{
	KeyValues3 *pArray = pOut->SetMemberEmptyArray( pKey );
	CMemberScope scope( pContext, pKey );
	const KeyValues3 *pIn = Member( pTable, pKey );
	if ( !pIn || pIn->IsNull() )
		return;
	if ( !pIn->IsArray() )
	{
		KV3TransferReportWrongKind( pContext, "an array", pIn );
		return;
	}
	for ( int i = 0; i < pIn->GetArrayElementCount(); ++i )
	{
		CMemberScope elementScope( pContext, i );
		fnRead( pIn->GetArrayElement( i ), pArray->ArrayAddToTail(), pContext );
	}
}

void ReadPreviewState( const KeyValues3 *pIn, KeyValues3 *pOut, CKV3TransferLoadContext *pContext )
{
	pOut->SetToEmptyTable();
	const KeyValues3 *pTable = AsRecordTable( pIn, pContext );
	CopyString( pTable, pOut, "m_previewModel", pContext );
	{
		CMemberScope scope( pContext, "m_nModSpecificData" );
		pOut->SetMemberUInt( "m_nModSpecificData", ReadInteger<uint32_t>( Member( pTable, "m_nModSpecificData" ), pContext, 0 ) );
	}
	{
		CMemberScope scope( pContext, "m_groundType" );
		int nGround = ReadEnum( Member( pTable, "m_groundType" ), pContext, GetGroundName, 0, 2, ZOL_GROUND_GRID );
		WriteEnum( pOut, "m_groundType", nGround, GetGroundName );
	}
	CopyString( pTable, pOut, "m_sequenceName", pContext );
	CopyInt( pTable, pOut, "m_nFireParticleOnSequenceFrame", pContext, 0 );
	CopyString( pTable, pOut, "m_hitboxSetName", pContext );
	CopyString( pTable, pOut, "m_materialGroupName", pContext );
	CopyArray( pTable, pOut, "m_vecBodyGroups", pContext, ReadBodyGroup );
	CopyFloat( pTable, pOut, "m_flPlaybackSpeed", pContext, 1.0f );
	CopyFloat( pTable, pOut, "m_flParticleSimulationRate", pContext, 1.0f );
	for ( const char *pKey : { "m_bShouldDrawHitboxes", "m_bShouldDrawAttachments", "m_bShouldDrawAttachmentNames", "m_bShouldDrawControlPointAxes",
			  "m_bAnimationNonLooping", "m_bSequenceNameIsAnimClipPath" } )
		CopyBool( pTable, pOut, pKey, pContext );
	CopyVector( pTable, pOut, "m_vecPreviewGravity", pContext, 0, 0, -800 );
}
} // namespace

const char *GetParticleAttachmentName( int nValue )
{
	return nValue >= 0 && nValue < ATTACHMENT_NAME_COUNT ? s_AttachmentNames[ nValue ] : nValue == PATTACH_INVALID ? "PATTACH_INVALID" : nullptr;
}

void ReadControlPointConfiguration( const KeyValues3 *pIn, KeyValues3 *pOut, CKV3TransferLoadContext *pContext )
{
	pOut->SetToEmptyTable();
	const KeyValues3 *pTable = AsRecordTable( pIn, pContext );
	CopyString( pTable, pOut, "m_name", pContext );
	CopyArray( pTable, pOut, "m_drivers", pContext, ReadDriver );
	CMemberScope scope( pContext, "m_previewState" );
	ReadPreviewState( Member( pTable, "m_previewState" ), pOut->SetMemberEmptyTable( "m_previewState" ), pContext );
}
