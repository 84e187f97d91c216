#pragma once
// Helpers of the particle runtime tests: definitions from KV3 text, and collections made
// from them.

#include <map>
#include <memory>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particleruntimedefinition.h"

// The text of a definition file with the given body inside the root table.
inline std::string DefinitionText( const std::string &body )
{
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
		   "{ _class = \"CParticleSystemDefinition\"\n" +
		   body + "\n}\n";
}

// Children, and their children, resolve by name among the given texts.
inline ParticleDefinitionPtr_t CompileText( const std::string &text, CUtlString *pError, const std::map<std::string, std::string> &children = {} )
{
	CUtlBuffer buffer( text.data(), text.size() );
	ParticleChildResolver_t resolver = [ &children ]( const char *pPath, CUtlString *pChildError ) -> ParticleDefinitionPtr_t {
		auto it = children.find( pPath );
		if ( it == children.end() )
		{
			pChildError->Format( "no such file '%s'", pPath );
			return nullptr;
		}
		return CompileText( it->second, pChildError, children );
	};
	return CompileParticleDefinition( &buffer, "test", resolver, pError );
}

inline ParticleDefinitionPtr_t CompileBody( const std::string &body, const std::map<std::string, std::string> &children = {} )
{
	CUtlString error;
	return CompileText( DefinitionText( body ), &error, children );
}

inline std::unique_ptr<CParticleCollection> MakeCollection( const ParticleDefinitionPtr_t &pDef, uint64_t nSeed = 1 )
{
	return std::unique_ptr<CParticleCollection>( static_cast<CParticleCollection *>( CreateParticleCollection( pDef, nSeed ).release() ) );
}

inline void Step( IParticleCollection *pCollection, int nSteps, float flDt = 1.0f / 60.0f )
{
	for ( int i = 0; i < nSteps; ++i )
		pCollection->Simulate( flDt );
}
