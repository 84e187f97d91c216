#pragma once
// A compiled particle system definition: the base properties, the functions of each
// list in run-time order (disabled ones left out), the resolved children, the named
// values and the usage record. Immutable once compiled and shared by every collection
// made from it, on any thread.

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/mathlib/vector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/particles/sim/particlemanagertraits.h"
#include "core/particles/sim/particlenamedvaluebindings.h"
#include "core/particles/sim/particlesimfunction.h"
#include "core/text/utlstring.h"

class CUtlBuffer;
class KeyValues3;
class CParticleRuntimeDefinition;

using ParticleDefinitionPtr_t = std::shared_ptr<const CParticleRuntimeDefinition>;

// The most one tree of systems (a definition and all its children, each counted as often
// as it appears) may hold: what a preview can allocate and step. A tree beyond it is
// refused when it compiles.
constexpr int64_t PARTICLE_TREE_MAX_SYSTEMS = 1024;
constexpr int64_t PARTICLE_TREE_MAX_PARTICLES = int64_t( 1 ) << 22;
// Pre-simulation beyond this is cut to it (with a warning).
constexpr float PARTICLE_MAX_PRESIMULATION_SECONDS = 60.0f;

// Finds and compiles a child by the path in its m_ChildRef (forward slashes). Answers
// null with a text when it can't.
using ParticleChildResolver_t = std::function<ParticleDefinitionPtr_t( const char *pPath, CUtlString *pError )>;

struct ParticleChildInfo_t
{
	ParticleDefinitionPtr_t m_pDefinition;
	CUtlString m_ChildRef;
	float m_flDelay = 0.0f;
	bool m_bEndCap = false;
};

class CParticleRuntimeDefinition
{
public:
	CUtlString m_Name;
	int m_nBehaviorVersion = 0;
	int m_nMaxParticles = 1000;
	int m_nInitialParticles = 0;
	Vector m_ConstantColor{ 1.0f, 1.0f, 1.0f }; // 0 .. 1
	float m_flConstantAlpha = 1.0f;
	float m_flConstantRadius = 5.0f;
	float m_flConstantLifespan = 1.0f;
	float m_flConstantRotation = 0.0f;
	float m_flConstantRotationSpeed = 0.0f;
	int m_nConstantSequenceNumber = 0;
	Vector m_BoundingBoxMin{ -10.0f, -10.0f, -10.0f };
	Vector m_BoundingBoxMax{ 10.0f, 10.0f, 10.0f };
	float m_flMaximumTimeStep = 0.1f;
	float m_flPreSimulationTime = 0.0f;
	float m_flStopSimulationAfterTime = 1e9f;
	int m_nMaxDetailLevel = 3;

	std::vector<std::unique_ptr<CParticleSimFunction>> m_Functions[ PARTICLE_FUNCTION_CLASS_LIST_COUNT ];
	std::vector<ParticleChildInfo_t> m_Children;
	CHostNamedValueBindings m_NamedValues;
	CParticleDefinitionUsage m_Usage;

	// Attributes some function reads or writes, and those read at their initial value.
	uint64_t m_nAttributeMask = 0;
	uint64_t m_nInitialAttributeMask = 0;
	bool m_bHasForces = false;

	// The whole tree below and with this system: what a collection of it allocates.
	int64_t m_nTreeSystems = 1;
	int64_t m_nTreeParticles = 0;
	// What the compile changed or left out, one line each ("m_flPreSimulationTime ...").
	CUtlString m_Warnings;

	// Live collections of this definition, for the concurrent count input.
	mutable std::atomic<int> m_nLiveCollections{ 0 };

	// Read by the manager of live effects only; the frame in which retirement last
	// looked at this definition is its marker.
	ParticleManagerTraits_t m_ManagerTraits;
	mutable std::atomic<int> m_nLastRetirementCheckFrame{ -1 };

	const std::vector<std::unique_ptr<CParticleSimFunction>> &GetFunctions( int nList ) const { return m_Functions[ nList ]; }
};

// Compiles a definition from the text the editor saves ("tfxs63"). pName names it in
// messages and in the profiler. Null with a text on any failure; nothing half-built is
// left behind.
ParticleDefinitionPtr_t CompileParticleDefinition( CUtlBuffer *pBuffer, const char *pName, const ParticleChildResolver_t &resolver, CUtlString *pError );
// The same from a KV3 tree already loaded.
ParticleDefinitionPtr_t CompileParticleDefinitionFromKV3( const KeyValues3 *pRoot, const char *pName, const ParticleChildResolver_t &resolver, CUtlString *pError );

// Compiles definition files, children included, with a cache and a guard against a
// system that is its own descendant. A child's m_ChildRef ("particles/fire.tfxs") is
// found only inside the roots: the content root, then any added after it, each name
// ignoring case. A reference that leaves the roots, a name that two files on disk match
// ignoring case, and children nested deeper than PARTICLE_MAX_CHILD_DEPTH are refused.
// Files come through the reader the caller gives (with the disk path), so the runtime
// needn't know how a tool reads them.
using ParticleFileReader_t = std::function<bool( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError )>;

constexpr int PARTICLE_MAX_CHILD_DEPTH = 32;

class CParticleDefinitionFileCompiler
{
public:
	CParticleDefinitionFileCompiler( const char *pContentRoot, ParticleFileReader_t fnRead );
	// Another root children may be found in (the game root), searched after those before.
	void AddRoot( const char *pRoot );
	// The file a user names: absolute, or relative to the content root (the working
	// directory without one). Messages begin with pShownName, else with pPath.
	ParticleDefinitionPtr_t Compile( const char *pPath, CUtlString *pError, const char *pShownName = nullptr );
	// A child by its reference, found inside the roots only.
	ParticleDefinitionPtr_t CompileChild( const char *pChildRef, CUtlString *pError );
	// What compiling every file so far warned of, one "FILE: text" line each.
	const CUtlString &GetWarnings() const { return m_Warnings; }
	// The content root of a definition: the folder above the "particles" folder that holds
	// it, or the file's own folder when no such folder is on its path.
	static CUtlString FindContentRoot( const char *pFilePath );

private:
	// pName names the definition (the profiler shows it); pShownName names the file in messages.
	ParticleDefinitionPtr_t CompileFile( const std::string &diskPath, const char *pName, const char *pShownName, CUtlString *pError );
	bool ResolveChild( const char *pChildRef, std::string *pDiskPath, CUtlString *pError ) const;

	std::vector<std::string> m_Roots;
	ParticleFileReader_t m_fnRead;
	std::vector<std::pair<std::string, ParticleDefinitionPtr_t>> m_Cache;
	std::vector<std::string> m_InProgress;
	CUtlString m_Warnings;
};
