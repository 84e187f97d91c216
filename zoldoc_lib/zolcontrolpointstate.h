#pragma once
// The preview settings of one session's control points and named values: where each
// point stands, what it is attached to, how the preview edits it, and each named value's
// value. They are preview settings only: nothing here touches the document until a
// configuration stores them (StoreDrivers).
//
// The state also keeps what the compiled definition says of each key (the known control
// points), since every rule here depends on it.

#include <unordered_map>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleattachment.h"
#include "core/particles/particleparamid.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CParticleDefinitionUsage;
class IZolPreviewTarget;

// A control point or named value that the compiled definition uses.
struct ZolKnownControlPoint_t
{
	ParticleParamID_t m_Key;
	int m_nUsageKind = 0;           // the kind of the first component (ControlPointUsageKind_t)
	bool m_bOffsetApplied = false;  // the default offset or a configuration has been applied
	bool m_bDriven = false;         // the definition sets all three components itself
	CPulseValueFullType m_NamedValueType; // for a key with a token
};

using ZolKnownControlPointMap_t = std::unordered_map<ParticleParamID_t, ZolKnownControlPoint_t, ParticleParamIDHash_t>;

// Which entity a control point attaches to: the entity kinds of the preview.
enum ZolAttachEntity_t : int
{
	ZOL_ATTACH_ENTITY_SELF = 0,
	ZOL_ATTACH_ENTITY_PARENT = 1,
	ZOL_ATTACH_ENTITY_SELF_WITH_WEARABLES = 2,
};
// "parent" and "self_with_wearables" (ignoring case) name those; any other text is self.
int ZolAttachEntityFromName( const char *pName );
const char *ZolAttachEntityName( int nEntity );

// A configuration's driver table names its control point by number or by name.
ParticleParamID_t ZolDriverKey( const KeyValues3 &driver );

struct ZolControlPointRecord_t
{
	ParticleParamID_t m_Key;
	Vector m_vPosition;
	QAngle m_Angles;
	KeyValues3 m_Value; // a named value's value; null reads as its default
	int m_nAttachType = PATTACH_WORLDORIGIN;
	int m_nEntity = ZOL_ATTACH_ENTITY_SELF;
	CUtlString m_AttachmentName;
	int m_nEditMode = 0; // ControlPointEditMode_t
	bool m_bDetailsShown = false;
};

// What the state asks of the session it belongs to. A state without a host sends
// nothing and knows no models.
class IZolControlPointStateHost
{
public:
	virtual ~IZolControlPointStateHost() = default;
	// A point's transform, attachment or edit mode changed.
	virtual void OnControlPointStateChanged( const ParticleParamID_t &key ) = 0;
	virtual void OnNamedValueStateChanged( const ParticleParamID_t &key ) = 0;
	// After OnControlPointStateChanged, when the edit mode was what changed.
	virtual void OnEditModeChanged( const ParticleParamID_t &key ) = 0;
	// The model name of an entity kind (ZolAttachEntity_t); empty for none.
	virtual const char *GetEntityModel( int nEntity ) const = 0;
	// The preview model, and the models of the items worn on it.
	virtual const char *GetPreviewModel() const = 0;
	virtual void GetWearableModels( CUtlVector<CUtlString> *pModels ) const = 0;
	// The value that the definition declares for a variable; false for none.
	virtual bool GetDeclaredValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const = 0;
};

class CZolControlPointState
{
public:
	explicit CZolControlPointState( IZolControlPointStateHost *pHost = nullptr ) : m_pHost( pHost ) {}

	// Records are made with their defaults on first use; getters of an unknown key answer
	// a zero vector, attach type 8, entity 0, an empty text.
	bool SetTransform( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles );
	Vector GetPosition( const ParticleParamID_t &key ) const;
	QAngle GetAngles( const ParticleParamID_t &key ) const;
	// The value is converted to the key's known type; a null value goes back to the default.
	void SetValue( const ParticleParamID_t &key, const KeyValues3 &value );
	// False for a key without a record; a record without a value gives the declared value
	// of the variable, else the default of its type.
	bool GetValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const;
	void SetAttachType( const ParticleParamID_t &key, int nType );
	int GetAttachType( const ParticleParamID_t &key ) const;
	void SetEntity( const ParticleParamID_t &key, int nEntity );
	int GetEntity( const ParticleParamID_t &key ) const;
	void SetAttachmentName( const ParticleParamID_t &key, const char *pName );
	const char *GetAttachmentName( const ParticleParamID_t &key ) const;
	// Refuses a mode that doesn't fit the key's usage kind.
	bool SetEditMode( const ParticleParamID_t &key, int nMode );
	int GetEditMode( const ParticleParamID_t &key ) const;
	void SetDetailsShown( const ParticleParamID_t &key, bool bShown );
	bool AreDetailsShown( const ParticleParamID_t &key ) const;
	// Numbers first, ascending; then names, ignoring case.
	void GetKeys( CUtlVector<ParticleParamID_t> *pKeys ) const;
	const ZolControlPointRecord_t *FindRecord( const ParticleParamID_t &key ) const;
	// Puts a record back as it was (null: the key had none), and tells the host (undo).
	void RestoreRecord( const ParticleParamID_t &key, const ZolControlPointRecord_t *pRecord );
	void Clear();

	// The attachment names of an entity kind's model, and for "self_with_wearables" on the
	// preview model those of the worn items too, without repeats.
	void GetAttachmentNames( int nEntity, CUtlVector<CUtlString> *pNames ) const;
	// Points attached to a model attachment take a name the model has, or none.
	void ValidateAttachments();

	// Known control points, rebuilt when the compiled definition's usage changes: named
	// values take the usage's type (and their default when it changed); numbered points
	// take their driven flag and kind, their default offset once, and an edit mode that
	// fits the kind.
	void RebuildKnownControlPoints( const CParticleDefinitionUsage &usage );
	const ZolKnownControlPointMap_t &GetKnownControlPoints() const { return m_Known; }
	const ZolKnownControlPoint_t *FindKnown( const ParticleParamID_t &key ) const;

	// A configuration's drivers (its KV3 table) take effect: each known key with a driver
	// takes its attachment and, unless pinned, its offset; a named value its value.
	void ApplyDrivers( const KeyValues3 &configuration );
	// Writes a driver per known key, in GetKeys order, into a configuration's table.
	// Named values at their default have none: the configuration then follows the
	// declaration.
	void StoreDrivers( KeyValues3 *pConfiguration ) const;

	// Everything to a running preview: control point 0's binding is dropped, then each
	// record reaches the collection (numbered points other than 0 that stand at the origin
	// unturned are left alone), then each numbered key goes through ApplyControlPoint.
	void ApplyToPreview( IZolPreviewTarget *pPreview ) const;
	// One numbered point to the particle node: bound to its entity's model attachment when
	// it is attached there, else in the plain form.
	void ApplyControlPoint( IZolPreviewTarget *pPreview, const ParticleParamID_t &key ) const;

private:
	ZolControlPointRecord_t &FindOrAdd( const ParticleParamID_t &key );
	void ChangedControlPoint( const ParticleParamID_t &key );
	CPulseValueFullType GetKnownType( const ParticleParamID_t &key ) const;

	IZolControlPointStateHost *m_pHost;
	std::unordered_map<ParticleParamID_t, ZolControlPointRecord_t, ParticleParamIDHash_t> m_Records;
	ZolKnownControlPointMap_t m_Known;
};
