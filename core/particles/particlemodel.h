#pragma once
// A plain model as the particle runtime sees it: a triangle mesh, named hitboxes (boxes or
// spheres placed by a local transform, no bones) and named attachments. Its source is a
// "tmsh" KV3 text:
//
//   {
//     m_Vertices = [ [ -8, -8, 0 ], [ 8, -8, 0 ], ... ]
//     m_Triangles = [ 0, 1, 2, 0, 2, 3, ... ]            // three vertex indices each
//     m_HitBoxes = [ { m_name = "body" m_nShape = "box" m_vMinBounds = [ -8, -8, 0 ] m_vMaxBounds = [ 8, 8, 16 ]
//                      m_vOrigin = [ 0, 0, 0 ] m_angRotation = [ 0, 45, 0 ] m_HitboxSet = "default" },
//                    { m_name = "head" m_nShape = "sphere" m_flRadius = 4 m_vOrigin = [ 0, 0, 20 ] } ]
//     m_Attachments = [ { m_name = "top" m_vOrigin = [ 0, 0, 16 ] m_angRotation = [ 0, 0, 0 ] } ]
//     m_MaterialGroups = [ { m_name = "default" m_vColor = [ 158, 140, 115 ] } ]   // skins: a flat colour, 0-255
//     m_BodyGroups = [ { m_name = "lid" m_Choices = [ { m_name = "closed" m_nFirstTriangle = 2 m_nTriangleCount = 2 },
//                                                     { m_name = "open" } ] } ]      // a choice shows its triangles
//     m_Sequences = [ { m_name = "idle" m_nFrameCount = 30 m_flFps = 30 m_bLooping = true } ]
//   }
//
// Every list may be missing. A triangle that a body group's choice names shows only while
// that choice is selected. Positions are in the model's own space; the runtime places the
// model at a control point.

#include <memory>
#include <vector>

#include "core/mathlib/vector.h"
#include "core/text/utlstring.h"

class KeyValues3;
class CParticleRandom;

enum ParticleModelHitboxShape_t
{
	PARTICLE_MODEL_HITBOX_BOX,
	PARTICLE_MODEL_HITBOX_SPHERE,
};

// A local frame: where a hitbox or attachment sits and how it is turned (pitch, yaw, roll in degrees).
struct ParticleModelFrame_t
{
	Vector m_vOrigin;
	Vector m_vAngles;
	// A point given in the frame, in model space.
	Vector ToModel( const Vector &vLocal ) const;
};

struct ParticleModelHitbox_t
{
	CUtlString m_Name;
	CUtlString m_SetName; // "default" unless the file names another set
	ParticleModelHitboxShape_t m_eShape = PARTICLE_MODEL_HITBOX_BOX;
	Vector m_vMin, m_vMax; // box, in the frame
	float m_flRadius = 0.0f; // sphere, about the frame's origin
	ParticleModelFrame_t m_Frame;
};

struct ParticleModelAttachment_t
{
	CUtlString m_Name;
	ParticleModelFrame_t m_Frame;
};

// A skin: the colour the model is shaded in.
struct ParticleModelMaterialGroup_t
{
	CUtlString m_Name;
	Vector m_vColor{ 158.0f, 140.0f, 115.0f };
};

// One choice of a body group: a run of the model's triangles, or none.
struct ParticleModelBodyGroupChoice_t
{
	CUtlString m_Name;
	int m_nFirstTriangle = 0;
	int m_nTriangleCount = 0;
};

struct ParticleModelBodyGroup_t
{
	CUtlString m_Name;
	std::vector<ParticleModelBodyGroupChoice_t> m_Choices;
};

// An animation of the model: a count of frames played at a rate.
struct ParticleModelSequence_t
{
	CUtlString m_Name;
	int m_nFrameCount = 1;
	float m_flFps = 30.0f;
	bool m_bLooping = true;
};

class CParticleModel
{
public:
	// Reads the model's KV3 table. On failure answers false, with what is wrong (and where)
	// in pError; the model is then empty.
	bool LoadFromKV3( const KeyValues3 &root, CUtlString *pError );
	// Reads "tmsh" text; pName prefixes messages.
	bool LoadFromText( const char *pText, size_t nLength, const char *pName, CUtlString *pError );

	const char *GetName() const { return m_Name.Get(); }
	void SetName( const char *pName ) { m_Name = pName ? pName : ""; }

	const std::vector<Vector> &GetVertices() const { return m_Vertices; }
	int GetTriangleCount() const { return int( m_Triangles.size() / 3 ); }
	// Three vertex indices per triangle.
	const std::vector<int> &GetTriangles() const { return m_Triangles; }
	const std::vector<ParticleModelHitbox_t> &GetHitboxes() const { return m_Hitboxes; }
	const std::vector<ParticleModelAttachment_t> &GetAttachments() const { return m_Attachments; }
	// The attachment of that name (case ignored), or null.
	const ParticleModelAttachment_t *FindAttachment( const char *pName ) const;
	// The indices of the hitboxes of a set (case ignored); all of them when no hitbox is in it.
	void GetHitboxesOfSet( const char *pSetName, std::vector<int> *pIndices ) const;
	// The names of the hitbox sets, in the order they first occur.
	void GetHitboxSetNames( std::vector<CUtlString> *pNames ) const;

	const std::vector<ParticleModelMaterialGroup_t> &GetMaterialGroups() const { return m_MaterialGroups; }
	// By name (case ignored), or null.
	const ParticleModelMaterialGroup_t *FindMaterialGroup( const char *pName ) const;
	const std::vector<ParticleModelBodyGroup_t> &GetBodyGroups() const { return m_BodyGroups; }
	const std::vector<ParticleModelSequence_t> &GetSequences() const { return m_Sequences; }
	const ParticleModelSequence_t *FindSequence( const char *pName ) const;
	// Which triangles the body groups hide when entry i chooses for body group i (missing
	// or out of range is choice 0); false when none is hidden.
	bool GetHiddenTriangles( const std::vector<int> &choices, std::vector<bool> *pHidden ) const;
	// A copy without the hidden triangles.
	std::shared_ptr<CParticleModel> WithoutTriangles( const std::vector<bool> &hidden ) const;

	// A random point on the surface (or, when bInside, in the volume) of a hitbox, with its
	// extent scaled per axis about the frame's origin; in model space.
	Vector SampleHitbox( int nHitbox, bool bInside, const Vector &vScale, CParticleRandom &random ) const;
	// A random point on the mesh, each triangle weighted by its area; false without triangles.
	bool SampleSurface( CParticleRandom &random, Vector *pPoint ) const;
	// Whether a model-space point lies in (or on, within flTolerance) a hitbox scaled as above.
	bool IsInHitbox( int nHitbox, const Vector &vPoint, const Vector &vScale, float flTolerance ) const;

private:
	void Clear();

	CUtlString m_Name;
	std::vector<Vector> m_Vertices;
	std::vector<int> m_Triangles;
	std::vector<float> m_TriangleAreaSums; // running sums, for sampling by area
	std::vector<ParticleModelHitbox_t> m_Hitboxes;
	std::vector<ParticleModelAttachment_t> m_Attachments;
	std::vector<ParticleModelMaterialGroup_t> m_MaterialGroups;
	std::vector<ParticleModelBodyGroup_t> m_BodyGroups;
	std::vector<ParticleModelSequence_t> m_Sequences;
};

using ParticleModelPtr_t = std::shared_ptr<const CParticleModel>;

// The model as its body groups show it; the model itself when they hide nothing.
ParticleModelPtr_t ParticleModelWithBodyGroups( const ParticleModelPtr_t &pModel, const std::vector<int> &choices );
