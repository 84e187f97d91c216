#pragma once
// What a frame of a tool scene draws, as plain arrays that a renderer streams to the GPU
// once per frame: lines, camera-facing sprite instances, trail ribbons and model instances,
// each kind in batches of one texture or model and one blend. Filled on the CPU without
// any GL, so batch runs and benchmarks build it too.

#include <cstdint>
#include <string>
#include <vector>

#include "core/mathlib/vector.h"
#include "core/particles/particlemodel.h"

class IParticleCollection;
struct ParticleDrawData_t;
struct ToolSceneView_t;

enum ToolSceneBlend_t : uint8_t
{
	TOOLSCENE_BLEND_OPAQUE,
	TOOLSCENE_BLEND_ALPHA,
	TOOLSCENE_BLEND_ADDITIVE,
};

struct ToolSceneLineVertex_t
{
	float m_Position[ 3 ];
	float m_Color[ 4 ];
};

// A camera-facing square of side 2 × radius, turned by roll (radians) about the view axis.
struct ToolSceneSpriteInstance_t
{
	float m_Position[ 3 ];
	float m_flRadius;
	float m_Color[ 4 ];
	float m_flRoll;
	// The way it faces when its batch aligns sprites to their particles' normals.
	float m_Normal[ 3 ];
};

// A ribbon from head to tail, as wide as twice the radius, facing the camera.
struct ToolSceneTrailInstance_t
{
	float m_Head[ 3 ];
	float m_flRadius;
	float m_Tail[ 3 ];
	float m_flPad;
	float m_Color[ 4 ];
};

// Rows of a 3-by-4 model-to-world matrix, and a colour.
struct ToolSceneModelInstance_t
{
	float m_Rows[ 3 ][ 4 ];
	float m_Color[ 4 ];
};

struct ToolSceneBatch_t
{
	std::string m_Texture; // resource name; empty: untextured
	ParticleModelPtr_t m_pModel; // model batches
	ToolSceneBlend_t m_eBlend = TOOLSCENE_BLEND_ALPHA;
	float m_flOverbright = 1.0f;
	// Sprites: which way they face (ParticleDrawData_t::m_nOrientation).
	int m_nOrientation = 0;
	// The ground: drawn first, behind everything, and hiding nothing.
	bool m_bBackdrop = false;
	int m_nFirst = 0;
	int m_nCount = 0;
};

class CToolSceneDrawList
{
public:
	void Clear();

	void AddLine( const Vector &a, const Vector &b, const float color[ 4 ] );
	// A line of the ground, under everything else.
	void AddBackdropLine( const Vector &a, const Vector &b, const float color[ 4 ] );
	// A triangle over everything else, blended and not hidden by depth: handles such as
	// gizmos, which must stay grabbable wherever they stand.
	void AddOverlayTriangle( const Vector &a, const Vector &b, const Vector &c, const float color[ 4 ] );
	// Three coloured axes of a frame: forward red, left green, up blue.
	void AddAxes( const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp, float flSize );
	// A small marker of a control point: a yellow cross along the world axes.
	void AddControlPointMarker( const Vector &vOrigin, float flSize );
	// Triangles of a model placed by a frame and a uniform scale, shaded flat.
	void AddModel( const ParticleModelPtr_t &pModel, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp, float flScale,
		const float color[ 4 ], bool bBackdrop = false );
	// Every renderer of a collection tree. Alpha-blended sprites are sorted far to near.
	void AddParticles( const IParticleCollection &collection, const ToolSceneView_t &view );

	const std::vector<ToolSceneLineVertex_t> &GetLines() const { return m_Lines; }
	const std::vector<ToolSceneLineVertex_t> &GetBackdropLines() const { return m_BackdropLines; }
	// Three vertices a triangle.
	const std::vector<ToolSceneLineVertex_t> &GetOverlayTriangles() const { return m_OverlayTriangles; }
	const std::vector<ToolSceneSpriteInstance_t> &GetSprites() const { return m_Sprites; }
	const std::vector<ToolSceneTrailInstance_t> &GetTrails() const { return m_Trails; }
	const std::vector<ToolSceneModelInstance_t> &GetModels() const { return m_Models; }
	const std::vector<ToolSceneBatch_t> &GetSpriteBatches() const { return m_SpriteBatches; }
	const std::vector<ToolSceneBatch_t> &GetTrailBatches() const { return m_TrailBatches; }
	const std::vector<ToolSceneBatch_t> &GetModelBatches() const { return m_ModelBatches; }

	// The model drawn where a particle model is missing: a small cube.
	static ParticleModelPtr_t GetStandInModel();
	// A built-in model from the body of its KV3 table ("{ m_Vertices = ... }").
	static ParticleModelPtr_t MakeBuiltInModel( const char *pBody, const char *pName );

private:
	void AddCollection( const IParticleCollection &collection, const ToolSceneView_t &view );
	// A batch of one renderer's texture and blend, for instances from nFirst on.
	static ToolSceneBatch_t &AddTexturedBatch( std::vector<ToolSceneBatch_t> &batches, const ParticleDrawData_t &data, int nFirst );
	void AddSprites( const ParticleDrawData_t &data, const IParticleCollection &collection, const ToolSceneView_t &view );
	void AddTrails( const ParticleDrawData_t &data, const IParticleCollection &collection );
	void AddModelParticles( const ParticleDrawData_t &data, const IParticleCollection &collection );
	void SortBackToFront( int nFirst, int nCount, const ToolSceneView_t &view );

	std::vector<ToolSceneLineVertex_t> m_Lines;
	std::vector<ToolSceneLineVertex_t> m_BackdropLines;
	std::vector<ToolSceneLineVertex_t> m_OverlayTriangles;
	std::vector<ToolSceneSpriteInstance_t> m_Sprites;
	std::vector<ToolSceneTrailInstance_t> m_Trails;
	std::vector<ToolSceneModelInstance_t> m_Models;
	std::vector<ToolSceneBatch_t> m_SpriteBatches;
	std::vector<ToolSceneBatch_t> m_TrailBatches;
	std::vector<ToolSceneBatch_t> m_ModelBatches;
	// Scratch of the depth sort, kept between frames.
	std::vector<uint32_t> m_SortKeys, m_SortKeysTemp;
	std::vector<uint32_t> m_SortIndices, m_SortIndicesTemp;
	std::vector<ToolSceneSpriteInstance_t> m_SortTemp;
};
